#pragma once

#include "vexa/Export.h"
#include "vexa/math/uxs_generic_vec3.h"

namespace Norvel::Vexa {

/// One cubic segment of a path: from P0, leaving towards C1, arriving from C2 at P3.
///
/// Points are in scene units, +Z up. The parameter t runs from 0 at P0 to 1 at P3 and is not a
/// distance: for motion by length see XTBezierPath. V is the type of points, W that of directions
/// (the same type), S their scalar. A plain value: copies share nothing. Positions of virtual
/// operations are fixed.
template <class V, class W, class S>
class VEXA_EXPORT XTBezierCurve {
 public:
  /// All four points at the origin.
  XTBezierCurve() : mStartValue(), mEndValue(), mStartControlPoint(), mEndControlPoint() {}
  /// Ends first, then controls: P0, P3, C1, C2.
  XTBezierCurve(V startValue, V endValue, V startControlPoint, V endControlPoint)
      : mStartValue(startValue),
        mEndValue(endValue),
        mStartControlPoint(startControlPoint),
        mEndControlPoint(endControlPoint) {}
  XTBezierCurve(const XTBezierCurve&) = default;
  XTBezierCurve& operator=(const XTBezierCurve&) = default;
  virtual ~XTBezierCurve();

  virtual V getStartValue() const { return mStartValue; }                ///< P0
  virtual V getEndValue() const { return mEndValue; }                    ///< P3
  virtual V getStartControlPoint() const { return mStartControlPoint; }  ///< C1
  virtual V getEndControlPoint() const { return mEndControlPoint; }      ///< C2
  virtual void setStartValue(V value) { mStartValue = value; }
  virtual void setEndValue(V value) { mEndValue = value; }
  virtual void setStartControlPoint(V point) { mStartControlPoint = point; }
  virtual void setEndControlPoint(V point) { mEndControlPoint = point; }

  /// Estimated arc length: the control polygon and twice the broken line P0-M-P3, over three, where
  /// M is the middle of C1 and C2. Exact for a straight segment with its
  /// controls in order; halving the segment first divides the excess by about 4.
  virtual double getLengthAproximation() const;
  /// Share of the first control leg |C1 - P0| in the length of the control polygon; 1 for a polygon
  /// of length 0.
  virtual double getFirstCPLengthProportion() const;
  /// Share of the last control leg |P3 - C2|; 1 for a polygon of length 0.
  virtual double getEndCPLengthProportion() const;

  /// Position at t, by the cubic Bernstein polynomials; u = 1 - t:
  ///   P3 t^3 + 3 C2 u t^2 + 3 C1 u^2 t + P0 u^3
  /// The ends come back as stored, and a NaN gives P3. Throws std::runtime_error for t more than
  /// 1e-6 outside [0, 1].
  /// Required behaviour: a t just below 0, inside that tolerance, gives P3.
  virtual V pointAt(S t) const;

  /// Derivative at t, not normalised:
  ///   3 P3 t^2 + 3 C2 t (2 - 3t) + 3 C1 (3t^2 - 4t + 1) - 3 P0 (1 - t)^2
  /// Range and tolerance as pointAt.
  /// Required behaviour: the ends give the control legs C1 - P0 and P3 - C2 without the factor 3; a
  /// t just below 0 gives the leg at the end.
  virtual W directionAt(S t) const;

  /// De Casteljau's split at t = 1/2. Either result may be this curve.
  virtual void subdivideCurve(XTBezierCurve& left, XTBezierCurve& right) const;

  /// Arc length, in scene units, from P0 to the place nearest to a coordinate, on the segment that
  /// the first four points give (pass the curve's own for a search on itself).
  ///
  /// The segment is halved until its pieces are straight within a millionth of their length, but
  /// at most depth times; a depth below 0 counts as 0, one above 12 as 12. Of places equally near
  /// the first along the segment counts. Pieces are measured by getLengthAproximation, so with a
  /// depth of 4 or more the result fits the lengths of XTBezierPath. Points that are not finite
  /// give some result, never an endless search.
  virtual double FindDistanceFromCoordinate(V startValue, V startControlPoint, V endControlPoint,
                                            V endValue, V coordinate, int depth) const;

 private:
  V mStartValue;
  V mEndValue;
  V mStartControlPoint;
  V mEndControlPoint;
};

extern template class VEXA_EXPORT
    XTBezierCurve<UXS::uxs_generic_vec3<float>, UXS::uxs_generic_vec3<float>, float>;

}  // namespace Norvel::Vexa
