#pragma once

#include "vexa/interpolation/XCInterpolation.h"
#include "vexa/math/uxs_color.h"
#include "vexa/math/uxs_generic_vec3.h"

namespace Norvel::Vexa {

/// What the three cosine-shaped curves share: from value a at time t0 to value b at t1, the value
/// is a + f (b - a). V is the value type.
///
/// The factor f of a curve is made of two fractions of the time t:
///
///   r = (t - t0) / (t1 - t0)     the straight line
///   q = (1 - cos(pi r)) / 2      slow at both ends; below r in the first half, above it after
///
/// `Shape` chooses between them. A failed operation throws std::runtime_error and changes nothing.
/// The order of the virtual operations and of the fields is fixed.
template <class Shape, class V>
class VEXA_EXPORT XTCosineInterpolation : public XCInterpolation {
 public:
  void setStartTime(double startTime) override;
  void setEndTime(double endTime) override;
  virtual V getStartValue() const;
  virtual V getEndValue() const;
  virtual void setStartValue(V value);
  virtual void setEndValue(V value);
  /// The value at a time; at the two ends exactly as stored. Throws outside of them.
  /// Required behaviour: a NaN time gives the end value.
  virtual V valueAt(double time) const;

  /// Computes 1 / (t1 - t0) and b - a anew. Every setter does so itself.
  void calculateCoeff();

 protected:
  XTCosineInterpolation(double startTime, double endTime, V startValue, V endValue);

 private:
  V mStartValue;
  V mEndValue;
  double mInverseDuration = 0;
  V mDifference{};
};

}  // namespace Norvel::Vexa
