#include "vexa/tools/uxs_heliodon_tool.h"

#include <cstring>
#include <gtest/gtest.h>

#include "vexa/tools/plain_vector_internal.h"

using V3 = UXS::uxs_generic_vec3<float>;
using Tool = UXS::uxs_heliodon_tool;

namespace {

void expectNear(const V3& a, const V3& b) {
  EXPECT_LT(UXS::dot(a - b, a - b), 1e-12f) << a.x << ' ' << a.y << ' ' << a.z;
}

}  // namespace

// Worked out once, step by step, in double precision. +X is east, +Y is north.
TEST(Heliodon, DirectionsOfKnownDates) {
  expectNear(Tool::get_sun_direction({140, 2931, 60, 0}, {2024, 6, 21, 14, 0, true}),
             {-0.031412257f, -0.427748680f, 0.903351723f});
  expectNear(Tool::get_sun_direction({9072, -2032, 600, 30}, {2000, 3, 1, 7, 15, true}),
             {0.793189742f, 0.523290353f, 0.311475901f});
  expectNear(Tool::get_sun_direction(0, 1.5707963267948966), {-1, 0, 0});
}

TEST(Heliodon, SummertimeIsAnyByteButZero) {
  Tool::date date = {2023, 4, 9, 10, 20, true};
  std::memset(&date.summertime, 0xfe, 1);
  expectNear(Tool::get_sun_direction({}, date),
             Tool::get_sun_direction({}, {2023, 4, 9, 9, 20, false}));
}
