#include "vexa/interpolation/timed_curves.h"

#include <cmath>
#include <gtest/gtest.h>
#include <random>

#include "tests/helpers/compare.h"
#include "vexa/interpolation/XTLinearInterpolation.h"

using namespace Norvel::Vexa;
using vexa::tests::atRunTime;
using vexa::tests::sameBits;

namespace {

constexpr int kIntMin = std::numeric_limits<int>::min();
constexpr int kIntMax = std::numeric_limits<int>::max();

// The cosine fraction of r, by another formula.
double ease(double r) { return (1 - std::cos(3.141592653589793 * r)) / 2; }

}  // namespace

// The time, not the time since the start, is compared with half the duration: only an interval from
// 0 changes its curve in the middle.
TEST(TimedCurves, ShapesOfEarlyAndLateIntervals) {
  for (double r = 0.0625; r < 1; r += 0.0625) {
    const double t = atRunTime(10 * r), low = std::min(r, ease(r)), high = std::max(r, ease(r));
    EXPECT_EQ(Lerp(0, 10, 0.0, 10.0, t), t);
    EXPECT_NEAR(Sinerp(0, 10, 1.0, 3.0, t), 1 + 2 * ease(r), 1e-15);
    EXPECT_NEAR(Sqerp(0, 10, 1.0, 3.0, t), 1 + 2 * low, 1e-15);
    EXPECT_NEAR(OneMinSqerp(0, 10, 1.0, 3.0, t), 1 + 2 * high, 1e-15);
    EXPECT_EQ(Sqerp(10, 20, 0.0, 1.0, 10 + t), r);
    EXPECT_NEAR(OneMinSqerp(10, 20, 0.0, 1.0, 10 + t), high, 1e-15);
    EXPECT_NEAR(Sqerp(-20, -10, 0.0, 1.0, t - 20), low, 1e-15);
    EXPECT_EQ(OneMinSqerp(-20, -10, 0.0, 1.0, t - 20), r);
  }
  EXPECT_EQ(Sinerp(0, 2, 0.0, 1.0, 1), 0.5);  // sin(0) is exact
  // From 4 to 14 the square changes at 5, where the line has come to a tenth.
  EXPECT_NEAR(Sqerp(4, 14, 0.0, 1.0, 4.9), ease(0.09), 1e-15);
  EXPECT_EQ(Sqerp(4, 14, 0.0, 1.0, 5), 0.1);
}

TEST(TimedCurves, IntegersTruncateBeforeTheyMultiplyAndWrap) {
  EXPECT_EQ(Lerp(0, 10, 0, 10, 5), 0);
  EXPECT_EQ(Lerp(0, 10, 0L, 10L, 9.99), 0);
  EXPECT_EQ(Lerp(0, 0.25, 10, 20, 0.2), 10);  // slope 4 * 10, but no whole unit of time
  EXPECT_EQ((XTLinearInterpolation<int, int, int>(0, 0.4, 1, 9).getCoeff()), 16);
  EXPECT_EQ((XTLinearInterpolation<long, long, long>(0, 1e-10, 0, 3).getCoeff()), 30000000000);
  EXPECT_EQ(Sinerp(0, 2, 0, 10, 1), 5);
  EXPECT_EQ(Sinerp(0, 2, 10, 5, 1), 8);  // -2.5 is truncated toward zero
  for (const double t : {0.001, 5.0, 9.999}) {
    EXPECT_EQ(Sqerp(0, 10, 3, 100, t), 3);
    EXPECT_EQ(OneMinSqerp(0, 10, 3, 100, t), 3);
  }
  // A fraction that rounds to 1 counts.
  EXPECT_EQ(OneMinSqerp(-1, -1e-300, 3, 100, std::nextafter(-1e-300, -1.0)), 100);
  EXPECT_EQ(Sinerp(0, 2, kIntMin, kIntMax, 1), kIntMin);         // the difference wraps to -1
  EXPECT_EQ(Lerp(0, 1e-300, 1, 4, 1e-301), 1);                   // slope kIntMin * 3, no whole unit
  EXPECT_EQ(Lerp(-1e300, 1e300, kIntMax, kIntMin, 0), kIntMax);  // and the other way round
}

// Floats round at every step; vectors and colours compute like their components.
TEST(TimedCurves, FloatsVectorsAndColours) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> real(-50, 50);
  for (int n = 0; n < 500; ++n) {
    const double t0 = real(random), t1 = t0 + std::abs(real(random)) + 0.1;
    const double t = t0 + (t1 - t0) * std::abs(real(random)) / 51;
    const float a = float(real(random)), b = float(real(random));
    EXPECT_TRUE(
        sameBits(Lerp(t0, t1, a, b, t), float(t - t0) * ((b - a) * float(1.0 / (t1 - t0))) + a));
    EXPECT_NEAR(Sinerp(t0, t1, a, b, t), Sinerp(t0, t1, double(a), double(b), t), 1e-5);
    EXPECT_NEAR(Sqerp(t0, t1, a, b, t), Sqerp(t0, t1, double(a), double(b), t), 1e-5);

    const auto likeItsComponents = [&](auto curve) {
      using Vec3 = UXS::uxs_generic_vec3<float>;
      using UXS::uxs_color;
      const float p = curve(a, b), q = curve(b, a), s = curve(a, -b), u = curve(-a, b);
      EXPECT_TRUE(sameBits(curve(Vec3(a, b, a), Vec3(b, a, -b)), Vec3(p, q, s)));
      EXPECT_TRUE(
          sameBits(curve(uxs_color(a, b, a, -a), uxs_color(b, a, -b, b)), uxs_color(p, q, s, u)));
    };
    likeItsComponents([&](auto v, auto w) { return Lerp(t0, t1, v, w, t); });
    likeItsComponents([&](auto v, auto w) { return Sinerp(t0, t1, v, w, t); });
    likeItsComponents([&](auto v, auto w) { return Sqerp(t0, t1, v, w, t); });
    likeItsComponents([&](auto v, auto w) { return OneMinSqerp(t0, t1, v, w, t); });
  }
}
