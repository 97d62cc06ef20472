#include "vexa/paths/XTBezierCurve.h"

#include <algorithm>
#include <stdexcept>

#include "vexa/paths/vector_length_internal.h"

namespace Norvel::Vexa {

namespace {

// 4096 pieces at most. Each halving quarters the gap between a piece and its chord, so a dozen
// reach the precision of a float.
constexpr int kDeepestSearch = 12;

// A parameter that is not inside the segment may still be an end of it. Callers compute it in
// float, where 1e-6 is about eight units of rounding at 1. NaN passes.
void checkParameter(double t, const char* error) {
  if (t < -0.000001 || t > 1.000001) throw std::runtime_error(error);
}

template <class V>
double dot(const V& a, const V& b) {
  return double(a.x) * double(b.x) + double(a.y) * double(b.y) + double(a.z) * double(b.z);
}

// The control polygon, which is at least as long as the curve, as the chord is at most as long.
template <class V, class W, class S>
S polygonLength(const XTBezierCurve<V, W, S>& curve) {
  return vectorLength(curve.getStartControlPoint() - curve.getEndControlPoint()) +
         vectorLength(curve.getStartControlPoint() - curve.getStartValue()) +
         vectorLength(curve.getEndValue() - curve.getEndControlPoint());  // order: exact floats
}

struct NearestPlace {
  double mSquaredGap;
  double mDistance;  // along the piece
  double mLength;    // of the whole piece
};

// A piece that counts as straight: the foot of the perpendicular on its chord, or an end.
template <class V, class W, class S>
NearestPlace nearestOnChord(const XTBezierCurve<V, W, S>& piece, const V& coordinate) {
  const W chord = piece.getEndValue() - piece.getStartValue();
  const W wanted = coordinate - piece.getStartValue();
  const double squaredChord = dot(chord, chord);
  const double share =
      squaredChord > 0 ? std::clamp(dot(wanted, chord) / squaredChord, 0.0, 1.0) : 0.0;
  const W gap = wanted - chord * S(share);
  const double length = piece.getLengthAproximation();
  return {dot(gap, gap), share * length, length};
}

template <class V, class W, class S>
bool isStraight(const XTBezierCurve<V, W, S>& piece) {
  const auto polygon = double(polygonLength(piece));
  const auto chord = double(vectorLength(piece.getEndValue() - piece.getStartValue()));
  return !(polygon - chord > 0.000001 * polygon);  // so that NaN ends the search
}

// Halves the curve until each piece counts as straight. Every piece is visited, because the
// distance along the curve is the sum of the lengths of all pieces before the nearest one. Of
// equally near places the first counts.
template <class V, class W, class S>
NearestPlace nearestPlace(const XTBezierCurve<V, W, S>& piece, const V& coordinate, int depth) {
  if (depth <= 0 || isStraight(piece)) return nearestOnChord(piece, coordinate);
  XTBezierCurve<V, W, S> left, right;
  piece.subdivideCurve(left, right);
  NearestPlace nearest = nearestPlace(left, coordinate, depth - 1);
  const NearestPlace second = nearestPlace(right, coordinate, depth - 1);
  if (second.mSquaredGap < nearest.mSquaredGap) {
    nearest.mSquaredGap = second.mSquaredGap;
    nearest.mDistance = nearest.mLength + second.mDistance;
  }
  nearest.mLength += second.mLength;
  return nearest;
}

}  // namespace

template <class V, class W, class S>
XTBezierCurve<V, W, S>::~XTBezierCurve() = default;

template <class V, class W, class S>
double XTBezierCurve<V, W, S>::getLengthAproximation() const {
  const V middle = (mStartControlPoint + mEndControlPoint) * S(0.5);
  const auto endLeg = double(vectorLength(mEndValue - mEndControlPoint));
  const auto middleLeg = double(vectorLength(mStartControlPoint - mEndControlPoint));
  const auto startLeg = double(vectorLength(mStartControlPoint - mStartValue));
  const auto toEnd = double(vectorLength(middle - mEndValue));
  const auto toStart = double(vectorLength(middle - mStartValue));
  return (endLeg + middleLeg + startLeg + 2 * toEnd + 2 * toStart) / 3.0;  // order: exact floats
}

template <class V, class W, class S>
double XTBezierCurve<V, W, S>::getFirstCPLengthProportion() const {
  const S polygon = polygonLength(*this);
  return polygon == 0 ? 1.0 : double(vectorLength(mStartControlPoint - mStartValue) / polygon);
}

template <class V, class W, class S>
double XTBezierCurve<V, W, S>::getEndCPLengthProportion() const {
  const S polygon = polygonLength(*this);
  return polygon == 0 ? 1.0 : double(vectorLength(mEndValue - mEndControlPoint) / polygon);
}

// Inside, the Bernstein polynomials; the ends are returned as stored. Required behaviour: only an
// exact 0 gives the start, so a parameter just below 0 gives the end.
template <class V, class W, class S>
V XTBezierCurve<V, W, S>::pointAt(S t) const {
  if (0 < t && t < 1) {
    const S u = 1 - t;
    const S b0 = u * u * u, b1 = 3 * u * u * t, b2 = 3 * u * t * t, b3 = t * t * t;
    return mEndValue * b3 + mEndControlPoint * b2 + mStartControlPoint * b1 +
           mStartValue * b0;  // order: exact floats
  }
  // Required behaviour: the text names valueAt.
  checkParameter(double(t), "XTBezierCurve::valueAt - inTime is out of range");
  return t == 0 ? mStartValue : mEndValue;
}

// The derivative of pointAt. Required behaviour: at the two ends the factor 3 is missing.
template <class V, class W, class S>
W XTBezierCurve<V, W, S>::directionAt(S t) const {
  if (0 < t && t < 1) {
    const S three = 3;
    const S startControlFactor = 3 * t * t + (-4 * t + 1);
    return mEndValue * three * t * t + mEndControlPoint * three * t * (2 - 3 * t) +
           mStartControlPoint * three * startControlFactor -
           mStartValue * three * (1 - t) * (1 - t);  // order: exact floats
  }
  checkParameter(double(t), "XTBezierCurve::directionAt - inTime is out of range");
  return t == 0 ? mStartControlPoint - mStartValue : mEndValue - mEndControlPoint;
}

// De Casteljau at 1/2. Each new point is written as one sum of the old ones; the usual three steps
// of midpoints round differently. The drawing is in arc_length_lanes_internal.h.
template <class V, class W, class S>
void XTBezierCurve<V, W, S>::subdivideCurve(XTBezierCurve& left, XTBezierCurve& right) const {
  const V p0 = mStartValue, c1 = mStartControlPoint, c2 = mEndControlPoint, p3 = mEndValue;
  const S half = S(0.5), quarter = S(0.25), eighth = S(0.125), two = 2, three = 3;
  const V middle = (three * c2 + three * c1 + p0 + p3) * eighth;  // order: exact floats
  left = XTBezierCurve(p0, middle, (p0 + c1) * half, (two * c1 + p0 + c2) * quarter);
  right = XTBezierCurve(middle, p3, (two * c2 + p3 + c1) * quarter, (p3 + c2) * half);
}

template <class V, class W, class S>
double XTBezierCurve<V, W, S>::FindDistanceFromCoordinate(V startValue, V startControlPoint,
                                                          V endControlPoint, V endValue,
                                                          V coordinate, int depth) const {
  const XTBezierCurve whole(startValue, endValue, startControlPoint, endControlPoint);
  return nearestPlace(whole, coordinate, std::min(depth, kDeepestSearch)).mDistance;
}

template class XTBezierCurve<UXS::uxs_generic_vec3<float>, UXS::uxs_generic_vec3<float>, float>;

}  // namespace Norvel::Vexa
