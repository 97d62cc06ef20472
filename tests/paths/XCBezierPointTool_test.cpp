#include "vexa/paths/XCBezierPointTool.h"

#include <gtest/gtest.h>

#include "refhost/Path.h"

namespace {

using Norvel::Vexa::XCBezierPointTool;

// The offset is added in double: in float it would vanish beside the passage point.
TEST(BezierPointTool, ControlPointsAreSummedInDouble) {
  vexa::refhost::BezierPoint point;
  point.mPassage = {-1e8, 0, 0};
  point.mBefore = point.mAfter = {1e8 + 0.5, 0, 0};
  EXPECT_EQ(XCBezierPointTool(&point).getBeforeCtrlPoint().x, 0.5);
  EXPECT_EQ(XCBezierPointTool(&point).getAfterCtrlPoint().x, 0.5);
  EXPECT_EQ(XCBezierPointTool(&point).getAfterCtrlPtWeight(), 1e8f);
  point.mBefore = {};
  EXPECT_EQ(XCBezierPointTool(&point).getBeforeCtrlPoint().x, -1e8);
  EXPECT_EQ(XCBezierPointTool(&point).getBeforeCtrlPtWeight(), 0);
}

}  // namespace
