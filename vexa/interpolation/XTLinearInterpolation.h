#pragma once

#include "vexa/interpolation/XCInterpolation.h"
#include "vexa/math/conversion.h"
#include "vexa/math/uxs_color.h"
#include "vexa/math/uxs_generic_vec3.h"

namespace Norvel::Vexa {

/// A straight line from value a at time t0 to value b at t1: a + (t - t0) c with the slope
/// c = (b - a) / (t1 - t0).
///
/// V, given twice, is the value type and S the type of its components: double, float, int, Long,
/// UXS::uxs_generic_vec3<float> or UXS::uxs_color. A failed operation throws std::runtime_error and
/// changes nothing. The order of the virtual operations and of the fields is fixed.
/// Required behaviour: for integers 1 / (t1 - t0) and t - t0 are truncated before their products,
/// so that the value stays a until t1.
template <class V, class W, class S>
class VEXA_EXPORT XTLinearInterpolation : public XCInterpolation {
 public:
  /// Throws std::runtime_error when startTime >= endTime.
  XTLinearInterpolation(double startTime, double endTime, V startValue, V endValue);

  void setStartTime(double startTime) override;
  void setEndTime(double endTime) override;
  virtual V getStartValue() const;
  virtual V getEndValue() const;
  /// The change of the value per unit of time.
  virtual V getCoeff() const;
  virtual void setStartValue(V value);
  virtual void setEndValue(V value);
  /// The value at a time; at the two ends exactly as stored. Throws outside of them.
  /// Required behaviour: a NaN time gives the end value.
  virtual V valueAt(double time) const;

  /// Computes the slope anew. Every setter does so itself.
  void calculateCoeff();

 private:
  V mStartValue;
  V mEndValue;
  V mCoeff{};
};

extern template class XTLinearInterpolation<double, double, double>;
extern template class XTLinearInterpolation<float, float, float>;
extern template class XTLinearInterpolation<int, int, int>;
extern template class XTLinearInterpolation<Long, Long, Long>;
extern template class XTLinearInterpolation<UXS::uxs_generic_vec3<float>,
                                            UXS::uxs_generic_vec3<float>, float>;
extern template class XTLinearInterpolation<UXS::uxs_color, UXS::uxs_color, float>;

}  // namespace Norvel::Vexa
