#include "vexa/interpolation/timed_curves.h"

#include <cmath>
#include <type_traits>

#include "vexa/interpolation/XTLinearInterpolation.h"
#include "vexa/interpolation/XTOneMinusSquareInterpolation.h"
#include "vexa/interpolation/XTSinusInterpolation.h"
#include "vexa/interpolation/XTSquareInterpolation.h"
#include "vexa/interpolation/value_arithmetic_internal.h"

// The bodies of all curves are in this file: the free functions see them here, and a curve on the
// stack is evaluated without a virtual call.
namespace Norvel::Vexa {

namespace {

// The cosine is taken as sin(x - pi/2): sin and cos of a system may round differently.
constexpr double kPi = 3.141592653589793;
constexpr double kMinusHalfPi = -1.5707963267948966;

// The texts of a class's four faults. They are whole, so that a search for a text finds them.
struct Texts {
  const char* interval;
  const char* startTime;
  const char* endTime;
  const char* time;
};

constexpr Texts kLinearTexts = {
    "XTLinearInterpolation::XTLinearInterpolation - startTime superior to endtime",
    "XTLinearInterpolation::setStartTime - inStartTime superior at end Time",
    "XTLinearInterpolation::setEndTime - inEndTime inferior at start Time",
    "XTLinearInterpolation::valueAt - inTime is out of range"};

constexpr Texts kSinusTexts = {
    "XTSinusInterpolation::XTSinusInterpolation - startTime superior to endtime",
    "XTSinusInterpolation::setStartTime - inStartTime superior at end Time",
    "XTSinusInterpolation::setEndTime - inEndTime inferior at start Time",
    "XTSinusInterpolation::valueAt - inTime is out of range"};

constexpr Texts kSquareTexts = {
    "XTSquareInterpolation::XTSquareInterpolation - startTime superior to endtime",
    "XTSquareInterpolation::setStartTime - inStartTime superior at end Time",
    "XTSquareInterpolation::setEndTime - inEndTime inferior at start Time",
    "XTSquareInterpolation::valueAt - inTime is out of range"};

constexpr Texts kOneMinusSquareTexts = {
    "XTOneMinusSquareInterpolation::XTOneMinusSquareInterpolation - startTime superior to endtime",
    "XTOneMinusSquareInterpolation::setStartTime - inStartTime superior at end Time",
    "XTOneMinusSquareInterpolation::setEndTime - inEndTime inferior at start Time",
    "XTOneMinusSquareInterpolation::valueAt - inTime is out of range"};

// A time strictly inside an interval, and the two fractions that the curves are made of.
//
//   1 |             q . - '        r  a straight line from 0 to 1
//     |           . ' /            q  below r in the first half, above r in the second
//     |         ./
//     |      /.'                   Sinus            f = q
//     |   / .                      Square           f = min(q, r), then r
//   0 |/. -'                       OneMinusSquare   f = r, then max(q, r)
//     +----------------
//
// r divides by the duration and q multiplies by its stored reciprocal. order: exact floats
struct Instant {
  double start, end, inverseDuration, time;

  // r
  double linearFraction() const { return (time - start) / (end - start); }

  // q, as (sin(pi r - pi/2) + 1) / 2
  double cosineFraction() const {
    const double angle = (time - start) * inverseDuration * kPi + kMinusHalfPi;
    return (std::sin(angle) + 1.0) * 0.5;  // order: exact floats
  }

  // A duration. Required behaviour: it is compared with the time itself. So the two parts of a
  // curve meet in the middle only when the start is 0; elsewhere min and max decide.
  double halfDuration() const { return (end - start) * 0.5; }
};

// Required behaviour: the sinus alone truncates an integer's product, not its factor.
template <class V>
V scaledByCosine(const V& difference, double q) {
  if constexpr (std::is_same_v<V, int>) {
    return truncToInt(double(difference) * q);
  } else {
    return scaled(difference, q);
  }
}

double squareFactor(const Instant& at) {
  const double r = at.linearFraction();
  if (!(at.halfDuration() > at.time)) return r;
  const double q = at.cosineFraction();
  return r > q ? q : r;
}

double oneMinusSquareFactor(const Instant& at) {
  const double r = at.linearFraction();
  if (!(at.time > at.halfDuration())) return r;
  const double q = at.cosineFraction();
  return q > r ? q : r;
}

}  // namespace

// Each shape gives the factor f for values of type V, times the difference; and the texts of its
// class's four faults.

struct SinusShape {
  static constexpr const Texts& kTexts = kSinusTexts;

