#include "vexa/tools/uxs_heliodon_tool.h"

#include <cstring>
#include <gtest/gtest.h>

#include "tests/helpers/compare.h"
#include "vexa/tools/plain_vector_internal.h"

using UXS::Vec3;
using Tool = UXS::uxs_heliodon_tool;
using vexa::tests::sameBits;

namespace {

void expectNear(const Vec3& a, const Vec3& b) {
  EXPECT_LT(dot(a - b, a - b), 1e-12f) << a.x << ' ' << a.y << ' ' << a.z;
}

// By default over 2 deg 20' E, 48 deg 51' N.
Vec3 sun(const Tool::date& d, const Tool::place& p = {140, 2931, 60, 0}) {
  return Tool::get_sun_direction(p, d);
}

}  // namespace

// Worked out once, step by step, in double precision. +X is east, +Y is north.
TEST(Heliodon, DirectionsOfKnownDates) {
  expectNear(sun({2024, 6, 21, 14, 0, true}), {-0.031412257f, -0.427748680f, 0.903351723f});
  expectNear(sun({2023, 12, 21, 9, 30, false}), {0.700854800f, -0.707732945f, 0.088975430f});
  expectNear(sun({2000, 3, 1, 7, 15, true}, {9072, -2032, 600, 30}),
             {0.793189742f, 0.523290353f, 0.311475901f});
  expectNear(sun({1900, 10, 5, 17, 45, true}, {-4440, 2442, -300, -45.5f}),
             {-0.838304035f, 0.526738058f, 0.140688878f});
}

// Every date equals the day of January with its day number; the count leaves January out.
TEST(Heliodon, DayNumbers) {
  const unsigned cases[][4] = {{2023, 3, 1, 60},  {2024, 3, 1, 61},    {2023, 2, 10, 38},
                               {2024, 2, 10, 39}, {2023, 4, 5, 94},    {2023, 5, 5, 125},
                               {1900, 3, 1, 60},  {2000, 3, 1, 61},    {2024, 1, 31, 31},
                               {2024, 0, 31, 31}, {2023, 12, 31, 365}, {2023, ~0u, 31, 365}};
  for (const auto& [year, month, day, number] : cases) {
    const Vec3 expected = sun({2023, 1, number, 12, 0, false});
    EXPECT_TRUE(sameBits(sun({year, month, day, 12, 0, false}), expected)) << year << '-' << month;
  }
}

TEST(Heliodon, SummertimeIsAnyByteFromAprilToOctober) {
  for (unsigned month = 0; month <= 14; ++month) {
    const unsigned hour = 4 <= month && month <= 10 ? 9 : 10;
    Tool::date date = {2023, month, 9, 10, 20, true};
    std::memset(&date.summertime, 0xfe, 1);
    expectNear(sun(date), sun({2023, month, 9, hour, 20, false}));
  }
}

TEST(Heliodon, NorthTurnsTheSceneUnderTheSun) {
  const Tool::date date = {2023, 8, 3, 16, 0, false};
  const Vec3 before = sun(date), after = sun(date, {140, 2931, 60, 90});
  expectNear(after, {-before.y, before.x, before.z});
  expectNear(Tool::get_sun_direction(0, 1.5707963267948966), {-1, 0, 0});
}
