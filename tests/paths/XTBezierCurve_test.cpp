#include "vexa/paths/XTBezierCurve.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <rapidcheck/gtest.h>

#include "tests/helpers/compare.h"
#include "tests/helpers/raw_bits.h"
#include "tests/helpers/vtable_slot.h"

namespace {

using vexa::tests::sameBits;
using vexa::tests::whatOf;
using V3 = UXS::uxs_generic_vec3<float>;
using Curve = Norvel::Vexa::XTBezierCurve<V3, V3, float>;

const Curve kStraight({0, 0, 0}, {3, 0, 0}, {1, 0, 0}, {2, 0, 0});
const Curve kArch({0, 0, 0}, {1, 0, 0}, {0.2f, 1, 0}, {0.8f, 1, 0});

TEST(BezierCurve, VirtualOperationsFollowTheDestructorsInOrder) {
  EXPECT_TRUE(vexa::tests::standInOrderFrom(
      2, &Curve::getStartValue, &Curve::getEndValue, &Curve::getStartControlPoint,
      &Curve::getEndControlPoint, &Curve::setStartValue, &Curve::setEndValue,
      &Curve::setStartControlPoint, &Curve::setEndControlPoint, &Curve::getLengthAproximation,
      &Curve::getFirstCPLengthProportion, &Curve::getEndCPLengthProportion, &Curve::pointAt,
      &Curve::directionAt, &Curve::subdivideCurve, &Curve::FindDistanceFromCoordinate));
}

// A symmetric arch: at t = 1/2 it is in the middle, at 3/4 of its controls' height, and level.
TEST(BezierCurve, MiddleOfAnArch) {
  EXPECT_FLOAT_EQ(kArch.pointAt(0.5f).x, 0.5f);
  EXPECT_FLOAT_EQ(kArch.pointAt(0.5f).y, 0.75f);
  EXPECT_FLOAT_EQ(kArch.directionAt(0.5f).x, 1.2f);
  EXPECT_FLOAT_EQ(kArch.directionAt(0.5f).y, 0);
  EXPECT_EQ(kStraight.directionAt(0.5f), V3(3, 0, 0));
}

TEST(BezierCurve, TheEndsComeBackAsStoredAndJustOutsideIsTheEndPoint) {
  const Curve curve({-0.0f, 1, 2}, {3, -0.0f, 5}, {1, 1, 1}, {2, 2, 2});
  EXPECT_TRUE(sameBits(curve.pointAt(0), V3(-0.0f, 1, 2)));
  EXPECT_EQ(curve.directionAt(0), V3(1, 0, -1));                // without the factor 3
  for (const float t : {1.0f, 1.0000005f, -0.0000005f, NAN}) {  // below 0: required, not the start
    EXPECT_TRUE(sameBits(curve.pointAt(t), V3(3, -0.0f, 5))) << t;
    EXPECT_EQ(curve.directionAt(t), V3(1, -2, 3)) << t;
  }
  for (const float t : {1.01f, 1.00001f, -0.00001f}) {
    EXPECT_EQ(whatOf([&] { curve.pointAt(t); }), "XTBezierCurve::valueAt - inTime is out of range");
    EXPECT_EQ(whatOf([&] { curve.directionAt(t); }),
              "XTBezierCurve::directionAt - inTime is out of range");
  }
}

// A square without its bottom: sides of length 1, M half way along the top.
TEST(BezierCurve, LengthsOfTheControlPolygon) {
  const Curve square({0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0});
  EXPECT_FLOAT_EQ(float(square.getLengthAproximation()), float((3 + 4 * std::sqrt(1.25)) / 3));
  Curve uneven;
  EXPECT_EQ(uneven.getFirstCPLengthProportion(), 1);
  EXPECT_EQ(uneven.getEndCPLengthProportion(), 1);
  uneven.setEndValue({8, 0, 0});
  uneven.setStartControlPoint({1, 0, 0});
  uneven.setEndControlPoint({6, 0, 0});
  EXPECT_EQ(uneven.getFirstCPLengthProportion(), 0.125);
  EXPECT_EQ(uneven.getEndCPLengthProportion(), 0.25);
}

TEST(BezierCurve, HalvesMeetInTheMiddleAndMayReplaceTheWhole) {
  Curve left = kArch, right;
  left.subdivideCurve(left, right);
  EXPECT_TRUE(sameBits(left.getEndValue(), right.getStartValue()));
  EXPECT_NEAR(left.pointAt(0.5f).y, kArch.pointAt(0.25f).y, 1e-7);
  EXPECT_NEAR(right.pointAt(0.5f).x, kArch.pointAt(0.75f).x, 1e-7);
}

double find(const Curve& curve, V3 coordinate, int depth = 10) {
  return curve.FindDistanceFromCoordinate(curve.getStartValue(), curve.getStartControlPoint(),
                                          curve.getEndControlPoint(), curve.getEndValue(),
                                          coordinate, depth);
}

// The arch is symmetric, so that its middle is at half its length and its ends at none and all.
TEST(BezierCurve, FindsTheDistanceOfTheNearestPlace) {
  const double length = find(kArch, {2, -5, 0});
  EXPECT_NEAR(find(kArch, {0.5f, 9, 0}), length / 2, 1e-4);
  EXPECT_EQ(find(kArch, {-1, 0, 0}), 0);
  EXPECT_NEAR(find(kArch, kArch.pointAt(0.25f)) + find(kArch, kArch.pointAt(0.75f)), length, 1e-4);
  EXPECT_NEAR(find(kStraight, {1, 7, 0}), 1, 1e-6);
  EXPECT_NEAR(find(kArch, {0.5f, 9, 0}, -1), kArch.getLengthAproximation() / 2, 1e-6);  // one chord
}

RC_GTEST_PROP(BezierCurveProperty, TheSearchEndsOnAnyInput, ()) {
  const auto n = *rc::gen::container<std::vector<float>>(6, vexa::tests::rawBits<float>());
  const Curve curve({n[0], n[1], n[2]}, {n[3], n[4], n[5]}, {n[1], n[3], 0}, {n[2], n[0], 0});
  find(curve, {n[5], n[4], n[0]}, std::numeric_limits<int>::max());
}

}  // namespace
