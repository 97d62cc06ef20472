#include "vexa/paths/path_position.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <rapidcheck/gtest.h>

#include "refhost/scenes/paths.h"
#include "tests/helpers/compare.h"
#include "tests/helpers/raw_bits.h"
#include "vexa/interpolation/timed_curves.h"
#include "vexa/paths/XC3DPath.h"

namespace {

using namespace vexa;
using Norvel::Vexa::getInterpolatedPathPosition;
using Norvel::Vexa::uxInterpolated3DPath;
using tests::rawBits;
using tests::sameBits;
using tests::whatOf;
using UxZel::IZelKeyFrame;
using Keys = refhost::List<IZelKeyFrame, refhost::Key>;

constexpr int kMax = std::numeric_limits<int>::max();

// Keys at frames 0, 10, 20 ... with these fractions; the last one asks for a curve.
Keys keysOf(std::initializer_list<double> fractions, int lastCurve = UxZel::kInterpolationSquare) {
  Keys keys;
  int frame = 0;
  for (const double fraction : fractions) {
    keys.add(refhost::realKey(frame, fraction));
    frame += 10;
  }
  keys.mElements.back().mInterpolationType = lastCurve;
  return keys;
}

double at(const Keys& keys, int minIndex, int frame, bool closed = false) {
  return getInterpolatedPathPosition(&keys, minIndex, minIndex + 1, frame, closed);
}

// A quarter of the way from 0 to 1 in time; cosine curves have gone (1 - cos 45 degrees) / 2.
constexpr double kEased = 0.14644660940672624;

TEST(PathPosition, EasesWhereTheObjectRests) {
  EXPECT_EQ(at(keysOf({0, 1}), 0, 5), 0.5);
  EXPECT_DOUBLE_EQ(at(keysOf({0, 1, 2}), 0, 2), Norvel::Vexa::Sqerp(0, 10, 0.0, 1.0, 2));
  EXPECT_LT(at(keysOf({0, 1, 2}), 0, 2), 0.2);   // slow away from the first key
  EXPECT_EQ(at(keysOf({0, 1, 2}), 0, 8), 0.8);   // and on at full speed
  EXPECT_EQ(at(keysOf({0, 1, 2}), 1, 12), 1.2);  // arrives at full speed
  EXPECT_GT(at(keysOf({0, 1, 2}), 1, 18), 1.8);  // slow into the last key
  EXPECT_EQ(at(keysOf({0, 1, 2, 3}), 1, 12), 1.2);
  EXPECT_EQ(at(keysOf({0, 1, 2, 3}), 1, 18), 1.8);
  // A stop holds its fraction from one key to the next.
  EXPECT_LT(at(keysOf({0, 0, 1, 1}), 1, 12), 0.2);
  EXPECT_GT(at(keysOf({0, 0, 1, 1}), 1, 18), 0.8);
  EXPECT_GT(at(keysOf({0, 1, 2, 2.0000009}), 1, 18), 1.8);
  EXPECT_EQ(at(keysOf({0, 1, 2, 2.0000011}), 1, 18), 1.8);
}

TEST(PathPosition, SinusBetweenTheOnlyTwoKeys) {
  Keys keys = keysOf({0, 1});
  keys.mElements[1].mFrame = 8;
  EXPECT_NEAR(at(keys, 0, 2), kEased, 1e-15);
  EXPECT_NEAR(at(keys, 0, 6), 1 - kEased, 1e-15);
}

TEST(PathPosition, IsLinearOnClosedPathsAndWhenAllKeysAre) {
  EXPECT_EQ(at(keysOf({0, 1}), 0, 2, true), 0.2);
  EXPECT_EQ(at(keysOf({0, 1}, UxZel::kInterpolationLinear), 0, 2), 0.2);
  EXPECT_EQ(at(keysOf({0, 1, 2}, UxZel::kInterpolationConstant), 0, 8), 0.8);
  // The line goes on beyond the keys, the curves do not.
  EXPECT_EQ(at(keysOf({0, 1}), 0, 20, true), 2);
  EXPECT_EQ(whatOf([] {
              at(keysOf({0, 1}), 0, 11);
            }),
            "XTSinusInterpolation::valueAt - inTime is out of range");
}

TEST(PathPosition, OddKeysGiveOddFractionsAndNothingWorse) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_TRUE(std::isnan(at(keysOf({nan, nan, nan, nan}), 1, 15)));
  Keys wide = keysOf({0, 1}, UxZel::kInterpolationLinear);
  wide.mElements[0].mFrame = -2;
  wide.mElements[1].mFrame = kMax;  // the difference is an int, and wraps
  EXPECT_EQ(at(wide, 0, -1), 1.0 / -2147483647.0);
  wide.mElements[1].mFrame = -2;
  EXPECT_EQ(at(wide, 0, 3), std::numeric_limits<double>::infinity());
}

struct Answer {
  IZelKeyFrame::uValue mPosition{{-1, -1, -1}}, mDirection{{-1, -1, -1}};
};

Answer follow(const refhost::Path& path, const Keys& keys, int frame, int minIndex = 0) {
  Answer answer;
  uxInterpolated3DPath(&keys, &path, minIndex, minIndex + 1, frame, answer.mPosition,
                       answer.mDirection);
  return answer;
}

