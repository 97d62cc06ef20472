#include "vexa/interpolation/timed_curves.h"

#include <cmath>

#include "vexa/interpolation/XTLinearInterpolation.h"
#include "vexa/interpolation/XTOneMinusSquareInterpolation.h"
#include "vexa/interpolation/XTSinusInterpolation.h"
#include "vexa/interpolation/XTSquareInterpolation.h"
#include "vexa/interpolation/value_arithmetic_internal.h"

// The bodies of all curves stand together: where the free functions see them, a curve on the stack
// is evaluated without a virtual call.
namespace Norvel::Vexa {

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kMinusHalfPi = -1.5707963267948966;

// The texts of a curve's four faults.
struct sTexts {
  const char* interval;
  const char* startTime;
  const char* endTime;
  const char* time;
};
template <class Cache>
constexpr sTexts kTexts{};
template <class V>
constexpr sTexts kTexts<XTLinearCoefficient<V>> = {
    "XTLinearInterpolation::XTLinearInterpolation - startTime superior to endtime",
    "XTLinearInterpolation::setStartTime - inStartTime superior at end Time",
    "XTLinearInterpolation::setEndTime - inEndTime inferior at start Time",
    "XTLinearInterpolation::valueAt - inTime is out of range"};
template <class V>
constexpr sTexts kTexts<XTCosineDifference<sSinusShape, V>> = {
    "XTSinusInterpolation::XTSinusInterpolation - startTime superior to endtime",
    "XTSinusInterpolation::setStartTime - inStartTime superior at end Time",
    "XTSinusInterpolation::setEndTime - inEndTime inferior at start Time",
    "XTSinusInterpolation::valueAt - inTime is out of range"};
template <class V>
constexpr sTexts kTexts<XTCosineDifference<sSquareShape, V>> = {
    "XTSquareInterpolation::XTSquareInterpolation - startTime superior to endtime",
    "XTSquareInterpolation::setStartTime - inStartTime superior at end Time",
    "XTSquareInterpolation::setEndTime - inEndTime inferior at start Time",
    "XTSquareInterpolation::valueAt - inTime is out of range"};
template <class V>
constexpr sTexts kTexts<XTCosineDifference<sOneMinusSquareShape, V>> = {
    "XTOneMinusSquareInterpolation::XTOneMinusSquareInterpolation - startTime superior to endtime",
    "XTOneMinusSquareInterpolation::setStartTime - inStartTime superior at end Time",
    "XTOneMinusSquareInterpolation::setEndTime - inEndTime inferior at start Time",
    "XTOneMinusSquareInterpolation::valueAt - inTime is out of range"};

// A time strictly inside an interval.
struct sInstant {
  double start, end, inverseDuration, time;

  double linearFraction() const { return (time - start) / (end - start); }

  double cosineFraction() const {
    const double angle = (time - start) * inverseDuration * kPi + kMinusHalfPi;
    return (std::sin(angle) + 1.0) * 0.5;  // order: exact floats
  }

  double halfDuration() const { return (end - start) * 0.5; }
};

template <class V>
V scaledByCosine(const V& difference, double q) {
  return scaled(difference, q);
}
int scaledByCosine(int difference, double q) { return truncToInt(double(difference) * q); }

double squareFactor(const sInstant& at) {
  const double r = at.linearFraction();
  if (!(at.halfDuration() > at.time)) return r;
  const double q = at.cosineFraction();
  return r > q ? q : r;
}

double oneMinusSquareFactor(const sInstant& at) {
  const double r = at.linearFraction();
  if (!(at.time > at.halfDuration())) return r;
  const double q = at.cosineFraction();
  return q > r ? q : r;
}

}  // namespace

// What a curve adds to its start value.

struct sSinusShape {
  template <class V>
  static V offset(const V& difference, const sInstant& at) {
    return scaledByCosine(difference, at.cosineFraction());
  }
};

struct sSquareShape {
  template <class V>
  static V offset(const V& difference, const sInstant& at) {
    return scaled(difference, squareFactor(at));
  }
};

struct sOneMinusSquareShape {
  template <class V>
  static V offset(const V& difference, const sInstant& at) {
    return scaled(difference, oneMinusSquareFactor(at));
  }
};

template <class V>
V XTEndValues<V>::getStartValue() const {
  return mStartValue;
}

template <class V>
V XTEndValues<V>::getEndValue() const {
  return mEndValue;
}

template <class V>
V XTLinearCoefficient<V>::getCoeff() const {
  return mCoeff;
}

template <class V>
void XTLinearCoefficient<V>::calculateCoeff() {
  const double inverseDuration = 1.0 / (this->mEndTime - this->mStartTime);
  mCoeff = scaled(difference(this->mStartValue, this->mEndValue), inverseDuration);
}

template <class V>
V XTLinearCoefficient<V>::valueInside(double inTime) const {
  return sum(scaled(mCoeff, inTime - this->mStartTime), this->mStartValue);
}

template <class Shape, class V>
void XTCosineDifference<Shape, V>::calculateCoeff() {
  mInverseDuration = 1.0 / (this->mEndTime - this->mStartTime);
  mDifference = difference(this->mStartValue, this->mEndValue);
}

template <class Shape, class V>
V XTCosineDifference<Shape, V>::valueInside(double inTime) const {
  const sInstant at{this->mStartTime, this->mEndTime, mInverseDuration, inTime};
  return sum(Shape::offset(mDifference, at), this->mStartValue);
}

