#include "vexa/paths/XTBezierPath.h"

#include <cstddef>
#include <stdexcept>

#include "vexa/paths/arc_length_tables_internal.h"

namespace Norvel::Vexa {

namespace {

// The segments of the path, appended to those given. Each point ends one segment and starts the
// next:
//
//   point 0          point 1          point 2
//     P0 . C1    C2 . P3=P0 . C1   C2 . P3
//     |-- segment 0 ---|-- segment 1 ---|
//
// A point is asked for its position, then for its control before, then after it; a host may record
// these calls.
template <class V, class W, class S>
void appendCurves(const XTPathInfo<V, W, S>& info, unsigned int pointCount,
                  std::vector<XTBezierCurve<V, W, S>>& curves) {
  curves.reserve(curves.size() + pointCount - 1);
  V start = info.getPassagePointPositionAt(0);
  V startControl = info.getAfterControlPointAt(0);
  for (unsigned int i = 1; i < pointCount; ++i) {
    const V end = info.getPassagePointPositionAt(i);
    const V endControl = info.getBeforeControlPointAt(i);
    curves.emplace_back(start, end, startControl, endControl);
    start = end;
    startControl = info.getAfterControlPointAt(i);
  }
}

}  // namespace

template <class V, class W, class S>
XTBezierPath<V, W, S>::XTBezierPath(const XTPathInfo<V, W, S>* pathInfo)
    : mTotalLength(0), mPathInfo(pathInfo) {}

template <class V, class W, class S>
XTBezierPath<V, W, S>::~XTBezierPath() = default;

template <class V, class W, class S>
void XTBezierPath<V, W, S>::createBezierCurve() {
  const unsigned int pointCount = mPathInfo != nullptr ? mPathInfo->getNbBezierPoints() : 0;
  const bool listExists = mPathInfo != nullptr && mPathInfo->PointsMgrExist();
  if (pointCount <= 1 || !listExists) {
    mTotalLength = 0;
    return;
  }

  // What can fail comes first, so that the three sequences keep one length.
  std::vector<Curve> curves = mCurves;
  appendCurves(*mPathInfo, pointCount, curves);
  mRepartitions.reserve(curves.size());
  mProportions.reserve(curves.size());
  mCurves.swap(curves);
  mTotalLength = 0;
  appendTables();
}

//   mCurves         segment 0      segment 1     segment 2
//   mRepartitions   d0 .. d15      d0 .. d15     d0 .. d15     running length within the segment
//   mProportions    ----> 0.3      ------> 0.8   ------> 1     where the segment ends, as a share
//                                                              of the whole length
//
// mProportions holds running lengths first and is divided when the total is known. A path of length
// 0 has NaN there.
template <class V, class W, class S>
void XTBezierPath<V, W, S>::appendTables() {
  const std::size_t first = mRepartitions.size();
  mRepartitions.resize(mCurves.size());
  arc_length::fillTables(&mCurves[first], mCurves.size() - first, &mRepartitions[first]);
  for (std::size_t i = first; i < mCurves.size(); ++i) {
    mTotalLength += mRepartitions[i].back();
    mProportions.push_back(mTotalLength);
  }
  for (std::size_t i = first; i < mProportions.size(); ++i) mProportions[i] /= mTotalLength;
}

template <class V, class W, class S>
V XTBezierPath<V, W, S>::valueAt(S distance) const {
  const Place place = placeAt(distance);
  return place.mCurve->pointAt(place.mT);
}

template <class V, class W, class S>
W XTBezierPath<V, W, S>::directionAt(S distance) const {
  const Place place = placeAt(distance);
  return place.mCurve->directionAt(place.mT);
}

template <class V, class W, class S>
typename XTBezierPath<V, W, S>::CurveDistanceRepartition
XTBezierPath<V, W, S>::CalculateCurveDistanceRepartition(Curve curve) {
  CurveDistanceRepartition repartition;
  arc_length::fillTables(&curve, 1, &repartition);
  return repartition;
}

//   length d15 |              . '    Each entry of the table ends a piece of 1/16 of the
//              |          . '        parameter. Within a piece the parameter is taken as
//    wanted x  |- - - . '            proportional to the length.
//         dk-1 |    ' |
//              |  '   |
//              +------+---------
//                k/16 t        1
template <class V, class W, class S>
S XTBezierPath<V, W, S>::GetTfromDistanceWanted(CurveDistanceRepartition repartition, S distance) {
  const S x = distance * repartition[15];
  // The number of entries that are at most x, 15 at most: compared with the eighth, then the fourth
  // or the twelfth, and so on down to the odd ones. Four comparisons whatever x is, and the last
  // entry is not compared: rounding may make x exceed it.
  std::size_t k = 0;
  for (std::size_t step = 8; step > 0; step /= 2) {
    if (repartition[k + step - 1] <= x) k += step;
  }
  if (k == 0) return S(double(x / repartition[0]) * 0.0625);
  const S past = x - repartition[k - 1];
  const S piece = repartition[k] - repartition[k - 1];
  return S(double(past) * 0.0625 / double(piece) + double(k) * 0.0625);  // order: exact floats
}

template <class V, class W, class S>
typename XTBezierPath<V, W, S>::Place XTBezierPath<V, W, S>::placeAt(S distance) const {
  if (!(distance >= 0 && distance <= 1)) {
    throw std::runtime_error("XTBezierPath::valueAt - the distance wanted is not between 0 and 1");
  }
  const std::size_t count = mProportions.size();
  if (count < 2) {
    // Required behaviour: a single segment is measured anew by every call.
    const Curve& curve = mCurves.at(0);
    return {&curve, GetTfromDistanceWanted(CalculateCurveDistanceRepartition(curve), distance)};
  }
  if (distance <= mProportions[0]) {
    return {mCurves.data(), GetTfromDistanceWanted(mRepartitions[0], distance / mProportions[0])};
  }
  // The first segment that does not end before the distance.
  std::size_t k = 1;
  while (mProportions[k] < distance && k + 1 < count) ++k;
  const S before = mProportions[k - 1];
  const S share = (distance - before) / (mProportions[k] - before);  // order: exact floats
  return {&mCurves[k], GetTfromDistanceWanted(mRepartitions[k], share)};
}

template class XTBezierPath<UXS::uxs_generic_vec3<float>, UXS::uxs_generic_vec3<float>, float>;

}  // namespace Norvel::Vexa
