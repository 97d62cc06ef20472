#pragma once

#include "vexa/interpolation/XTCosineDifference.h"

namespace Norvel::Vexa {

struct VEXA_EXPORT sSquareShape;

/// Slow away from the start value, then straight: f = min(q, r) while t < (t1 - t0) / 2, else r
/// (see XTCosineDifference).
///
/// V, given twice, is the value type and S the type of its components: double, float, int,
/// UXS::uxs_generic_vec3<float> or UXS::uxs_color.
/// Required behaviour: the time itself, not the time since t0, is compared with half the duration;
/// an interval that starts late is a straight line throughout. Integers: f is truncated, so that
/// the value stays a until t1.
template <class V, class W, class S>
class VEXA_EXPORT XTSquareInterpolation
    : public XTTimedInterpolation<XTCosineDifference<sSquareShape, V>, V> {
 public:
  /// Throws std::runtime_error when inStartTime >= inEndTime.
  XTSquareInterpolation(double inStartTime, double inEndTime, V inStartValue, V inEndValue);
};

extern template class XTSquareInterpolation<double, double, double>;
extern template class XTSquareInterpolation<float, float, float>;
extern template class XTSquareInterpolation<int, int, int>;
extern template class XTSquareInterpolation<UXS::uxs_generic_vec3<float>,
                                            UXS::uxs_generic_vec3<float>, float>;
extern template class XTSquareInterpolation<UXS::uxs_color, UXS::uxs_color, float>;

}  // namespace Norvel::Vexa
