#pragma once

#include "vexa/interpolation/XTCosineDifference.h"

namespace Norvel::Vexa {

struct VEXA_EXPORT sOneMinusSquareShape;

/// Straight, then slow into the end value: f = max(q, r) while t > (t1 - t0) / 2, else r
/// (see XTCosineDifference).
///
/// V, given twice, is the value type and S the type of its components: double, float, int,
/// UXS::uxs_generic_vec3<float> or UXS::uxs_color.
/// Required behaviour: the time itself, not the time since t0, is compared with half the duration.
/// Integers: f is truncated, so that the value stays a until t1.
template <class V, class W, class S>
class VEXA_EXPORT XTOneMinusSquareInterpolation
    : public XTTimedInterpolation<XTCosineDifference<sOneMinusSquareShape, V>, V> {
 public:
  /// Throws std::runtime_error when inStartTime >= inEndTime.
  XTOneMinusSquareInterpolation(double inStartTime, double inEndTime, V inStartValue, V inEndValue);
};

extern template class XTOneMinusSquareInterpolation<double, double, double>;
extern template class XTOneMinusSquareInterpolation<float, float, float>;
extern template class XTOneMinusSquareInterpolation<int, int, int>;
extern template class XTOneMinusSquareInterpolation<UXS::uxs_generic_vec3<float>,
                                                    UXS::uxs_generic_vec3<float>, float>;
extern template class XTOneMinusSquareInterpolation<UXS::uxs_color, UXS::uxs_color, float>;

}  // namespace Norvel::Vexa
