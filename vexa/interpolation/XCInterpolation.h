#pragma once

#include "vexa/Export.h"

namespace Norvel::Vexa {

/// The closed time interval that every timed curve runs over.
///
/// Keeps start < end: an operation that would break this throws std::runtime_error and changes
/// nothing. The order of the virtual operations is fixed. Copies share nothing.
/// Required behaviour: a NaN passes the constructor, but not the setters.
class VEXA_EXPORT XCInterpolation {
 public:
  /// Inline, so that a curve on the stack costs no call.
  XCInterpolation(double startTime, double endTime) : mStartTime(startTime), mEndTime(endTime) {
    if (startTime >= endTime) {
      fail("XCInterpolation::XCInterpolation - startTime superior to endtime");
    }
  }

  virtual ~XCInterpolation() = default;
  virtual double getStartTime() const;
  virtual double getEndTime() const;
  virtual void setStartTime(double startTime);
  virtual void setEndTime(double endTime);

 protected:
  /// Throws std::runtime_error. Never inlined, so that the curves stay small.
  [[noreturn]] static void fail(const char* text);

  double mStartTime;
  double mEndTime;
};

}  // namespace Norvel::Vexa
