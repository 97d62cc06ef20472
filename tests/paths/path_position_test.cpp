#include "vexa/paths/path_position.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <rapidcheck/gtest.h>

#include "refhost/scenes/paths.h"
#include "tests/helpers/compare.h"
#include "tests/helpers/raw_bits.h"

namespace {

using namespace vexa;
using Norvel::Vexa::uxInterpolated3DPath;
using tests::whatOf;
using UxZel::IZelKeyFrame;
using Keys = refhost::List<IZelKeyFrame, refhost::Key>;

constexpr int kMax = std::numeric_limits<int>::max();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
const refhost::Path kStraight = refhost::scenes::straightPath(3);

// Keys at frames 0, 10, 20 ... with these fractions; the last one asks for a curve.
Keys keysOf(std::initializer_list<double> fractions, int lastCurve = UxZel::kInterpolationSquare) {
  Keys keys;
  for (const double fraction : fractions) {
    keys.add(refhost::realKey(10 * keys.GetCount(), fraction));
  }
  keys.mElements.back().mInterpolationType = lastCurve;
  return keys;
}

double at(const Keys& keys, int minIndex, int frame, bool closed = false) {
  return Norvel::Vexa::getInterpolatedPathPosition(&keys, minIndex, minIndex + 1, frame, closed);
}

// Cosine curves are at 0.0955 after a fifth of the time and at 0.9045 after four.
TEST(PathPosition, EasesWhereTheObjectRests) {
  const struct {
    Keys keys;
    int minIndex;
    double early, late;  // how far at a fifth and at four fifths of the way
  } cases[] = {
      {keysOf({0, 1}), 0, 0.0955, 0.9045},
      {keysOf({0, 1, 2}), 0, 0.0955, 0.8},
      {keysOf({0, 1, 2}), 1, 0.2, 0.9045},
      {keysOf({0, 1, 2, 3}), 1, 0.2, 0.8},
      {keysOf({0, 0, 1, 2}), 1, 0.2, 0.8},  // ease-in has no place later than half its duration
      {keysOf({0, 1, 2, 2}), 1, 0.2, 0.9045},
      {keysOf({0, 1, 2, 2.0000009}), 1, 0.2, 0.9045},
      {keysOf({0, 1, 2, 2.0000011}), 1, 0.2, 0.8},
      {keysOf({0, 0, 1, 1}), 1, 0.0955, 0.9045},
      {keysOf({0, 1}, UxZel::kInterpolationLinear), 0, 0.2, 0.8},
  };
  for (const auto& [keys, minIndex, early, late] : cases) {
    const int start = 10 * minIndex;
    const double from = at(keys, minIndex, start);
    EXPECT_NEAR(at(keys, minIndex, start + 2), from + early, 1e-5);
    EXPECT_NEAR(at(keys, minIndex, start + 8), from + late, 1e-5);
    EXPECT_NEAR(at(keys, minIndex, start + 2, true), from + 0.2, 1e-15);  // closed: never
  }
  EXPECT_EQ(at(keysOf({0, 1}), 0, 5), 0.5);
}

TEST(PathPosition, OddKeysGiveOddFractionsAndNothingWorse) {
  EXPECT_TRUE(std::isnan(at(keysOf({kNaN, kNaN, kNaN, kNaN}), 1, 15)));
  Keys wide = keysOf({0, 1}, UxZel::kInterpolationLinear);
  wide.mElements[0].mFrame = -2;
  wide.mElements[1].mFrame = kMax;  // the difference is an int, and wraps
  EXPECT_EQ(at(wide, 0, -1), 1.0 / -2147483647.0);
  wide.mElements[1].mFrame = -2;
  EXPECT_EQ(at(wide, 0, 3), HUGE_VAL);
  // The line goes on beyond the keys, the curves do not.
  EXPECT_EQ(at(keysOf({0, 1}), 0, 20, true), 2);
  EXPECT_EQ(whatOf([] {
              at(keysOf({0, 1}), 0, 11);
            }),
            "XTSinusInterpolation::valueAt - inTime is out of range");
}

struct Answer {
  IZelKeyFrame::uValue mPosition{{-1, -1, -1}}, mDirection{{-1, -1, -1}};
};

template <class... LookAhead>
Answer follow(const UxZel::IZel3DPath* path, const Keys& keys, int frame, LookAhead... lookAhead) {
  Answer answer;
  uxInterpolated3DPath(&keys, path, 0, 1, frame, answer.mPosition, answer.mDirection, lookAhead...);
  return answer;
}

void expectX(const Answer& answer, double position, double direction) {
  EXPECT_EQ(answer.mPosition.mVector[0], position);
  EXPECT_EQ(answer.mDirection.mVector[0], direction);
  for (const auto& value : {answer.mPosition, answer.mDirection}) {
    EXPECT_EQ(value.mVector[1], 0);
    EXPECT_EQ(value.mVector[2], 0);
  }
}

// Three units along X in ten frames. The direction inside is the derivative, at the end a leg.
TEST(PathPosition, FollowsAStraightPath) {
  const Keys keys = keysOf({0, 1});
  expectX(follow(&kStraight, keys, 5), 1.5, 3);
  expectX(follow(&kStraight, keys, 10), 3, 1);
  Keys still = keysOf({0.5, 1});
  still.mElements[1].mFrame = 0;
  expectX(follow(&kStraight, still, 7), 1.5, 1);  // a unit vector at one frame only
  expectX(follow(&kStraight, still, 7, 0.75), 1.5, 0.75);
  const double pairs[][2] = {{0.75, 0.75}, {-0.75, -0.75}, {1.5, 1.5},    // the very end
                             {2, 2.5},     {-9, 2.5},      {kNaN, 2.5}};  // and a unit step
  for (const auto& [distance, chord] : pairs) {
    expectX(follow(&kStraight, keys, 5, distance), 1.5, chord);
  }
  const refhost::Path longer = refhost::scenes::straightPath(6);
  expectX(follow(&longer, keys, 5, 9.0), 3, 4);  // a unit step, though the leg is longer
}

TEST(PathPosition, AFailureWritesNothing) {
  const Keys beyond = keysOf({0.5, 3});
  Answer answer;
  EXPECT_EQ(whatOf([&] {
              uxInterpolated3DPath(&beyond, &kStraight, 0, 1, 10, answer.mPosition,
                                   answer.mDirection);
            }),
            "XTBezierPath::valueAt - the distance wanted is not between 0 and 1");
  EXPECT_EQ(answer.mPosition.mVector[0], -1);
  EXPECT_EQ(answer.mDirection.mVector[0], -1);
  EXPECT_EQ(whatOf([&] { follow(nullptr, beyond, 10, 1); }),
            "XC3DPath::XC3DPath - probleme path ! ");
}

// Frames, fractions and distances of any bits: an answer or an exception.
RC_GTEST_PROP(PathPositionProperty, AnyNumbersEnd, ()) {
  const auto anyInt = rc::gen::oneOf(rc::gen::arbitrary<int>(), rc::gen::just(kMax),
                                     rc::gen::just(std::numeric_limits<int>::min()));
  const auto anyReal = tests::rawBits<double>();
  Keys keys;
  for (int i = 0; i < 3; ++i) keys.add(refhost::realKey(*anyInt, *anyReal, *anyInt));
  refhost::Path path = refhost::scenes::circlePath(*anyReal);
  const int frame = *anyInt;
  const double distance = *anyReal;
  whatOf([&] { follow(&path, keys, frame); });
  whatOf([&] { follow(&path, keys, frame, distance); });
}

}  // namespace
