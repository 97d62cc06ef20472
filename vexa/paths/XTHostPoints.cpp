#include "vexa/paths/XTHostPoints.h"

#include <limits>
#include <stdexcept>

#include "vexa/paths/XCBezierPointTool.h"
#include "vexa/paths/XCZELPathInfo.h"
#include "vexa/support/UxThrow.h"

namespace Norvel::Vexa {

namespace {

template <class Triple>
UXS::uxs_generic_vec3<float> narrowed(const Triple& v) {
  return {float(v.x), float(v.y), float(v.z)};
}

}  // namespace

template <class Contract>
const typename XTHostPoints<Contract>::PointList* XTHostPoints<Contract>::list(
    const char* missingList) const {
  if (mPoints == nullptr) throw std::runtime_error(missingList);
  return mPoints;
}

template <class Contract>
UxZel::IZelBezierPoint* XTHostPoints<Contract>::point(unsigned int index, const char* missingList,
                                                      const char* missingPoint) const {
  const PointList* points = list(missingList);
  // The host counts in int: it has no point beyond that.
  constexpr unsigned int kLastIndex = std::numeric_limits<int>::max();
  UxZel::IZelBezierPoint* found = index <= kLastIndex ? points->GetAt(int(index)) : nullptr;
  if (found == nullptr) UxThrow::SignalNULL(missingPoint);
  return found;
}

template <class Contract>
bool XTHostPoints<Contract>::PointsMgrExist() const {
  return mPoints != nullptr;
}

// A host that counts below 0 has no points.
template <class Contract>
unsigned int XTHostPoints<Contract>::getNbBezierPoints() const {
  const int count =
      list("XC3DPath::getNbBezierPoints - can not get path's BezierPointsMgr")->GetCount();
  return count > 0 ? unsigned(count) : 0;
}

// The getters of both contracts, the reading one and the editing one. Hosts have doubles and paths
// compute in float, so each narrows last. Required behaviour: the texts name two other classes.

template <class Contract>
typename XTHostPoints<Contract>::V3 XTHostPoints<Contract>::getPassagePointPositionAt(
    unsigned int index) const {
  const UxZel::IZelBezierPoint* read =
      point(index, "XC3DPath::getPassagePointPositionAt - can not get path's BezierPointsMgr",
            "XCZELPathAgent::getPassagePointPositionAt : can not get BezierPoint");
  return narrowed(*read->GetPassagePoint());
}

template <class Contract>
typename XTHostPoints<Contract>::V3 XTHostPoints<Contract>::getBeforeControlPointAt(
    unsigned int index) const {
  const UxZel::IZelBezierPoint* read =
      point(index, "XC3DPath::getBeforeControlPointAt - can not get path's BezierPointsMgr",
            "XCZELPathAgent::getBeforeControlPointAt : can not get BezierPoint");
  return narrowed(XCBezierPointTool(read).getBeforeCtrlPoint());
}

template <class Contract>
typename XTHostPoints<Contract>::V3 XTHostPoints<Contract>::getAfterControlPointAt(
    unsigned int index) const {
  const UxZel::IZelBezierPoint* read =
      point(index, "XC3DPath::getAfterControlPointAt - can not get path's BezierPointsMgr",
            "XCZELPathAgent::getAfterControlPointAt : can not get BezierPoint");
  return narrowed(XCBezierPointTool(read).getAfterCtrlPoint());
}

template <class Contract>
typename XTHostPoints<Contract>::V3 XTHostPoints<Contract>::getToBeforeCtrlPtAt(
    unsigned int index) const {
  const UxZel::IZelBezierPoint* read =
      point(index, "XC3DPath::getToBeforeCtrlPtAt - can not get path's BezierPointsMgr",
            "XCZELPathAgent::getToBeforeCtrlPtAt : can not get BezierPoint");
  return narrowed(*read->GetBeforeControlOffset());
}

template <class Contract>
typename XTHostPoints<Contract>::V3 XTHostPoints<Contract>::getToAfterCtrlPtAt(
    unsigned int index) const {
  const UxZel::IZelBezierPoint* read =
      point(index, "XC3DPath::getToAfterCtrlPtAt - can not get path's BezierPointsMgr",
            "XCZELPathAgent::getToAfterCtrlPtAt : can not get BezierPoint");
  return narrowed(*read->GetAfterControlOffset());
}

template <class Contract>
float XTHostPoints<Contract>::getAfterControlPointWeightAt(unsigned int index) const {
  const UxZel::IZelBezierPoint* read =
      point(index, "XC3DPath::getAfterControlPointWeightAt - can not get path's BezierPointsMgr",
            "XCZELPathAgent::getAfterControlPointWeightAt : can not get BezierPoint");
  return XCBezierPointTool(read).getAfterCtrlPtWeight();
}

template <class Contract>
float XTHostPoints<Contract>::getBeforeControlPointWeightAt(unsigned int index) const {
  const UxZel::IZelBezierPoint* read =
      point(index, "XC3DPath::getBeforeControlPointWeightAt - can not get path's BezierPointsMgr",
            "XCZELPathAgent::getBeforeControlPointWeightAt : can not get BezierPoint");
  return XCBezierPointTool(read).getBeforeCtrlPtWeight();
}

template <class Contract>
bool XTHostPoints<Contract>::getTangentLockedAt(unsigned int index) const {
  const UxZel::IZelBezierPoint* read =
      point(index, "XC3DPath::getTangentLockedAt - can not get path's BezierPointsMgr",
            "XCZELPathAgent::getTangentLockedAt : can not get BezierPoint");
  return read->GetTangentLocked();
}

template <class Contract>
bool XTHostPoints<Contract>::getPathClosed() const {
  return mPath != nullptr && mPath->IsPathClosed();
}

// The instances that exist: one type of vector, two contracts.
using V3 = UXS::uxs_generic_vec3<float>;
template class XTPathInfo<V3, V3, float>;
template class XTPathAgent<V3, V3, float>;
template class XTHostPoints<XTPathInfo<V3, V3, float>>;
template class XTHostPoints<XTPathAgent<V3, V3, float>>;

XCZELPathInfo::XCZELPathInfo(const UxZel::IZel3DPath* path)
    : XTHostPoints(path, path != nullptr ? path->GetBezierPoints() : nullptr) {}

XCZELPathInfo::~XCZELPathInfo() = default;

}  // namespace Norvel::Vexa
