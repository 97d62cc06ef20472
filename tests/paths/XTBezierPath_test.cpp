#include "vexa/paths/XTBezierPath.h"

#include <cmath>
#include <gtest/gtest.h>
#include <stdexcept>

#include "refhost/scenes/paths.h"
#include "tests/helpers/compare.h"
#include "vexa/paths/XC3DPath.h"

namespace {

using namespace vexa;
using Norvel::Vexa::XCZELPathInfo;
using tests::whatOf;
using V3 = UXS::uxs_generic_vec3<float>;
using BezierPath = Norvel::Vexa::XTBezierPath<V3, V3, float>;

constexpr const char* kOutOfRange =
    "XTBezierPath::valueAt - the distance wanted is not between 0 and 1";

// A path of the host with the info and the Bezier path over it.
struct Ride {
  explicit Ride(refhost::Path path) : mHost(std::move(path)) {}

  refhost::Path mHost;
  XCZELPathInfo mInfo{&mHost};
  Norvel::Vexa::XC3DPath mPath{&mInfo};
};

refhost::Path pathThrough(std::initializer_list<refhost::BezierPoint> points) {
  refhost::Path path;
  path.mPoints.mElements = points;
  return path;
}

// A symmetric arch: at t = 1/2 it is in the middle, at 3/4 of its controls' height, and level.
TEST(BezierCurve, MiddleOfAnArch) {
  const BezierPath::Curve arch({0, 0, 0}, {1, 0, 0}, {0.2f, 1, 0}, {0.8f, 1, 0});
  EXPECT_FLOAT_EQ(arch.pointAt(0.5f).x, 0.5f);
  EXPECT_FLOAT_EQ(arch.pointAt(0.5f).y, 0.75f);
  EXPECT_FLOAT_EQ(arch.directionAt(0.5f).y, 0);
}

// Round a square of side 1, a quarter of the way to each side.
TEST(BezierPath, WhereSegmentsMeetTheEarlierOneAnswers) {
  refhost::Path square;
  for (const UxZel::CZelPoint& corner :
       std::initializer_list<UxZel::CZelPoint>{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {}}) {
    square.mPoints.add(refhost::smoothPoint(corner, {}));
  }
  square.mPoints.mElements[1].mBefore = {-0.25, 0, 0};
  square.mPoints.mElements[2].mBefore = {0, -0.25, 0};
  const Ride ride(square);
  EXPECT_EQ(ride.mPath.getProportions(), (std::vector<float>{0.25f, 0.5f, 0.75f, 1}));
  EXPECT_EQ(ride.mPath.directionAt(0.25f), V3(0.25f, 0, 0));
  EXPECT_EQ(ride.mPath.directionAt(0.5f), V3(0, 0.25f, 0));
  EXPECT_LT(ride.mPath.directionAt(0.50001f).x, 0);
  EXPECT_EQ(ride.mPath.valueAt(0.5f), V3(1, 1, 0));
}

TEST(BezierPath, RefusesFractionsOutsideThePathAndPathsWithoutSegments) {
  const Ride one(refhost::scenes::straightPath(3)), four(refhost::scenes::circlePath(1));
  EXPECT_EQ(one.mPath.valueAt(0.5f), V3(1.5f, 0, 0));
  for (const float f : {-1e-45f, 1.0000002f, NAN}) {
    EXPECT_EQ(whatOf([&] { one.mPath.valueAt(f); }), kOutOfRange);
    EXPECT_EQ(whatOf([&] { four.mPath.directionAt(f); }), kOutOfRange);
  }
  EXPECT_THROW(Ride(pathThrough({{}})).mPath.valueAt(0), std::out_of_range);
  EXPECT_THROW(Ride(pathThrough({})).mPath.directionAt(1), std::out_of_range);
  BezierPath nowhere(nullptr);
  nowhere.createBezierCurve();
  EXPECT_THROW(nowhere.valueAt(0), std::out_of_range);
  const XCZELPathInfo pathless(nullptr);
  for (const XCZELPathInfo* info : {&pathless, static_cast<const XCZELPathInfo*>(nullptr)}) {
    EXPECT_EQ(whatOf([&] { Norvel::Vexa::XC3DPath bezier(info); }),
              "XC3DPath::XC3DPath - probleme path ! ");
  }
}

// Fails in the middle of the points while told to.
struct FailingInfo final : XCZELPathInfo {
  using XCZELPathInfo::XCZELPathInfo;
  V3 getBeforeControlPointAt(unsigned int index) const override {
    if (mFails && index == 2) throw std::domain_error("lost");
    return XCZELPathInfo::getBeforeControlPointAt(index);
  }
  bool mFails = true;
};

TEST(BezierPath, BuildingAppendsAndAFailureLeavesTheSequencesInStep) {
  const refhost::Path host = refhost::scenes::windingPath(3);
  FailingInfo info(&host);
  BezierPath path(&info);
  EXPECT_THROW(path.createBezierCurve(), std::domain_error);
  EXPECT_EQ(path.getCurves().size(), 0u);
  info.mFails = false;
  path.createBezierCurve();
  const float length = path.getTotalLength();
  path.createBezierCurve();
  EXPECT_EQ(path.getTotalLength(), length);
  info.mFails = true;
  EXPECT_THROW(path.createBezierCurve(), std::domain_error);
  EXPECT_EQ(path.getTotalLength(), length);
  EXPECT_EQ(path.getCurves().size(), 6u);
  EXPECT_EQ(path.getRepartitions().size(), 6u);
  EXPECT_EQ(path.getProportions().size(), 6u);
  EXPECT_EQ(path.getProportions()[2], 1);
  EXPECT_EQ(path.getProportions()[5], 1);
}

// Equal steps are equal distances: the chords between many places add up evenly. A table of sixteen
// entries joined by straight lines misses by a fraction of its longest piece.
TEST(BezierPath, MovesEvenly) {
  const Ride ride(refhost::scenes::windingPath(7));
  const double length = double(ride.mPath.getTotalLength());
  double gone = 0;
  V3 before = ride.mPath.valueAt(0);
  for (int i = 1; i <= 500; ++i) {
    const V3 place = ride.mPath.valueAt(float(i) / 500), step = place - before;
    gone += std::hypot(double(step.x), double(step.y), double(step.z));
    ASSERT_NEAR(gone, length * i / 500, 0.002 * length);
    before = place;
  }
}

}  // namespace
