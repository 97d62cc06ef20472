#pragma once

#include "vexa/interpolation/XCInterpolation.h"
#include "vexa/math/uxs_color.h"
#include "vexa/math/uxs_generic_vec3.h"

/// What all timed curves share. A curve is put together in steps, because the order of its virtual
/// operations and of its fields is fixed; users need only the last one:
///
///   XCInterpolation       the two times
///   XTEndValues           the two values
///   XTLinearCoefficient   or XTCosineDifference: what is computed from times and values
///   XTTimedInterpolation  the setters, which keep that up to date, and the value at a time
///   XTLinearInterpolation ...  the curve itself
namespace Norvel::Vexa {

/// The values at the two ends of the interval.
template <class V>
class VEXA_EXPORT XTEndValues : public XCInterpolation {
 public:
  virtual V getStartValue() const;
  virtual V getEndValue() const;

 protected:
  XTEndValues(double inStartTime, double inEndTime, const V& inStartValue, const V& inEndValue)
      : XCInterpolation(inStartTime, inEndTime), mStartValue(inStartValue), mEndValue(inEndValue) {}

  V mStartValue;
  V mEndValue;
};

/// A curve over `Cache`, which holds what it computes once from the times and values: it has
/// calculateCoeff(), valueInside(t) for t strictly between the ends, and the curve's texts.
///
/// A failed operation throws std::runtime_error and leaves the curve as it was.
template <class Cache, class V>
class VEXA_EXPORT XTTimedInterpolation : public Cache {
 public:
  void setStartTime(double inStartTime) override;
  void setEndTime(double inEndTime) override;
  virtual void setStartValue(V inStartValue);
  virtual void setEndValue(V inEndValue);
  /// The value at inTime; at the two ends exactly as stored. Throws outside of them.
  /// Required behaviour: a NaN time gives the end value.
  virtual V valueAt(double inTime) const;

 protected:
  XTTimedInterpolation(double inStartTime, double inEndTime, const V& inStartValue,
                       const V& inEndValue);
};

}  // namespace Norvel::Vexa
