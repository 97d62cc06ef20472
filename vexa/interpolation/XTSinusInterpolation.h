#pragma once

#include "vexa/interpolation/XTCosineInterpolation.h"

namespace Norvel::Vexa {

struct VEXA_EXPORT SinusShape;

/// Slow away from the start value and slow into the end value: f = q (see XTCosineInterpolation).
///
/// V, given twice, is the value type and S the type of its components: double, float, int,
/// UXS::uxs_generic_vec3<float> or UXS::uxs_color. Integers: q (b - a) is truncated.
template <class V, class W, class S>
class VEXA_EXPORT XTSinusInterpolation : public XTCosineInterpolation<SinusShape, V> {
 public:
  /// Throws std::runtime_error when startTime >= endTime.
  XTSinusInterpolation(double startTime, double endTime, V startValue, V endValue)
      : XTCosineInterpolation<SinusShape, V>(startTime, endTime, startValue, endValue) {}
};

extern template class XTSinusInterpolation<double, double, double>;
extern template class XTSinusInterpolation<float, float, float>;
extern template class XTSinusInterpolation<int, int, int>;
extern template class XTSinusInterpolation<UXS::uxs_generic_vec3<float>,
                                           UXS::uxs_generic_vec3<float>, float>;
extern template class XTSinusInterpolation<UXS::uxs_color, UXS::uxs_color, float>;

}  // namespace Norvel::Vexa
