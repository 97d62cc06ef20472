#pragma once

#include <array>
#include <vector>

#include "vexa/Export.h"
#include "vexa/math/uxs_generic_vec3.h"
#include "vexa/paths/XTBezierCurve.h"
#include "vexa/paths/XTPathInfo.h"

namespace Norvel::Vexa {

/// A chain of cubic segments, one between each two consecutive points of a path, that answers by
/// length: 0 is the start of the path, 1 its end, and equal steps between are equal distances.
///
/// Each segment has a table of its arc length at sixteen parameters; between them the parameter is
/// interpolated linearly. A path without segments (fewer than two points, or no list of points)
/// throws std::out_of_range when it is asked for a place. On a path of length 0 every fraction is
/// an end point. V is the type of points, W that of directions (the same type), S their scalar.
template <class V, class W, class S>
class VEXA_EXPORT XTBezierPath {
 public:
  using Curve = XTBezierCurve<V, W, S>;
  /// Element k - 1 is the arc length of a segment from parameter 0 to k/16; the last one is the
  /// length of the segment. Scene units.
  using CurveDistanceRepartition = std::array<S, 16>;

  /// An empty path over a source of points, which is borrowed and must outlive it; null is a source
  /// without points.
  explicit XTBezierPath(const XTPathInfo<V, W, S>* pathInfo);
  virtual ~XTBezierPath();

  /// Builds segments, tables and total length from the source of points.
  ///
  /// Appends to the sequences and does not clear them: build a fresh path when points change.
  /// What the source of points throws passes, and the path stays as it was.
  void createBezierCurve();

  /// Position at a fraction of the total length. A fraction where two segments meet is the end of
  /// the earlier one. Throws std::runtime_error for a fraction outside [0, 1] or NaN.
  V valueAt(S distance) const;
  /// Direction there, as XTBezierCurve::directionAt gives it: not normalised.
  /// Required behaviour: the text of the error names valueAt here too.
  W directionAt(S distance) const;

  /// The table of one segment: halved four times, the sixteen pieces are measured in order.
  static CurveDistanceRepartition CalculateCurveDistanceRepartition(Curve curve);
  /// The parameter at a fraction of one segment's length; NaN for a segment of length 0.
  static S GetTfromDistanceWanted(CurveDistanceRepartition repartition, S distance);

  /// Sum of the segments' lengths, scene units.
  S getTotalLength() const { return mTotalLength; }
  const std::vector<Curve>& getCurves() const { return mCurves; }
  /// One table per segment.
  const std::vector<CurveDistanceRepartition>& getRepartitions() const { return mRepartitions; }
  /// The fraction of the total length covered at the end of each segment; the last one is 1.
  const std::vector<S>& getProportions() const { return mProportions; }

 private:
  struct Place {
    const Curve* mCurve;  // of this path
    S mT;
  };

  void appendTables();
  Place placeAt(S distance) const;

  S mTotalLength;
  std::vector<Curve> mCurves;
  std::vector<CurveDistanceRepartition> mRepartitions;
  std::vector<S> mProportions;
  const XTPathInfo<V, W, S>* mPathInfo;
};

extern template class VEXA_EXPORT
    XTBezierPath<UXS::uxs_generic_vec3<float>, UXS::uxs_generic_vec3<float>, float>;

}  // namespace Norvel::Vexa
