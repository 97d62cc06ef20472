#pragma once

#include "vexa/interpolation/XTCosineInterpolation.h"

namespace Norvel::Vexa {

struct VEXA_EXPORT SquareShape;

/// Slow away from the start value, then straight: f = min(q, r) while t < (t1 - t0) / 2, else r
/// (see XTCosineInterpolation).
///
/// V, given twice, is the value type and S the type of its components: double, float, int,
/// UXS::uxs_generic_vec3<float> or UXS::uxs_color.
/// Required behaviour: the time itself, not the time since t0, is compared with half the duration;
/// an interval that starts late is a straight line throughout. Integers: f is truncated, so that
/// the value stays a until t1.
template <class V, class W, class S>
class VEXA_EXPORT XTSquareInterpolation : public XTCosineInterpolation<SquareShape, V> {
 public:
  /// Throws std::runtime_error when startTime >= endTime.
  XTSquareInterpolation(double startTime, double endTime, V startValue, V endValue)
      : XTCosineInterpolation<SquareShape, V>(startTime, endTime, startValue, endValue) {}
};

extern template class XTSquareInterpolation<double, double, double>;
extern template class XTSquareInterpolation<float, float, float>;
extern template class XTSquareInterpolation<int, int, int>;
extern template class XTSquareInterpolation<UXS::uxs_generic_vec3<float>,
                                            UXS::uxs_generic_vec3<float>, float>;
extern template class XTSquareInterpolation<UXS::uxs_color, UXS::uxs_color, float>;

}  // namespace Norvel::Vexa
