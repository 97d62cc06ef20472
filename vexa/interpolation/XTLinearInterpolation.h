#pragma once

#include "vexa/interpolation/XTTimedInterpolation.h"

namespace Norvel::Vexa {

/// The slope of a straight line, c = (b - a) / (t1 - t0).
template <class V>
class VEXA_EXPORT XTLinearCoefficient : public XTEndValues<V> {
 public:
  /// The change of the value per unit of time.
  virtual V getCoeff() const;

 protected:
  using XTEndValues<V>::XTEndValues;

 private:
  template <class, class>
  friend class XTTimedInterpolation;
  void calculateCoeff();
  V valueInside(double inTime) const;

  V mCoeff{};
};

/// A straight line from value a at time t0 to value b at t1: a + (t - t0) c.
///
/// V, given twice, is the value type and S the type of its components: double, float, int, long,
/// UXS::uxs_generic_vec3<float> or UXS::uxs_color.
/// Required behaviour: for integers 1 / (t1 - t0) and t - t0 are truncated before their products,
/// so that the value stays a until t1.
template <class V, class W, class S>
class VEXA_EXPORT XTLinearInterpolation : public XTTimedInterpolation<XTLinearCoefficient<V>, V> {
 public:
  /// Throws std::runtime_error when inStartTime >= inEndTime.
  XTLinearInterpolation(double inStartTime, double inEndTime, V inStartValue, V inEndValue);
};

extern template class XTLinearInterpolation<double, double, double>;
extern template class XTLinearInterpolation<float, float, float>;
extern template class XTLinearInterpolation<int, int, int>;
extern template class XTLinearInterpolation<long, long, long>;
extern template class XTLinearInterpolation<UXS::uxs_generic_vec3<float>,
                                            UXS::uxs_generic_vec3<float>, float>;
extern template class XTLinearInterpolation<UXS::uxs_color, UXS::uxs_color, float>;

}  // namespace Norvel::Vexa
