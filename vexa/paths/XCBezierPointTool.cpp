#include "vexa/paths/XCBezierPointTool.h"

#include <cmath>

namespace Norvel::Vexa {

namespace {

UxZel::CZelPoint sum(const UxZel::CZelPoint& point, const UxZel::CZelVector& offset) {
  return {point.x + offset.x, point.y + offset.y, point.z + offset.z};
}

float weight(const UxZel::CZelVector& offset) {
  const double squared =
      offset.x * offset.x + offset.y * offset.y + offset.z * offset.z;  // order: exact floats
  return std::sqrt(float(squared));
}

}  // namespace

UxZel::CZelPoint XCBezierPointTool::getBeforeCtrlPoint() const {
  return sum(*mPoint->GetPassagePoint(), *mPoint->GetBeforeControlOffset());
}

UxZel::CZelPoint XCBezierPointTool::getAfterCtrlPoint() const {
  return sum(*mPoint->GetPassagePoint(), *mPoint->GetAfterControlOffset());
}

float XCBezierPointTool::getBeforeCtrlPtWeight() const {
  return weight(*mPoint->GetBeforeControlOffset());
}

float XCBezierPointTool::getAfterCtrlPtWeight() const {
  return weight(*mPoint->GetAfterControlOffset());
}

}  // namespace Norvel::Vexa
