#include "vexa/paths/XCZELPathAgent.h"

#include <stdexcept>

namespace Norvel::Vexa {

namespace {

UxZel::CZelVector widened(const UXS::uxs_generic_vec3<float>& v) {
  return {double(v.x), double(v.y), double(v.z)};
}

// From the passage point of a host point to an absolute control point. Hosts store control points
// as offsets, so moving a passage point takes its controls along.
UxZel::CZelVector offsetTo(const UXS::uxs_generic_vec3<float>& control,
                           const UxZel::IZelBezierPoint& point) {
  const UxZel::CZelPoint& passage = *point.GetPassagePoint();
  return {double(control.x) - passage.x, double(control.y) - passage.y,
          double(control.z) - passage.z};
}

}  // namespace

XCZELPathAgent::XCZELPathAgent(UxZel::IZel3DPath* path)
    : XTHostPoints(path, path != nullptr ? path->GetBezierPoints() : nullptr),
      mBuiltFromPath(true) {}

XCZELPathAgent::XCZELPathAgent(const PointList* points)
    : XTHostPoints(nullptr, points), mBuiltFromPath(false) {}

// Each setter finds the point by its index and then calls the host once. Its two texts are whole,
// so that a search finds them: the first when there is no list, the second when there is no such
// point.

bool XCZELPathAgent::addNewPointAt(unsigned int index) {
  editableList("XC3DPath::addNewPointAt - can not get path's BezierPointsMgr")->InsertAt(index);
  return true;
}

bool XCZELPathAgent::removePointAt(unsigned int index) {
  editableList("XC3DPath::removePointAt - can not get path's BezierPointsMgr")->RemoveAt(index);
  return true;
}

void XCZELPathAgent::setPassagePointPositionAt(unsigned int index, const V3& position) {
  UxZel::IZelBezierPoint* edited =
      point(index, "XC3DPath::setPassagePointPositionAt - can not get path's BezierPointsMgr",
            "XCZELPathAgent::setPassagePointPositionAt : can not get BezierPoint");
  const UxZel::CZelPoint stored{double(position.x), double(position.y), double(position.z)};
  edited->SetPassagePoint(&stored);
}

void XCZELPathAgent::setBeforeControlPointAt(unsigned int index, const V3& control) {
  UxZel::IZelBezierPoint* edited =
      point(index, "XC3DPath::setBeforeControlPointAt - can not get path's BezierPointsMgr",
            "XCZELPathAgent::setBeforeControlPointAt : can not get BezierPoint");
  const UxZel::CZelVector offset = offsetTo(control, *edited);
  edited->SetBeforeControlOffset(&offset);
}

void XCZELPathAgent::setAfterControlPointAt(unsigned int index, const V3& control) {
  UxZel::IZelBezierPoint* edited =
      point(index, "XC3DPath::setAfterControlPointAt - can not get path's BezierPointsMgr",
            "XCZELPathAgent::setAfterControlPointAt : can not get BezierPoint");
  const UxZel::CZelVector offset = offsetTo(control, *edited);
  edited->SetAfterControlOffset(&offset);
}

void XCZELPathAgent::setToBeforeCtrlPtAt(unsigned int index, const V3& offset) {
  UxZel::IZelBezierPoint* edited =
      point(index, "XC3DPath::setToBeforeCtrlPtAt - can not get path's BezierPointsMgr",
            "XCZELPathAgent::setToBeforeCtrlPtAt : can not get BezierPoint");
  const UxZel::CZelVector stored = widened(offset);
  edited->SetBeforeControlOffset(&stored);
}

void XCZELPathAgent::setToAfterCtrlPtAt(unsigned int index, const V3& offset) {
  UxZel::IZelBezierPoint* edited =
      point(index, "XC3DPath::setToAfterCtrlPtAt - can not get path's BezierPointsMgr",
            "XCZELPathAgent::setToAfterCtrlPtAt : can not get BezierPoint");
  const UxZel::CZelVector stored = widened(offset);
  edited->SetAfterControlOffset(&stored);
}

void XCZELPathAgent::setTangentLockedAt(unsigned int index, bool locked) {
  UxZel::IZelBezierPoint* edited =
      point(index, "XC3DPath::setTangentLockedAt - can not get path's BezierPointsMgr",
            "XCZELPathAgent::setTangentLockedAt : can not get BezierPoint");
  edited->SetTangentLocked(locked);
}

void XCZELPathAgent::setPathClosed(bool closed) {
  if (mPath == nullptr) {
    throw std::runtime_error("XCZELPathAgent::setPathClosed - mPath is not initialized");
  }
  // The constructor took a path to edit.
  const_cast<UxZel::IZel3DPath*>(mPath)->SetPathClosed(closed);
}

// Nothing is cached here, so there is nothing to hold back.
void XCZELPathAgent::BlockSynchronization() {}

void XCZELPathAgent::UnBlockSynchronization() {}

XCZELPathAgent::~XCZELPathAgent() = default;

XCZELPathAgent::PointList* XCZELPathAgent::editableList(const char* missingList) const {
  // Required behaviour: a leading blank, and addNewPointAt whatever the operation.
  if (!mBuiltFromPath) {
    throw std::runtime_error(" XCZELPathAgent::addNewPointAt - mPath is not initialized");
  }
  // The path handed out this list to be edited; only an agent's own list may be const.
  return const_cast<PointList*>(list(missingList));
}

}  // namespace Norvel::Vexa
