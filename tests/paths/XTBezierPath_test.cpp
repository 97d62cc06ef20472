#include "vexa/paths/XTBezierPath.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>
#include <stdexcept>

#include "models/literal_path.h"
#include "refhost/scenes/paths.h"
#include "tests/helpers/compare.h"
#include "tests/helpers/raw_bits.h"
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

// A body that gains speed evenly has gone k^2 of 256 steps after k of 16 parts.
TEST(BezierPath, TheTableIsSearchedAtAllItsEntriesAndBetween) {
  BezierPath::CurveDistanceRepartition squares;
  for (std::size_t k = 1; k <= 16; ++k) squares[k - 1] = float(k * k);
  for (int k = 0; k < 16; ++k) {
    const float entry = float(k * k) / 256, between = float(2 * k * k + 2 * k + 1) / 512;
    EXPECT_EQ(BezierPath::GetTfromDistanceWanted(squares, entry), float(k) / 16);
    EXPECT_EQ(BezierPath::GetTfromDistanceWanted(squares, between), (float(k) + 0.5f) / 16);
  }
  EXPECT_EQ(BezierPath::GetTfromDistanceWanted(squares, 1), 1);
  // It waits from 4/16 to 6/16: a distance equal to several entries is the last of them.
  squares[4] = squares[5] = squares[3];
  EXPECT_EQ(BezierPath::GetTfromDistanceWanted(squares, 16.0f / 256), 6.0f / 16);
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

// However many points it has.
TEST(BezierPath, WithoutLengthItIsOnePoint) {
  const refhost::BezierPoint here = refhost::smoothPoint({1, 2, 3}, {});
  const Ride one(pathThrough({here, here})), two(pathThrough({here, here, here}));
  for (const float f : {0.0f, 0.5f, 1.0f}) {
    EXPECT_EQ(one.mPath.valueAt(f), V3(1, 2, 3));
    EXPECT_EQ(two.mPath.valueAt(f), V3(1, 2, 3));
    EXPECT_EQ(two.mPath.directionAt(f), V3());
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

refhost::Path anyPath(const rc::Gen<double>& numbers) {
  refhost::Path path;
  for (int i = *rc::gen::inRange(2, 20); i > 0; --i) {
    refhost::BezierPoint& point = path.mPoints.add();
    const auto n = *rc::gen::container<std::vector<double>>(9, numbers);
    point.mPassage = {n[0], n[1], n[2]};
    point.mBefore = {n[3], n[4], n[5]};
    point.mAfter = {n[6], n[7], n[8]};
  }
  return path;
}

// Equal steps are equal distances: the chords between many places add up evenly. A table of sixteen
// entries joined by straight lines misses by a fraction of its longest piece. And no place leaves
// the hull of the control points: along any direction d it is between the outermost of them.
RC_GTEST_PROP(BezierPathProperty, MovesEvenlyInsideTheHullOfTheControls, ()) {
  const auto numbers = rc::gen::cast<double>(rc::gen::inRange(-100, 100));
  const Ride ride(anyPath(numbers));
  const auto d = *rc::gen::container<std::vector<double>>(3, numbers);
  const auto along = [&](V3 v) {
    return d[0] * double(v.x) + d[1] * double(v.y) + d[2] * double(v.z);
  };
  double low = HUGE_VAL, high = -low;
  for (const auto& curve : ride.mPath.getCurves()) {
    const auto [least, most] =
        std::minmax({along(curve.getStartValue()), along(curve.getEndValue()),
                     along(curve.getStartControlPoint()), along(curve.getEndControlPoint())});
    low = std::min(low, least - 0.06);  // a few float roundings of 300 times 200
    high = std::max(high, most + 0.06);
  }
  const double length = double(ride.mPath.getTotalLength());
  double gone = 0;
  V3 before = ride.mPath.valueAt(0);
  for (int i = 1; i <= 2000; ++i) {
    const V3 place = ride.mPath.valueAt(float(i) / 2000), step = place - before;
    gone += std::hypot(double(step.x), double(step.y), double(step.z));
    RC_ASSERT(std::fabs(gone - length * i / 2000) <= 0.015 * length);
    RC_ASSERT(low <= along(place) && along(place) <= high);
    before = place;
  }
}

bool same(float a, float b) { return tests::sameBits(a, b) || (std::isnan(a) && std::isnan(b)); }

// Whatever the host's numbers are, only a fraction outside the path is refused, and lanes side by
// side give what one segment after the other gives.
RC_GTEST_PROP(BezierPathProperty, AnyNumbersGiveTheAnswerOfTheLiteralForm, (bool ordinary)) {
  const auto numbers = rc::gen::cast<double>(rc::gen::cast<float>(rc::gen::inRange(-9999, 9999)));
  const Ride ride(anyPath(ordinary ? numbers : tests::rawBits<double>()));
  const models::LiteralPath literal(ride.mInfo);
  for (std::size_t i = 0; i < literal.tables.size(); ++i) {
    const auto& table = ride.mPath.getRepartitions()[i];
    RC_ASSERT(std::equal(table.begin(), table.end(), literal.tables[i].begin(), same));
    RC_ASSERT(same(ride.mPath.getProportions()[i], literal.proportions[i]));
  }
  const float f = *tests::rawBits<float>();
  const bool inside = f >= 0 && f <= 1;
  RC_ASSERT(whatOf([&] { ride.mPath.directionAt(f); }) ==
            (inside ? "nothing was thrown" : kOutOfRange));
  for (int i = 0; i <= 32; ++i) {
    const V3 ours = ride.mPath.valueAt(float(i) / 32), theirs = literal.valueAt(float(i) / 32);
    RC_ASSERT(same(ours.x, theirs.x) && same(ours.y, theirs.y) && same(ours.z, theirs.z));
  }
}

}  // namespace
