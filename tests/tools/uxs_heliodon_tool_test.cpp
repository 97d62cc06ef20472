#include "vexa/tools/uxs_heliodon_tool.h"

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>

#include "tests/helpers/compare.h"

using UXS::uxs_heliodon_tool;
using Vec3 = UXS::uxs_generic_vec3<float>;
using Date = uxs_heliodon_tool::date;
using Place = uxs_heliodon_tool::place;
using vexa::tests::atRunTime;
using vexa::tests::sameBits;

namespace {

constexpr double kPi = 3.141592653589793;
constexpr Place kTown = {140, 2931, 60, 0};  // 2 deg 20' E, 48 deg 51' N

void expectNear(const Vec3& v, float x, float y, float z) {
  EXPECT_NEAR(v.x, x, 1e-6f);
  EXPECT_NEAR(v.y, y, 1e-6f);
  EXPECT_NEAR(v.z, z, 1e-6f);
}

Vec3 sun(const Date& d, const Place& p = kTown) {
  return uxs_heliodon_tool::get_sun_direction(p, d);
}

Vec3 noonOf(unsigned year, unsigned month, unsigned day) {
  return sun({year, month, day, 12, 50, false});
}

}  // namespace

// Worked out once, step by step, in double precision.
TEST(Heliodon, DirectionsOfKnownDates) {
  expectNear(sun({2024, 6, 21, 14, 0, true}), -0.031412257f, -0.427748680f, 0.903351723f);
  expectNear(sun({2023, 12, 21, 9, 30, false}), 0.700854800f, -0.707732945f, 0.088975430f);
  expectNear(sun({2000, 3, 1, 7, 15, true}, {9072, -2032, 600, 30}), 0.793189742f, 0.523290353f,
             0.311475901f);
  expectNear(sun({1900, 10, 5, 17, 45, true}, {-4440, 2442, -300, -45.5f}), -0.838304035f,
             0.526738058f, 0.140688878f);
  expectNear(sun({2023, 3, 20, 12, 0, false}, {0, 0, 0, 0}), 0.032455035f, -0.003782021f,
             0.999466040f);
}

// The model is a sun: at its highest in the south, 90 - latitude +- 23.5 degrees, east at morning.
TEST(Heliodon, FollowsTheSky) {
  const double summer = std::asin(double(noonOf(2023, 6, 21).z)) * 180 / kPi;
  const double winter = std::asin(double(noonOf(2023, 12, 21).z)) * 180 / kPi;
  EXPECT_NEAR(summer, 90 - 48.85 + 23.5, 1.5);
  EXPECT_NEAR(winter, 90 - 48.85 - 23.5, 1.5);
  EXPECT_GT(sun({2023, 3, 21, 8, 0, false}).x, 0.5);
  EXPECT_LT(sun({2023, 3, 21, 17, 0, false}).x, -0.5);
  EXPECT_LT(sun({2023, 3, 21, 0, 0, false}).z, -0.5);
}

// Every date equals the day of January with its day number; the count leaves January out.
TEST(Heliodon, DayNumbers) {
  const struct {
    unsigned year, month, day, number;
  } cases[] = {{2023, 3, 1, 60},    {2024, 3, 1, 61},  {2023, 2, 10, 38},   {2024, 2, 10, 39},
               {2023, 4, 5, 94},    {2023, 5, 5, 125}, {1900, 3, 1, 60},    {2000, 3, 1, 61},
               {2024, 1, 31, 31},   {2024, 0, 31, 31}, {2023, 12, 31, 365}, {2023, 13, 31, 365},
               {2023, ~0u, 31, 365}};
  for (const auto& c : cases) {
    const Date date = {c.year, c.month, c.day, 12, 50, false};
    EXPECT_TRUE(sameBits(sun(date), noonOf(2023, 1, c.number))) << c.year << '-' << c.month;
  }
}

TEST(Heliodon, SummertimeCountsFromAprilToOctober) {
  for (unsigned month = 0; month <= 14; ++month) {
    const Vec3 on = sun({2023, month, 9, 10, 20, true});
    const bool counts = 4 <= month && month <= 10;
    const Vec3 off = sun({2023, month, 9, counts ? 9u : 10u, 20, false});
    expectNear(on, off.x, off.y, off.z);
  }
  Date anyByte = {2023, 7, 9, 10, 20, true};
  const Vec3 expected = sun(anyByte);
  std::memset(&anyByte.summertime, 0xfe, 1);
  EXPECT_TRUE(sameBits(sun(anyByte), expected));
}

TEST(Heliodon, NorthTurnsTheSceneUnderTheSun) {
  const Date date = {2023, 8, 3, 16, 0, false};
  const Vec3 before = sun(date), after = sun(date, {140, 2931, 60, 90});
  EXPECT_EQ(after.z, before.z);
  expectNear(after, -before.y, before.x, before.z);
}

TEST(Heliodon, AnglesToDirection) {
  const auto direction = [](double a, double b) {
    return uxs_heliodon_tool::get_sun_direction(atRunTime(a), atRunTime(b));
  };
  EXPECT_EQ(direction(0, 0), Vec3(0, 0, 1));
  expectNear(direction(0, kPi / 2), -1, 0, 0);
  expectNear(direction(kPi / 2, kPi / 2), 0, 1, 0);
}

TEST(Heliodon, AnyNumbersGiveAUnitVectorOrNaN) {
  constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
  const Place places[] = {
      {least, least, least, 1e30f}, {0, 90 * 60, 0, 0}, {0, -90 * 60, 0, HUGE_VALF}};
  const Date dates[] = {{~0u, ~0u, ~0u, ~0u, ~0u, true}, {0, 0, 0, 0, 0, false}};
  for (const Place& place : places) {
    for (const Date& date : dates) {
      const Vec3 v = sun(date, place);
      const float length = std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
      EXPECT_TRUE(std::isnan(length) || std::abs(length - 1) < 1e-6f);
    }
  }
}
