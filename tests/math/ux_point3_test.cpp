#include "vexa/math/ux_point3.h"

#include <gtest/gtest.h>
#include <type_traits>

using namespace Norvel::Vexa;
using P = ux_point3<double>;
using V = ux_vect3<double>;

TEST(Point3, EqualWithinAThousandth) {
  EXPECT_TRUE(P(1, 2, 3) == P(1.0009999, 1.9990001, 3));
  EXPECT_TRUE(P(0, 0, 0) != P(0, 0.001, 0));
  EXPECT_TRUE(P(0, 0, 0) != P(0, 0, std::nan("")));
  // The float nearest to 0.001 is above the double 0.001, and is compared with that.
  EXPECT_TRUE(ux_point3<float>(0, 0, 0) != ux_point3<float>(0.001f, 0, 0));
  // In double these are less than 0.001 apart; their difference in float rounds to above it.
  EXPECT_TRUE(ux_point3<float>(0.00099999993f, 0, 0) != ux_point3<float>(-6e-11f, 0, 0));
}

TEST(Point3, MovesAndDividesButMeetsBothEndsOfALerp) {
  P p(1, 2, 3);
  static_assert(!std::is_reference_v<decltype(p += V())>, "required: by value");
  EXPECT_EQ(V(p += V(1, 1, 1)), V(2, 3, 4));
  p -= V(0, 0, 2);
  EXPECT_EQ(p - P(1, 1, 1), V(1, 2, 1));
  EXPECT_EQ(V(p + P(1, 1, 1) * 2), V(4, 5, 4));
  EXPECT_EQ(P(1e-5, 0, 0).distance(P(0, 0, 0)), 1e-5);  // no epsilon
  EXPECT_EQ((P(49, 0, 0) / 49).x, 1);                   // a vector multiplies by the reciprocal
  p[2] = 7;
  EXPECT_EQ(p.z + p[0], 9);
  const P a(1, 2, 3), b(2, 4, 8);
  for (const int t : {0, 1, 2}) EXPECT_EQ(V(a.lerp(b, t)), V(1 + t, 2 + 2 * t, 3 + 5 * t));
}
