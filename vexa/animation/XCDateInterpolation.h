#pragma once

#include "vexa/Export.h"
#include "vexa/host/IZelKeyFrame.h"
#include "vexa/interpolation/XCInterpolation.h"

namespace Norvel::Vexa {

/// A curve from one calendar date to another: over more than a day, date and time of day move
/// separately, so that a walk through the year does not flicker through day and night.
///
/// Values are seconds since 1970-01-01 00:00 UTC in a value's first 8 bytes; times are frames.
class VEXA_EXPORT XCDateInterpolation : public XCInterpolation {
 public:
  using uValue = UxZel::IZelKeyFrame::uValue;

  /// Copies the values. Throws std::runtime_error unless startTime < endTime: the base's text for a
  /// start at or after the end, this class's own for a NaN.
  XCDateInterpolation(double startTime, double endTime, const uValue& startValue,
                      const uValue& endValue);
  ~XCDateInterpolation() override = default;

  /// Each throws std::runtime_error, and changes nothing, unless start time < end time would hold.
  /// Required behaviour: the texts name XTDateInterpolation.
  void setStartTime(double startTime) override;
  void setEndTime(double endTime) override;

  virtual const uValue* getStartValue() const;
  virtual const uValue* getEndValue() const;
  virtual void setStartValue(const uValue& value);
  virtual void setEndValue(const uValue& value);

  /// The date at a time between start and end, in seconds since 1970-01-01 00:00 UTC.
  ///
  /// The ends come back as stored. Between dates at most 86400 s apart, a straight line; required
  /// behaviour: from the earlier to the later, whichever comes first. Otherwise the midnight of a
  /// straight line between both midnights, plus a straight line between the times of day of the
  /// earlier and the later date. Required behaviour: that last sum is taken in single precision,
  /// in steps of 128 s for present dates. Throws std::runtime_error outside of both times; a NaN
  /// gives the end value.
  virtual double valueAt(double time) const;

 private:
  uValue mStartValue;
  uValue mEndValue;
};

}  // namespace Norvel::Vexa
