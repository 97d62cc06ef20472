#include "vexa/support/clock.h"

#include <chrono>
#include <gtest/gtest.h>

TEST(Clock, AgreesWithTheSystemClock) {
  const auto system = std::chrono::system_clock::now().time_since_epoch();
  const double later = UXS::get_time() - std::chrono::duration<double>(system).count();
  EXPECT_TRUE(-2e-6 < later && later < 10) << later;  // a microsecond is cut off
}
