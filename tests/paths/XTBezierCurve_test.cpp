#include "vexa/paths/XTBezierCurve.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

#include "tests/helpers/compare.h"
#include "tests/helpers/vtable_slot.h"

namespace {

using vexa::tests::sameBits;
using vexa::tests::slotOf;
using vexa::tests::whatOf;
using V3 = UXS::uxs_generic_vec3<float>;
using Curve = Norvel::Vexa::XTBezierCurve<V3, V3, float>;

const Curve kStraight({0, 0, 0}, {3, 0, 0}, {1, 0, 0}, {2, 0, 0});
const Curve kArch({0, 0, 0}, {1, 0, 0}, {0.2f, 1, 0}, {0.8f, 1, 0});
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

TEST(BezierCurve, VirtualOperationsStandInOrder) {
  EXPECT_EQ(slotOf(&Curve::getStartValue), 2);  // after both destructors
  EXPECT_EQ(slotOf(&Curve::getEndValue), 3);
  EXPECT_EQ(slotOf(&Curve::getStartControlPoint), 4);
  EXPECT_EQ(slotOf(&Curve::getEndControlPoint), 5);
  EXPECT_EQ(slotOf(&Curve::setStartValue), 6);
  EXPECT_EQ(slotOf(&Curve::setEndValue), 7);
  EXPECT_EQ(slotOf(&Curve::setStartControlPoint), 8);
  EXPECT_EQ(slotOf(&Curve::setEndControlPoint), 9);
  EXPECT_EQ(slotOf(&Curve::getLengthAproximation), 10);
  EXPECT_EQ(slotOf(&Curve::getFirstCPLengthProportion), 11);
  EXPECT_EQ(slotOf(&Curve::getEndCPLengthProportion), 12);
  EXPECT_EQ(slotOf(&Curve::pointAt), 13);
  EXPECT_EQ(slotOf(&Curve::directionAt), 14);
  EXPECT_EQ(slotOf(&Curve::subdivideCurve), 15);
  EXPECT_EQ(slotOf(&Curve::FindDistanceFromCoordinate), 16);
}

TEST(BezierCurve, KeepsWhatWasSet) {
  Curve curve;
  EXPECT_EQ(curve.pointAt(0.5f), V3());
  curve.setStartValue({1, 0, 0});
  curve.setEndValue({2, 0, 0});
  curve.setStartControlPoint({3, 0, 0});
  curve.setEndControlPoint({4, 0, 0});
  EXPECT_EQ(curve.getStartValue().x, 1);
  EXPECT_EQ(curve.getEndValue().x, 2);
  EXPECT_EQ(curve.getStartControlPoint().x, 3);
  EXPECT_EQ(curve.getEndControlPoint().x, 4);
}

// A symmetric arch: at t = 1/2 it is in the middle, at 3/4 of its controls' height, and level.
TEST(BezierCurve, MiddleOfAnArch) {
  EXPECT_FLOAT_EQ(kArch.pointAt(0.5f).x, 0.5f);
  EXPECT_FLOAT_EQ(kArch.pointAt(0.5f).y, 0.75f);
  EXPECT_FLOAT_EQ(kArch.directionAt(0.5f).x, 1.2f);
  EXPECT_FLOAT_EQ(kArch.directionAt(0.5f).y, 0);
  EXPECT_EQ(kStraight.pointAt(0.5f), V3(1.5f, 0, 0));
  EXPECT_EQ(kStraight.directionAt(0.5f), V3(3, 0, 0));
}

TEST(BezierCurve, TheEndsComeBackAsStoredAndJustOutsideIsTheEndPoint) {
  const Curve curve({-0.0f, 1, 2}, {3, -0.0f, 5}, {1, 1, 1}, {2, 2, 2});
  EXPECT_TRUE(sameBits(curve.pointAt(0), V3(-0.0f, 1, 2)));
  for (const float t : {1.0f, 1.0000005f, -0.0000005f, kNaN}) {  // below 0: required, not the start
    EXPECT_TRUE(sameBits(curve.pointAt(t), V3(3, -0.0f, 5))) << t;
    EXPECT_EQ(curve.directionAt(t), V3(1, -2, 3)) << t;  // without the factor 3
  }
  EXPECT_EQ(curve.directionAt(0), V3(1, 0, -1));
  for (const float t : {1.01f, -0.01f, std::numeric_limits<float>::infinity()}) {
    EXPECT_EQ(whatOf([&] { curve.pointAt(t); }), "XTBezierCurve::valueAt - inTime is out of range");
    EXPECT_EQ(whatOf([&] { curve.directionAt(t); }),
              "XTBezierCurve::directionAt - inTime is out of range");
  }
}

// A square without its bottom: sides of length 1, M half way along the top.
TEST(BezierCurve, LengthsOfTheControlPolygon) {
  const Curve square({0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0});
  EXPECT_FLOAT_EQ(float(square.getLengthAproximation()), float((3 + 4 * std::sqrt(1.25)) / 3));
  EXPECT_EQ(kStraight.getLengthAproximation(), 3);
  const Curve uneven({0, 0, 0}, {8, 0, 0}, {1, 0, 0}, {6, 0, 0});
  EXPECT_EQ(uneven.getFirstCPLengthProportion(), 0.125);
  EXPECT_EQ(uneven.getEndCPLengthProportion(), 0.25);
  EXPECT_EQ(Curve().getFirstCPLengthProportion(), 1);
  EXPECT_EQ(Curve().getEndCPLengthProportion(), 1);
}

TEST(BezierCurve, HalvesMeetInTheMiddleAndMayReplaceTheWhole) {
  Curve left = kArch, right;
  left.subdivideCurve(left, right);
  EXPECT_EQ(left.getStartValue(), kArch.getStartValue());
  EXPECT_TRUE(sameBits(left.getEndValue(), right.getStartValue()));
  EXPECT_EQ(right.getEndValue(), kArch.getEndValue());
  for (const float t : {0.25f, 0.5f, 0.75f}) {
    const V3 inLeft = left.pointAt(t) - kArch.pointAt(t / 2);
    const V3 inRight = right.pointAt(t) - kArch.pointAt(0.5f + t / 2);
    EXPECT_NEAR(std::fabs(inLeft.x) + std::fabs(inLeft.y), 0, 3e-7);
    EXPECT_NEAR(std::fabs(inRight.x) + std::fabs(inRight.y), 0, 3e-7);
  }
}

double find(const Curve& curve, V3 coordinate, int depth = 10) {
  return curve.FindDistanceFromCoordinate(curve.getStartValue(), curve.getStartControlPoint(),
                                          curve.getEndControlPoint(), curve.getEndValue(),
                                          coordinate, depth);
}

// The arch is symmetric, so that its middle is at half its length and the ends at none and all.
TEST(BezierCurve, FindsTheDistanceOfTheNearestPlace) {
  const double length = find(kArch, {2, -5, 0});
  EXPECT_NEAR(find(kArch, {0.5f, 0.75f, 0}), length / 2, 1e-4);
  EXPECT_NEAR(find(kArch, {0.5f, 9, 0}), length / 2, 1e-4);
  EXPECT_EQ(find(kArch, {-1, 0, 0}), 0);
  EXPECT_NEAR(find(kArch, kArch.pointAt(0.25f)) + find(kArch, kArch.pointAt(0.75f)), length, 1e-4);
  EXPECT_NEAR(find(kStraight, {1, 7, 0}), 1, 1e-6);
  EXPECT_NEAR(find(kArch, {0.5f, 9, 0}, -1), kArch.getLengthAproximation() / 2, 1e-6);  // one chord
}

TEST(BezierCurve, TheSearchEndsOnAnyInput) {
  constexpr float kInf = std::numeric_limits<float>::infinity();
  const float odd[] = {kNaN, kInf, -kInf, 3e38f, -3e38f, 1e-45f};
  for (const float a : odd) {
    for (const float b : odd) {
      const Curve curve({a, 0, 0}, {0, b, 0}, {b, a, 0}, {0, 0, a});
      find(curve, {b, b, b}, std::numeric_limits<int>::max());
      find(kArch, {a, b, 0}, std::numeric_limits<int>::max());
    }
  }
}

}  // namespace
