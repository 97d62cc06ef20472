#include "vexa/tools/clock.h"

#include <chrono>
#include <gtest/gtest.h>

TEST(Clock, AgreesWithTheSystemClock) {
  const auto system = [] {
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch())
        .count();
  };
  const double before = system(), now = UXS::get_time(), after = system();
  EXPECT_GE(now, before - 2e-6);  // a microsecond is cut off, a double's step here is 0.24 us
  EXPECT_LE(now, after + 2e-6);
}
