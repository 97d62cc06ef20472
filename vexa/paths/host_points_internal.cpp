#include "vexa/paths/host_points_internal.h"

#include <limits>
#include <stdexcept>
#include <string>

#include "vexa/paths/XCBezierPointTool.h"
#include "vexa/support/UxThrow.h"

namespace Norvel::Vexa::host_points {

namespace {

template <class Triple>
V3 narrowed(const Triple& v) {
  return {float(v.x), float(v.y), float(v.z)};
}

}  // namespace

void checkList(const List* points, const char* operation) {
  if (points != nullptr) return;
  throw std::runtime_error(std::string("XC3DPath::") + operation +
                           " - can not get path's BezierPointsMgr");
}

UxZel::IZelBezierPoint* pointAt(const List* points, unsigned int index, const char* operation) {
  checkList(points, operation);
  // The host counts in int; there is no point beyond that.
  constexpr unsigned int kLastIndex = std::numeric_limits<int>::max();
  UxZel::IZelBezierPoint* point = index <= kLastIndex ? points->GetAt(int(index)) : nullptr;
  if (point == nullptr) {  // asked here too, because the call is dear
    UxThrow::IfNULL(point, "XCZELPathAgent::%s : can not get BezierPoint", operation);
  }
  return point;
}

unsigned int getNbBezierPoints(const List* points) {
  checkList(points, "getNbBezierPoints");
  const int count = points->GetCount();
  return count > 0 ? static_cast<unsigned int>(count) : 0;
}

V3 getPassagePointPositionAt(const List* points, unsigned int index) {
  return narrowed(*pointAt(points, index, "getPassagePointPositionAt")->GetPassagePoint());
}

V3 getBeforeControlPointAt(const List* points, unsigned int index) {
  const XCBezierPointTool tool(pointAt(points, index, "getBeforeControlPointAt"));
  return narrowed(tool.getBeforeCtrlPoint());
}

V3 getAfterControlPointAt(const List* points, unsigned int index) {
  const XCBezierPointTool tool(pointAt(points, index, "getAfterControlPointAt"));
  return narrowed(tool.getAfterCtrlPoint());
}

V3 getToBeforeCtrlPtAt(const List* points, unsigned int index) {
  return narrowed(*pointAt(points, index, "getToBeforeCtrlPtAt")->GetBeforeControlOffset());
}

V3 getToAfterCtrlPtAt(const List* points, unsigned int index) {
  return narrowed(*pointAt(points, index, "getToAfterCtrlPtAt")->GetAfterControlOffset());
}

float getAfterControlPointWeightAt(const List* points, unsigned int index) {
  const XCBezierPointTool tool(pointAt(points, index, "getAfterControlPointWeightAt"));
  return tool.getAfterCtrlPtWeight();
}

float getBeforeControlPointWeightAt(const List* points, unsigned int index) {
  const XCBezierPointTool tool(pointAt(points, index, "getBeforeControlPointWeightAt"));
  return tool.getBeforeCtrlPtWeight();
}

bool getTangentLockedAt(const List* points, unsigned int index) {
  return pointAt(points, index, "getTangentLockedAt")->GetTangentLocked();
}

}  // namespace Norvel::Vexa::host_points
