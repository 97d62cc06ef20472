#include "vexa/interpolation/timed_curves.h"

#include <gtest/gtest.h>

using namespace Norvel::Vexa;

// A cosine curve is at 0.1464 after a quarter of the time and at 0.8536 after three.
TEST(TimedCurves, Shapes) {
  constexpr double kEased = 0.14644660940672624;
  EXPECT_EQ(Lerp(0, 4, 0.0, 1.0, 1), 0.25);
  EXPECT_NEAR(Sinerp(0, 4, 0.0, 1.0, 1), kEased, 1e-15);
  EXPECT_NEAR(Sinerp(0, 4, 0.0, 1.0, 3), 1 - kEased, 1e-15);
  EXPECT_NEAR(Sqerp(0, 4, 0.0, 1.0, 1), kEased, 1e-15);
  EXPECT_EQ(Sqerp(0, 4, 0.0, 1.0, 3), 0.75);
  EXPECT_EQ(OneMinSqerp(0, 4, 0.0, 1.0, 1), 0.25);
  EXPECT_NEAR(OneMinSqerp(0, 4, 0.0, 1.0, 3), 1 - kEased, 1e-15);
}

// Required: the time, not the time since the start, is compared with half the duration.
TEST(TimedCurves, ALateIntervalIsStraightWhereItShouldBeSquare) {
  EXPECT_EQ(Sqerp(10, 14, 0.0, 1.0, 11), 0.25);
}

TEST(TimedCurves, IntegersTruncateBeforeTheyMultiply) {
  EXPECT_EQ(Lerp(0, 10, 0, 10, 9.99), 0);
  EXPECT_EQ(Sinerp(0, 2, 10, 5, 1), 8) << "-2.5 is truncated toward zero";
  EXPECT_EQ(Sqerp(0, 10, 3, 100, 9.999), 3);
}
