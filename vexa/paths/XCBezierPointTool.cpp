#include "vexa/paths/XCBezierPointTool.h"

#include <cmath>

namespace Norvel::Vexa {

namespace {

// The host is asked for the offset first, whatever the compiler: a host may record its calls.
UxZel::CZelPoint absolute(const UxZel::CZelVector& offset, const UxZel::IZelBezierPoint& point) {
  const UxZel::CZelPoint& passage = *point.GetPassagePoint();
  return {passage.x + offset.x, passage.y + offset.y, passage.z + offset.z};
}

// Squared in double, rounded to float before the root: the host's doubles reach the root as floats.
float weight(const UxZel::CZelVector& offset) {
  const double squared =
      offset.x * offset.x + offset.y * offset.y + offset.z * offset.z;  // order: exact floats
  return std::sqrt(float(squared));
}

}  // namespace

UxZel::CZelPoint XCBezierPointTool::getBeforeCtrlPoint() const {
  return absolute(*mPoint->GetBeforeControlOffset(), *mPoint);
}

UxZel::CZelPoint XCBezierPointTool::getAfterCtrlPoint() const {
  return absolute(*mPoint->GetAfterControlOffset(), *mPoint);
}

float XCBezierPointTool::getBeforeCtrlPtWeight() const {
  return weight(*mPoint->GetBeforeControlOffset());
}

float XCBezierPointTool::getAfterCtrlPtWeight() const {
  return weight(*mPoint->GetAfterControlOffset());
}

}  // namespace Norvel::Vexa