template <class Cache, class V>
XTTimedInterpolation<Cache, V>::XTTimedInterpolation(double inStartTime, double inEndTime,
                                                     const V& inStartValue, const V& inEndValue)
    : Cache(inStartTime, inEndTime, inStartValue, inEndValue) {
  // XCInterpolation has made the same check, with its own text.
  if (inStartTime >= inEndTime) this->fail(kTexts<Cache>.interval);
  this->calculateCoeff();
}

template <class Cache, class V>
void XTTimedInterpolation<Cache, V>::setStartTime(double inStartTime) {
  if (!(this->mEndTime > inStartTime)) this->fail(kTexts<Cache>.startTime);
  this->mStartTime = inStartTime;
  this->calculateCoeff();
}

template <class Cache, class V>
void XTTimedInterpolation<Cache, V>::setEndTime(double inEndTime) {
  if (!(inEndTime > this->mStartTime)) this->fail(kTexts<Cache>.endTime);
  this->mEndTime = inEndTime;
  this->calculateCoeff();
}

template <class Cache, class V>
void XTTimedInterpolation<Cache, V>::setStartValue(V inStartValue) {
  this->mStartValue = inStartValue;
  this->calculateCoeff();
}

template <class Cache, class V>
void XTTimedInterpolation<Cache, V>::setEndValue(V inEndValue) {
  this->mEndValue = inEndValue;
  this->calculateCoeff();
}

template <class Cache, class V>
V XTTimedInterpolation<Cache, V>::valueAt(double inTime) const {
  const double start = this->mStartTime, end = this->mEndTime;
  if (start < inTime && inTime < end) return this->valueInside(inTime);
  if (inTime < start || inTime > end) this->fail(kTexts<Cache>.time);
  return inTime == start ? this->mStartValue : this->mEndValue;
}

template <class V, class W, class S>
XTLinearInterpolation<V, W, S>::XTLinearInterpolation(double inStartTime, double inEndTime,
                                                      V inStartValue, V inEndValue)
    : XTTimedInterpolation<XTLinearCoefficient<V>, V>(inStartTime, inEndTime, inStartValue,
                                                      inEndValue) {}

template <class V, class W, class S>
XTSinusInterpolation<V, W, S>::XTSinusInterpolation(double inStartTime, double inEndTime,
                                                    V inStartValue, V inEndValue)
    : XTTimedInterpolation<XTCosineDifference<sSinusShape, V>, V>(inStartTime, inEndTime,
                                                                  inStartValue, inEndValue) {}

template <class V, class W, class S>
XTSquareInterpolation<V, W, S>::XTSquareInterpolation(double inStartTime, double inEndTime,
                                                      V inStartValue, V inEndValue)
    : XTTimedInterpolation<XTCosineDifference<sSquareShape, V>, V>(inStartTime, inEndTime,
                                                                   inStartValue, inEndValue) {}

template <class V, class W, class S>
XTOneMinusSquareInterpolation<V, W, S>::XTOneMinusSquareInterpolation(double inStartTime,
                                                                      double inEndTime,
                                                                      V inStartValue, V inEndValue)
    : XTTimedInterpolation<XTCosineDifference<sOneMinusSquareShape, V>, V>(
          inStartTime, inEndTime, inStartValue, inEndValue) {}

using UXS::uxs_color;
using Vec3 = UXS::uxs_generic_vec3<float>;

template class XTLinearInterpolation<double, double, double>;
template class XTLinearInterpolation<float, float, float>;
template class XTLinearInterpolation<int, int, int>;
template class XTLinearInterpolation<long, long, long>;
template class XTLinearInterpolation<Vec3, Vec3, float>;
template class XTLinearInterpolation<uxs_color, uxs_color, float>;

template class XTSinusInterpolation<double, double, double>;
template class XTSinusInterpolation<float, float, float>;
template class XTSinusInterpolation<int, int, int>;
template class XTSinusInterpolation<Vec3, Vec3, float>;
template class XTSinusInterpolation<uxs_color, uxs_color, float>;

template class XTSquareInterpolation<double, double, double>;
template class XTSquareInterpolation<float, float, float>;
template class XTSquareInterpolation<int, int, int>;
template class XTSquareInterpolation<Vec3, Vec3, float>;
template class XTSquareInterpolation<uxs_color, uxs_color, float>;

template class XTOneMinusSquareInterpolation<double, double, double>;
template class XTOneMinusSquareInterpolation<float, float, float>;
template class XTOneMinusSquareInterpolation<int, int, int>;
template class XTOneMinusSquareInterpolation<Vec3, Vec3, float>;
template class XTOneMinusSquareInterpolation<uxs_color, uxs_color, float>;

namespace {

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
long Lerp(double t0, double t1, long a, long b, double t) {
  return valueOf<XTLinearInterpolation, long>(t0, t1, a, b, t);
}
Vec3 Lerp(double t0, double t1, Vec3 a, Vec3 b, double t) {
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
Vec3 Sinerp(double t0, double t1, Vec3 a, Vec3 b, double t) {
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
Vec3 Sqerp(double t0, double t1, Vec3 a, Vec3 b, double t) {
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
Vec3 OneMinSqerp(double t0, double t1, Vec3 a, Vec3 b, double t) {
  return valueOf<XTOneMinusSquareInterpolation, float>(t0, t1, a, b, t);
}
uxs_color OneMinSqerp(double t0, double t1, uxs_color a, uxs_color b, double t) {
  return valueOf<XTOneMinusSquareInterpolation, float>(t0, t1, a, b, t);
}

}  // namespace Norvel::Vexa
