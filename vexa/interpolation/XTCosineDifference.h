#pragma once

#include "vexa/interpolation/XTTimedInterpolation.h"

namespace Norvel::Vexa {

/// 1 / (t1 - t0) and b - a, for the curves whose value is a + f (b - a).
///
/// The factor f of a curve is made of two fractions of the time t:
///   r = (t - t0) / (t1 - t0)     the straight line
///   q = (1 - cos(pi r)) / 2      slow at both ends; below r in the first half, above it in the
///   second
/// `Shape` chooses between them.
template <class Shape, class V>
class VEXA_EXPORT XTCosineDifference : public XTEndValues<V> {
 protected:
  using XTEndValues<V>::XTEndValues;

 private:
  template <class, class>
  friend class XTTimedInterpolation;
  void calculateCoeff();
  V valueInside(double inTime) const;

  double mInverseDuration = 0;
  V mDifference{};
};

}  // namespace Norvel::Vexa