Answer lookAhead(const refhost::Path& path, const Keys& keys, int frame, double distance) {
  Answer answer;
  uxInterpolated3DPath(&keys, &path, 0, 1, frame, answer.mPosition, answer.mDirection, distance);
  return answer;
}

void expectVector(const IZelKeyFrame::uValue& value, double x, double y, double z) {
  EXPECT_EQ(value.mVector[0], x);
  EXPECT_EQ(value.mVector[1], y);
  EXPECT_EQ(value.mVector[2], z);
}

// Three units along X in ten frames. The direction inside is the derivative, at the end a leg.
TEST(PathPosition, FollowsAStraightPath) {
  const refhost::Path path = refhost::scenes::straightPath(3);
  const Keys keys = keysOf({0, 1});
  expectVector(follow(path, keys, 5).mPosition, 1.5, 0, 0);
  expectVector(follow(path, keys, 5).mDirection, 3, 0, 0);
  expectVector(follow(path, keys, 10).mPosition, 3, 0, 0);
  expectVector(follow(path, keys, 10).mDirection, 1, 0, 0);
  Keys still = keysOf({0.5, 1});
  still.mElements[1].mFrame = 0;
  expectVector(follow(path, still, 7).mPosition, 1.5, 0, 0);
  expectVector(follow(path, still, 7).mDirection, 1, 0, 0);  // a unit vector at one frame only
  expectVector(lookAhead(path, still, 7, 0.75).mDirection, 0.75, 0, 0);
}

TEST(PathPosition, LooksAheadAlongThePath) {
  const refhost::Path path = refhost::scenes::straightPath(3);
  const Keys keys = keysOf({0, 1});
  expectVector(lookAhead(path, keys, 5, 0.75).mDirection, 0.75, 0, 0);
  expectVector(lookAhead(path, keys, 5, -0.75).mDirection, -0.75, 0, 0);
  expectVector(lookAhead(path, keys, 5, 1.5).mDirection, 1.5, 0, 0);  // just the end
  expectVector(lookAhead(path, keys, 5, 2).mDirection, 2.5, 0, 0);    // the end and a unit step
  expectVector(lookAhead(path, keys, 5, -9).mDirection, 2.5, 0, 0);   // the end, not the start
  expectVector(lookAhead(path, keys, 5, NAN).mDirection, 2.5, 0, 0);
  expectVector(lookAhead(path, keys, 5, 2).mPosition, 1.5, 0, 0);
}

TEST(PathPosition, AFailureWritesNothing) {
  refhost::Path path = refhost::scenes::straightPath(3);
  const Keys beyond = keysOf({0.5, 3});
  Answer answer;
  const auto call = [&] {
    uxInterpolated3DPath(&beyond, &path, 0, 1, 10, answer.mPosition, answer.mDirection);
  };
  EXPECT_EQ(whatOf(call), "XTBezierPath::valueAt - the distance wanted is not between 0 and 1");
  path.mHasPointList = false;
  EXPECT_EQ(whatOf(call), "XC3DPath::XC3DPath - probleme path ! ");
  expectVector(answer.mPosition, -1, -1, -1);
  expectVector(answer.mDirection, -1, -1, -1);
  EXPECT_EQ(whatOf([&] {
              uxInterpolated3DPath(&beyond, nullptr, 0, 1, 10, answer.mPosition, answer.mDirection,
                                   1);
            }),
            "XC3DPath::XC3DPath - probleme path ! ");
}

// Every curve runs from its first to its last fraction without turning back.
RC_GTEST_PROP(PathPositionProperty, MovesOneWayBetweenTwoKeys, ()) {
  Keys keys;
  for (int i = 0; i < 4; ++i) {
    keys.add(refhost::realKey(i * 40 - 60, *rc::gen::inRange(0, 4) / 4.0, *rc::gen::inRange(0, 4)));
  }
  const int minIndex = *rc::gen::inRange(0, 3);
  const int first = minIndex * 40 - 60;
  const bool closed = *rc::gen::arbitrary<bool>();
  const double from = at(keys, minIndex, first, closed),
               to = at(keys, minIndex, first + 40, closed);
  RC_ASSERT(from == keys.mElements[std::size_t(minIndex)].mValue.mReal);
  RC_ASSERT(std::fabs(to - keys.mElements[std::size_t(minIndex) + 1].mValue.mReal) < 1e-15);
  for (int frame = first; frame < first + 40; ++frame) {
    const double step = at(keys, minIndex, frame + 1, closed) - at(keys, minIndex, frame, closed);
    RC_ASSERT(step * (to - from) >= 0);
  }
}

// Frames, fractions and distances of any bits: an answer or an exception.
RC_GTEST_PROP(PathPositionProperty, AnyNumbersEnd, ()) {
  const auto anyInt = rc::gen::oneOf(rc::gen::arbitrary<int>(), rc::gen::just(kMax),
                                     rc::gen::just(std::numeric_limits<int>::min()));
  Keys keys;
  for (int i = 0; i < 3; ++i) keys.add(refhost::realKey(*anyInt, *rawBits<double>(), *anyInt));
  refhost::Path path = refhost::scenes::circlePath(*rawBits<double>());
  path.mClosed = *rc::gen::arbitrary<bool>();
  const int frame = *anyInt;
  whatOf([&] { follow(path, keys, frame, 1); });
  const double distance = *rawBits<double>();
  whatOf([&] { lookAhead(path, keys, frame, distance); });
}

}  // namespace
