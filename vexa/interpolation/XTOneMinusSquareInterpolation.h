#pragma once

#include "vexa/interpolation/XTCosineInterpolation.h"

namespace Norvel::Vexa {

struct VEXA_EXPORT OneMinusSquareShape;

/// Straight, then slow into the end value: f = max(q, r) while t > (t1 - t0) / 2, else r
/// (see XTCosineInterpolation).
///
/// V, given twice, is the value type and S the type of its components: double, float, int,
/// UXS::uxs_generic_vec3<float> or UXS::uxs_color.
/// Required behaviour: the time itself, not the time since t0, is compared with half the duration.
/// Integers: f is truncated, so that the value stays a until t1.
template <class V, class W, class S>
class VEXA_EXPORT XTOneMinusSquareInterpolation
    : public XTCosineInterpolation<OneMinusSquareShape, V> {
 public:
  /// Throws std::runtime_error when startTime >= endTime.
  XTOneMinusSquareInterpolation(double startTime, double endTime, V startValue, V endValue)
      : XTCosineInterpolation<OneMinusSquareShape, V>(startTime, endTime, startValue, endValue) {}
};

extern template class XTOneMinusSquareInterpolation<double, double, double>;
extern template class XTOneMinusSquareInterpolation<float, float, float>;
extern template class XTOneMinusSquareInterpolation<int, int, int>;
extern template class XTOneMinusSquareInterpolation<UXS::uxs_generic_vec3<float>,
                                                    UXS::uxs_generic_vec3<float>, float>;
extern template class XTOneMinusSquareInterpolation<UXS::uxs_color, UXS::uxs_color, float>;

}  // namespace Norvel::Vexa
