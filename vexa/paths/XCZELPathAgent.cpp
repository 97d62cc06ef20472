#include "vexa/paths/XCZELPathAgent.h"

#include <stdexcept>

#include "vexa/paths/host_points_internal.h"

namespace Norvel::Vexa {

namespace {

UxZel::CZelVector widened(const UXS::uxs_generic_vec3<float>& v) {
  return {double(v.x), double(v.y), double(v.z)};
}

// From the passage point of a host point to an absolute control point.
UxZel::CZelVector offsetTo(const UXS::uxs_generic_vec3<float>& control,
                           const UxZel::IZelBezierPoint& point) {
  const UxZel::CZelPoint& passage = *point.GetPassagePoint();
  return {double(control.x) - passage.x, double(control.y) - passage.y,
          double(control.z) - passage.z};
}

}  // namespace

XCZELPathAgent::XCZELPathAgent(UxZel::IZel3DPath* path)
    : mPath(path),
      mEditablePoints(path != nullptr ? path->GetBezierPoints() : nullptr),
      mPoints(mEditablePoints),
      mBuiltFromPath(true) {}

XCZELPathAgent::XCZELPathAgent(const PointList* points)
    : mPath(nullptr), mEditablePoints(nullptr), mPoints(points), mBuiltFromPath(false) {}

bool XCZELPathAgent::PointsMgrExist() const { return mPoints != nullptr; }

unsigned int XCZELPathAgent::getNbBezierPoints() const {
  return host_points::getNbBezierPoints(mPoints);
}

bool XCZELPathAgent::addNewPointAt(unsigned int index) {
  editableList("addNewPointAt")->InsertAt(index);
  return true;
}

bool XCZELPathAgent::removePointAt(unsigned int index) {
  editableList("removePointAt")->RemoveAt(index);
  return true;
}

XCZELPathAgent::V3 XCZELPathAgent::getPassagePointPositionAt(unsigned int index) const {
  return host_points::getPassagePointPositionAt(mPoints, index);
}

void XCZELPathAgent::setPassagePointPositionAt(unsigned int index, const V3& point) {
  const UxZel::CZelPoint position{double(point.x), double(point.y), double(point.z)};
  host_points::pointAt(mPoints, index, "setPassagePointPositionAt")->SetPassagePoint(&position);
}

XCZELPathAgent::V3 XCZELPathAgent::getBeforeControlPointAt(unsigned int index) const {
  return host_points::getBeforeControlPointAt(mPoints, index);
}

void XCZELPathAgent::setBeforeControlPointAt(unsigned int index, const V3& point) {
  UxZel::IZelBezierPoint* edited = host_points::pointAt(mPoints, index, "setBeforeControlPointAt");
  const UxZel::CZelVector offset = offsetTo(point, *edited);
  edited->SetBeforeControlOffset(&offset);
}

XCZELPathAgent::V3 XCZELPathAgent::getAfterControlPointAt(unsigned int index) const {
  return host_points::getAfterControlPointAt(mPoints, index);
}

void XCZELPathAgent::setAfterControlPointAt(unsigned int index, const V3& point) {
  UxZel::IZelBezierPoint* edited = host_points::pointAt(mPoints, index, "setAfterControlPointAt");
  const UxZel::CZelVector offset = offsetTo(point, *edited);
  edited->SetAfterControlOffset(&offset);
}

XCZELPathAgent::V3 XCZELPathAgent::getToBeforeCtrlPtAt(unsigned int index) const {
  return host_points::getToBeforeCtrlPtAt(mPoints, index);
}

void XCZELPathAgent::setToBeforeCtrlPtAt(unsigned int index, const V3& offset) {
  const UxZel::CZelVector stored = widened(offset);
  host_points::pointAt(mPoints, index, "setToBeforeCtrlPtAt")->SetBeforeControlOffset(&stored);
}

XCZELPathAgent::V3 XCZELPathAgent::getToAfterCtrlPtAt(unsigned int index) const {
  return host_points::getToAfterCtrlPtAt(mPoints, index);
}

void XCZELPathAgent::setToAfterCtrlPtAt(unsigned int index, const V3& offset) {
  const UxZel::CZelVector stored = widened(offset);
  host_points::pointAt(mPoints, index, "setToAfterCtrlPtAt")->SetAfterControlOffset(&stored);
}

float XCZELPathAgent::getAfterControlPointWeightAt(unsigned int index) const {
  return host_points::getAfterControlPointWeightAt(mPoints, index);
}

float XCZELPathAgent::getBeforeControlPointWeightAt(unsigned int index) const {
  return host_points::getBeforeControlPointWeightAt(mPoints, index);
}

bool XCZELPathAgent::getTangentLockedAt(unsigned int index) const {
  return host_points::getTangentLockedAt(mPoints, index);
}

void XCZELPathAgent::setTangentLockedAt(unsigned int index, bool locked) {
  host_points::pointAt(mPoints, index, "setTangentLockedAt")->SetTangentLocked(locked);
}

bool XCZELPathAgent::getPathClosed() const { return mPath != nullptr && mPath->IsPathClosed(); }

void XCZELPathAgent::setPathClosed(bool closed) {
  if (mPath == nullptr) {
    throw std::runtime_error("XCZELPathAgent::setPathClosed - mPath is not initialized");
  }
  mPath->SetPathClosed(closed);
}

void XCZELPathAgent::BlockSynchronization() {}

void XCZELPathAgent::UnBlockSynchronization() {}

XCZELPathAgent::~XCZELPathAgent() = default;

XCZELPathAgent::PointList* XCZELPathAgent::editableList(const char* operation) const {
  // Required behaviour: a leading blank, and addNewPointAt whatever the operation.
  if (!mBuiltFromPath) {
    throw std::runtime_error(" XCZELPathAgent::addNewPointAt - mPath is not initialized");
  }
  host_points::checkList(mEditablePoints, operation);
  return mEditablePoints;
}

}  // namespace Norvel::Vexa