  template <class V>
  static V offset(const V& difference, const Instant& at) {
    return scaledByCosine(difference, at.cosineFraction());
  }
};

struct SquareShape {
  static constexpr const Texts& kTexts = kSquareTexts;

  template <class V>
  static V offset(const V& difference, const Instant& at) {
    return scaled(difference, squareFactor(at));
  }
};

struct OneMinusSquareShape {
  static constexpr const Texts& kTexts = kOneMinusSquareTexts;

  template <class V>
  static V offset(const V& difference, const Instant& at) {
    return scaled(difference, oneMinusSquareFactor(at));
  }
};

// The line and the cosine curves repeat their setters: getCoeff comes between the getters and the
// setters in the order of the line's virtual operations, so the two cannot share a base.

template <class V, class W, class S>
XTLinearInterpolation<V, W, S>::XTLinearInterpolation(double startTime, double endTime,
                                                      V startValue, V endValue)
    : XCInterpolation(startTime, endTime), mStartValue(startValue), mEndValue(endValue) {
  // XCInterpolation has made the same check, with its own text.
  if (startTime >= endTime) this->fail(kLinearTexts.interval);
  calculateCoeff();
}

// The reciprocal is formed first and then converted to the component type: for integers it is 0,
// except for a duration of at most 1.
template <class V, class W, class S>
void XTLinearInterpolation<V, W, S>::calculateCoeff() {
  const double inverseDuration = 1.0 / (this->mEndTime - this->mStartTime);
  mCoeff = scaled(difference(mStartValue, mEndValue), inverseDuration);
}

template <class V, class W, class S>
void XTLinearInterpolation<V, W, S>::setStartTime(double startTime) {
  if (!(this->mEndTime > startTime)) this->fail(kLinearTexts.startTime);
  this->mStartTime = startTime;
  calculateCoeff();
}

template <class V, class W, class S>
void XTLinearInterpolation<V, W, S>::setEndTime(double endTime) {
  if (!(endTime > this->mStartTime)) this->fail(kLinearTexts.endTime);
  this->mEndTime = endTime;
  calculateCoeff();
}

template <class V, class W, class S>
V XTLinearInterpolation<V, W, S>::getStartValue() const {
  return mStartValue;
}

template <class V, class W, class S>
V XTLinearInterpolation<V, W, S>::getEndValue() const {
  return mEndValue;
}

template <class V, class W, class S>
V XTLinearInterpolation<V, W, S>::getCoeff() const {
  return mCoeff;
}

template <class V, class W, class S>
void XTLinearInterpolation<V, W, S>::setStartValue(V value) {
  mStartValue = value;
  calculateCoeff();
}

template <class V, class W, class S>
void XTLinearInterpolation<V, W, S>::setEndValue(V value) {
  mEndValue = value;
  calculateCoeff();
}

// The ends are returned as stored, because the formula need not round to them. A NaN is neither
// inside nor outside and not the start, so it reaches the end value.
template <class V, class W, class S>
V XTLinearInterpolation<V, W, S>::valueAt(double time) const {
  const double start = this->mStartTime, end = this->mEndTime;
  if (start < time && time < end) {
    return sum(scaled(mCoeff, time - start), mStartValue);
  }
  if (time < start || time > end) this->fail(kLinearTexts.time);
  return time == start ? mStartValue : mEndValue;
}

template <class Shape, class V>
XTCosineInterpolation<Shape, V>::XTCosineInterpolation(double startTime, double endTime,
                                                       V startValue, V endValue)
    : XCInterpolation(startTime, endTime), mStartValue(startValue), mEndValue(endValue) {
  // XCInterpolation has made the same check, with its own text.
  if (startTime >= endTime) this->fail(Shape::kTexts.interval);
  calculateCoeff();
}

// Kept ready for valueAt, which a host calls once per frame and setters change rarely.
template <class Shape, class V>
void XTCosineInterpolation<Shape, V>::calculateCoeff() {
  mInverseDuration = 1.0 / (this->mEndTime - this->mStartTime);
  mDifference = difference(mStartValue, mEndValue);
}

template <class Shape, class V>
void XTCosineInterpolation<Shape, V>::setStartTime(double startTime) {
  if (!(this->mEndTime > startTime)) this->fail(Shape::kTexts.startTime);
  this->mStartTime = startTime;
  calculateCoeff();
}

template <class Shape, class V>
void XTCosineInterpolation<Shape, V>::setEndTime(double endTime) {
  if (!(endTime > this->mStartTime)) this->fail(Shape::kTexts.endTime);
  this->mEndTime = endTime;
  calculateCoeff();
}

template <class Shape, class V>
V XTCosineInterpolation<Shape, V>::getStartValue() const {
  return mStartValue;
}

template <class Shape, class V>
V XTCosineInterpolation<Shape, V>::getEndValue() const {
  return mEndValue;
}

template <class Shape, class V>
void XTCosineInterpolation<Shape, V>::setStartValue(V value) {
  mStartValue = value;
  calculateCoeff();
}

template <class Shape, class V>
void XTCosineInterpolation<Shape, V>::setEndValue(V value) {
  mEndValue = value;
  calculateCoeff();
}

template <class Shape, class V>
V XTCosineInterpolation<Shape, V>::valueAt(double time) const {
  const double start = this->mStartTime, end = this->mEndTime;
  if (start < time && time < end) {
    const Instant at{start, end, mInverseDuration, time};
    return sum(Shape::offset(mDifference, at), mStartValue);
  }
  if (time < start || time > end) this->fail(Shape::kTexts.time);
  return time == start ? mStartValue : mEndValue;
}

// The instances that exist. The base of each cosine curve is instantiated with it, because its
// bodies are in this file alone. Only the line exists for Long.
using UXS::uxs_color;
using V3 = UXS::uxs_generic_vec3<float>;

template class XTLinearInterpolation<double, double, double>;
template class XTLinearInterpolation<float, float, float>;
template class XTLinearInterpolation<int, int, int>;
template class XTLinearInterpolation<Long, Long, Long>;
template class XTLinearInterpolation<V3, V3, float>;
template class XTLinearInterpolation<uxs_color, uxs_color, float>;

template class XTCosineInterpolation<SinusShape, double>;
template class XTCosineInterpolation<SinusShape, float>;
template class XTCosineInterpolation<SinusShape, int>;
template class XTCosineInterpolation<SinusShape, V3>;
template class XTCosineInterpolation<SinusShape, uxs_color>;
template class XTSinusInterpolation<double, double, double>;
template class XTSinusInterpolation<float, float, float>;
template class XTSinusInterpolation<int, int, int>;
template class XTSinusInterpolation<V3, V3, float>;
template class XTSinusInterpolation<uxs_color, uxs_color, float>;

template class XTCosineInterpolation<SquareShape, double>;
template class XTCosineInterpolation<SquareShape, float>;
template class XTCosineInterpolation<SquareShape, int>;
template class XTCosineInterpolation<SquareShape, V3>;
template class XTCosineInterpolation<SquareShape, uxs_color>;
template class XTSquareInterpolation<double, double, double>;
template class XTSquareInterpolation<float, float, float>;
template class XTSquareInterpolation<int, int, int>;
template class XTSquareInterpolation<V3, V3, float>;
template class XTSquareInterpolation<uxs_color, uxs_color, float>;

template class XTCosineInterpolation<OneMinusSquareShape, double>;
template class XTCosineInterpolation<OneMinusSquareShape, float>;
template class XTCosineInterpolation<OneMinusSquareShape, int>;
template class XTCosineInterpolation<OneMinusSquareShape, V3>;
template class XTCosineInterpolation<OneMinusSquareShape, uxs_color>;
template class XTOneMinusSquareInterpolation<double, double, double>;
template class XTOneMinusSquareInterpolation<float, float, float>;
template class XTOneMinusSquareInterpolation<int, int, int>;
template class XTOneMinusSquareInterpolation<V3, V3, float>;
template class XTOneMinusSquareInterpolation<uxs_color, uxs_color, float>;

namespace {

// The curve is a local object of a known type: its checks and its value are those of the class, and
// the compiler calls valueAt directly.
template <template <class, class, class> class Curve, class S, class V>
V valueOf(double t0, double t1, const V& a, const V& b, double t) {
  return Curve<V, V, S>(t0, t1, a, b).valueAt(t);
}

}  // namespace

double Lerp(double t0, double t1, double a, double b, double t) {
  return valueOf<XTLinearInterpolation, double>(t0, t1, a, b, t);
}
float Lerp(double t0, double t1, float a, float b, double t) {
  return valueOf<XTLinearInterpolation, float>(t0, t1, a, b, t);
}
int Lerp(double t0, double t1, int a, int b, double t) {
  return valueOf<XTLinearInterpolation, int>(t0, t1, a, b, t);
}
Long Lerp(double t0, double t1, Long a, Long b, double t) {
  return valueOf<XTLinearInterpolation, Long>(t0, t1, a, b, t);
}
V3 Lerp(double t0, double t1, V3 a, V3 b, double t) {
  return valueOf<XTLinearInterpolation, float>(t0, t1, a, b, t);
}
uxs_color Lerp(double t0, double t1, uxs_color a, uxs_color b, double t) {
  return valueOf<XTLinearInterpolation, float>(t0, t1, a, b, t);
}

double Sinerp(double t0, double t1, double a, double b, double t) {
  return valueOf<XTSinusInterpolation, double>(t0, t1, a, b, t);
}
float Sinerp(double t0, double t1, float a, float b, double t) {
  return valueOf<XTSinusInterpolation, float>(t0, t1, a, b, t);
}
int Sinerp(double t0, double t1, int a, int b, double t) {
  return valueOf<XTSinusInterpolation, int>(t0, t1, a, b, t);
}
V3 Sinerp(double t0, double t1, V3 a, V3 b, double t) {
  return valueOf<XTSinusInterpolation, float>(t0, t1, a, b, t);
}
uxs_color Sinerp(double t0, double t1, uxs_color a, uxs_color b, double t) {
  return valueOf<XTSinusInterpolation, float>(t0, t1, a, b, t);
}

double Sqerp(double t0, double t1, double a, double b, double t) {
  return valueOf<XTSquareInterpolation, double>(t0, t1, a, b, t);
}
float Sqerp(double t0, double t1, float a, float b, double t) {
  return valueOf<XTSquareInterpolation, float>(t0, t1, a, b, t);
}
int Sqerp(double t0, double t1, int a, int b, double t) {
  return valueOf<XTSquareInterpolation, int>(t0, t1, a, b, t);
}
V3 Sqerp(double t0, double t1, V3 a, V3 b, double t) {
  return valueOf<XTSquareInterpolation, float>(t0, t1, a, b, t);
}
uxs_color Sqerp(double t0, double t1, uxs_color a, uxs_color b, double t) {
  return valueOf<XTSquareInterpolation, float>(t0, t1, a, b, t);
}

double OneMinSqerp(double t0, double t1, double a, double b, double t) {
  return valueOf<XTOneMinusSquareInterpolation, double>(t0, t1, a, b, t);
}
float OneMinSqerp(double t0, double t1, float a, float b, double t) {
  return valueOf<XTOneMinusSquareInterpolation, float>(t0, t1, a, b, t);
}
int OneMinSqerp(double t0, double t1, int a, int b, double t) {
  return valueOf<XTOneMinusSquareInterpolation, int>(t0, t1, a, b, t);
}
V3 OneMinSqerp(double t0, double t1, V3 a, V3 b, double t) {
  return valueOf<XTOneMinusSquareInterpolation, float>(t0, t1, a, b, t);
}
uxs_color OneMinSqerp(double t0, double t1, uxs_color a, uxs_color b, double t) {
  return valueOf<XTOneMinusSquareInterpolation, float>(t0, t1, a, b, t);
}

}  // namespace Norvel::Vexa
