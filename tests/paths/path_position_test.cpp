#include "vexa/paths/path_position.h"

#include <gtest/gtest.h>

#include "refhost/scenes/paths.h"
#include "tests/helpers/compare.h"

namespace {

using namespace vexa;
using Norvel::Vexa::getInterpolatedPathPosition;
using Norvel::Vexa::uxInterpolated3DPath;
using tests::whatOf;
using uValue = UxZel::IZelKeyFrame::uValue;
using Keys = refhost::List<UxZel::IZelKeyFrame, refhost::Key>;

const refhost::Path kStraight = refhost::scenes::straightPath(3);

// Keys at frames 0, 10, 20 ... with these fractions; the last one asks for a curve.
Keys keysOf(std::initializer_list<double> fractions) {
  Keys keys;
  for (const double fraction : fractions)
    keys.add(refhost::realKey(10 * keys.GetCount(), fraction));
  keys.mElements.back().mInterpolationType = UxZel::kInterpolationSquare;
  return keys;
}

}  // namespace

// Cosine curves are at 0.0955 after a fifth of the time.
TEST(PathPosition, EasesWhereTheObjectRests) {
  const Keys goes = keysOf({0, 1, 2}), rests = keysOf({0, 0, 1, 1});
  EXPECT_NEAR(getInterpolatedPathPosition(&goes, 0, 1, 2, false), 0.0955, 1e-5);
  EXPECT_NEAR(getInterpolatedPathPosition(&goes, 0, 1, 2, true), 0.2, 1e-15) << "closed: never";
  EXPECT_NEAR(getInterpolatedPathPosition(&goes, 1, 2, 12, false), 1.2, 1e-15);
  EXPECT_NEAR(getInterpolatedPathPosition(&rests, 1, 2, 12, false), 0.0955, 1e-5);
}

// Three units along X in ten frames; the direction is the derivative, or the chord to a place
// ahead.
TEST(PathPosition, FollowsAStraightPathAndAFailureWritesNothing) {
  const Keys keys = keysOf({0, 1}), beyond = keysOf({0.5, 3});
  uValue position{}, direction{};
  uxInterpolated3DPath(&keys, &kStraight, 0, 1, 5, position, direction);
  EXPECT_EQ(position.mVector[0], 1.5);
  EXPECT_EQ(direction.mVector[0], 3);
  uxInterpolated3DPath(&keys, &kStraight, 0, 1, 5, position, direction, 0.75);
  EXPECT_EQ(direction.mVector[0], 0.75);
  uxInterpolated3DPath(&keys, &kStraight, 0, 1, 5, position, direction, -9);
  EXPECT_EQ(direction.mVector[0], 2.5) << "required: to the end, and a unit step";
  EXPECT_EQ(
      whatOf([&] { uxInterpolated3DPath(&beyond, &kStraight, 0, 1, 10, position, direction); }),
      "XTBezierPath::valueAt - the distance wanted is not between 0 and 1");
  EXPECT_EQ(position.mVector[0], 1.5);
  EXPECT_EQ(direction.mVector[0], 2.5);
}
