#pragma once

#include "vexa/Export.h"
#include "vexa/host/IZelKeyFrame.h"
#include "vexa/host/IZelTime.h"

namespace UxZel {

/// Small operations on the values of keys: comparing, and converting dates.
class VEXA_EXPORT CKeyFrameTool {
 public:
  /// Whether the values of two keys, 24 bytes each, differ.
  static bool AreKeyFrameDifferents(const IZelKeyFrame& a, const IZelKeyFrame& b);

  /// Required behaviour: true when the 24 bytes of two values are equal, against the name.
  static bool AreValueDifferents(const IZelKeyFrame::uValue& a, const IZelKeyFrame::uValue& b);

  /// Writes a date value (seconds since 1970-01-01 00:00 UTC) into `outTime`, in UTC, in the order
  /// day, hour, minute, month, year; seconds are dropped. A date whose year does not fit sets
  /// nothing.
  static void GetTime(const IZelKeyFrame::uValue& value, IZelTime* outTime);

  /// The date value of a time taken as UTC. Fields outside the calendar carry over: the 32nd of
  /// January is the 1st of February.
  static IZelKeyFrame::uValue ComputeValue(const IZelTime& when);
};

}  // namespace UxZel
