#include "vexa/paths/XCZELPathInfo.h"

#include "vexa/paths/host_points_internal.h"

namespace Norvel::Vexa {

XCZELPathInfo::XCZELPathInfo(const UxZel::IZel3DPath* path)
    : mPath(path), mPoints(path != nullptr ? path->GetBezierPoints() : nullptr) {}

bool XCZELPathInfo::PointsMgrExist() const { return mPoints != nullptr; }

unsigned int XCZELPathInfo::getNbBezierPoints() const {
  return host_points::getNbBezierPoints(mPoints);
}

XCZELPathInfo::V3 XCZELPathInfo::getPassagePointPositionAt(unsigned int index) const {
  return host_points::getPassagePointPositionAt(mPoints, index);
}

XCZELPathInfo::V3 XCZELPathInfo::getBeforeControlPointAt(unsigned int index) const {
  return host_points::getBeforeControlPointAt(mPoints, index);
}

XCZELPathInfo::V3 XCZELPathInfo::getAfterControlPointAt(unsigned int index) const {
  return host_points::getAfterControlPointAt(mPoints, index);
}

XCZELPathInfo::V3 XCZELPathInfo::getToBeforeCtrlPtAt(unsigned int index) const {
  return host_points::getToBeforeCtrlPtAt(mPoints, index);
}

XCZELPathInfo::V3 XCZELPathInfo::getToAfterCtrlPtAt(unsigned int index) const {
  return host_points::getToAfterCtrlPtAt(mPoints, index);
}

float XCZELPathInfo::getAfterControlPointWeightAt(unsigned int index) const {
  return host_points::getAfterControlPointWeightAt(mPoints, index);
}

float XCZELPathInfo::getBeforeControlPointWeightAt(unsigned int index) const {
  return host_points::getBeforeControlPointWeightAt(mPoints, index);
}

bool XCZELPathInfo::getTangentLockedAt(unsigned int index) const {
  return host_points::getTangentLockedAt(mPoints, index);
}

bool XCZELPathInfo::getPathClosed() const { return mPath != nullptr && mPath->IsPathClosed(); }

XCZELPathInfo::~XCZELPathInfo() = default;

}  // namespace Norvel::Vexa
