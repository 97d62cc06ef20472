#include "vexa/interpolation/timed_curves.h"

#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <new>
#include <random>

#include "tests/helpers/compare.h"

using namespace Norvel::Vexa;
using vexa::tests::atRunTime;
using vexa::tests::sameBits;
using vexa::tests::ulpDistance;
using vexa::tests::whatOf;
using Vec3 = UXS::uxs_generic_vec3<float>;
using UXS::uxs_color;

namespace {

int allocations = 0;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr int kIntMin = std::numeric_limits<int>::min();
constexpr int kIntMax = std::numeric_limits<int>::max();

// The cosine fraction of r, by another formula.
double ease(double r) { return (1 - std::cos(3.141592653589793 * r)) / 2; }

}  // namespace

// Out of line, so that the compiler does not see malloc meet delete.
[[gnu::noinline]] void* operator new(std::size_t size) {
  ++allocations;
  if (void* memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

TEST(TimedCurves, ShapesOverAnIntervalFromZero) {
  for (double r = 0.0625; r < 1; r += 0.0625) {
    const double t = atRunTime(10 * r);
    EXPECT_EQ(Lerp(0, 10, 0.0, 10.0, t), t);
    EXPECT_NEAR(Sinerp(0, 10, 1.0, 3.0, t), 1 + 2 * ease(r), 1e-15);
    EXPECT_NEAR(Sqerp(0, 10, 1.0, 3.0, t), 1 + 2 * (r < 0.5 ? ease(r) : r), 1e-15) << r;
    EXPECT_NEAR(OneMinSqerp(0, 10, 1.0, 3.0, t), 1 + 2 * (r > 0.5 ? ease(r) : r), 1e-15) << r;
  }
  EXPECT_EQ(Sinerp(0, 2, 0.0, 1.0, 1), 0.5);  // sin(0) is exact
}

// The time, not the time since the start, is compared with half the duration.
TEST(TimedCurves, LateIntervals) {
  for (double r = 0.0625; r < 1; r += 0.0625) {
    const double t = atRunTime(10 + 10 * r);
    EXPECT_EQ(Sqerp(10, 20, 0.0, 1.0, t), r);
    EXPECT_NEAR(OneMinSqerp(10, 20, 0.0, 1.0, t), r > 0.5 ? ease(r) : r, 1e-15);
  }
  // Before zero it is the other way round.
  EXPECT_NEAR(Sqerp(-20, -10, 0.0, 1.0, atRunTime(-17.5)), ease(0.25), 1e-15);
  EXPECT_EQ(Sqerp(-20, -10, 0.0, 1.0, -12.5), 0.75);
  EXPECT_EQ(OneMinSqerp(-20, -10, 0.0, 1.0, -12.5), 0.75);
}

TEST(TimedCurves, IntegersTruncateBeforeTheyMultiply) {
  EXPECT_EQ(Lerp(0, 10, 0, 10, 5), 0);
  EXPECT_EQ(Lerp(0, 10, 0L, 10L, 9.99), 0);
  EXPECT_EQ(Lerp(0, 0.25, 10, 20, 0.2), 10);  // slope 4 * 10, but no whole unit of time
  EXPECT_EQ(Lerp(0, 1, 7, 9, 0.5), 7);
  EXPECT_EQ(Sinerp(0, 2, 0, 10, 1), 5);
  EXPECT_EQ(Sinerp(0, 2, 10, 5, 1), 8);  // -2.5 is truncated toward zero
  for (const double t : {0.001, 2.5, 5.0, 9.999}) {
    EXPECT_EQ(Sqerp(0, 10, 3, 100, t), 3);
    EXPECT_EQ(OneMinSqerp(0, 10, 3, 100, t), 3);
  }
  // A fraction that rounds to 1 counts.
  const double last = std::nextafter(-1e-300, -1.0);
  EXPECT_EQ(Sqerp(-1, -1e-300, 3, 100, last), 100);
}

TEST(TimedCurves, IntegersWrapAndSurviveExtremes) {
  EXPECT_EQ(Sinerp(0, 2, kIntMin, kIntMax, 1), kIntMin);  // the difference wraps to -1
  EXPECT_EQ(Lerp(0, 1e-300, 0, 1, 1e-301), 0);            // int(1e300) is kIntMin, times 0
  EXPECT_EQ(Lerp(-1e300, 1e300, 5, 9, 0), 5);             // int(1e300) times a slope of 0
  EXPECT_EQ(Lerp(kNaN, 10, 1, 2, 10), 2);
  EXPECT_EQ(Lerp(0, kNaN, 1L, 2L, 0), 1);
}

// Floats round at every step; vectors and colours compute like their components.
TEST(TimedCurves, FloatsRoundAsStated) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> real(-50, 50);
  for (int n = 0; n < 1000; ++n) {
    const double t0 = real(random), t1 = t0 + std::abs(real(random)) + 0.1;
    const double t = t0 + (t1 - t0) * std::abs(real(random)) / 51;
    const float a = float(real(random)), b = float(real(random));
    const float slope = (b - a) * float(1.0 / (t1 - t0));
    EXPECT_TRUE(sameBits(Lerp(t0, t1, a, b, t), float(t - t0) * slope + a));
    const float r = float((t - t0) / (t1 - t0));
    if (t > t1 - t0) {
      EXPECT_TRUE(sameBits(Sqerp(t0, t1, a, b, t), r * (b - a) + a));
    }
    EXPECT_NEAR(Sinerp(t0, t1, a, b, t), Sinerp(t0, t1, double(a), double(b), t), 1e-5);

    const auto likeItsComponents = [&](auto curve) {
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

TEST(TimedCurves, AllocateNothing) {
  const int before = allocations;
  const Vec3 v = Lerp(0, 1, Vec3(), Vec3(1, 2, 3), 0.5) + Sinerp(0, 1, Vec3(), Vec3(1, 2, 3), 0.5);
  const uxs_color c = Sqerp(0, 1, uxs_color(), uxs_color(1, 1, 1, 1), 0.25);
  const double d = OneMinSqerp(0, 1, 0.0, 1.0, 0.75);
  EXPECT_EQ(allocations, before);
  EXPECT_GT(v.x + c.r + float(d), 0);
}

TEST(TimedCurves, ThrowWhatTheirCurvesThrow) {
  const std::string interval = "XCInterpolation::XCInterpolation - startTime superior to endtime";
  EXPECT_EQ(whatOf([] { Lerp(1, 1, 0.0, 1.0, 1); }), interval);
  EXPECT_EQ(whatOf([] { OneMinSqerp(2, 1, Vec3(), Vec3(), 5); }), interval);
  EXPECT_EQ(whatOf([] { Sqerp(0, 1, 0, 1, -1); }),
            "XTSquareInterpolation::valueAt - inTime is out of range");
}
