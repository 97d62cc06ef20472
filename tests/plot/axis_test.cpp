#include "plot/axis.h"

#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace vexa::plot {
namespace {

std::vector<std::string> textsOf(double low, double high, int most) {
  const Ticks ticks = roundTicks(low, high, most);
  std::vector<std::string> texts;
  for (int i = 0; i < ticks.mCount; ++i) texts.push_back(tickText(ticks.at(i), ticks.mStep));
  return texts;
}

TEST(Axis, MarksAreRoundAndInsideTheRange) {
  using Texts = std::vector<std::string>;
  EXPECT_EQ(textsOf(0, 540, 6), (Texts{"0", "100", "200", "300", "400", "500"}));
  EXPECT_EQ(textsOf(-0.13, 0.31, 5), (Texts{"-0.1", "0.0", "0.1", "0.2", "0.3"}));
  EXPECT_EQ(textsOf(0, 1e-3, 3), (Texts{"0.0000", "0.0005", "0.0010"}));
  EXPECT_EQ(textsOf(2e9, 6e9, 3), (Texts{"2e+09", "4e+09", "6e+09"}));
}

TEST(Axis, NeverMoreMarksThanAskedFor) {
  for (int most = 1; most < 13; ++most) {
    for (double high = 0.7; high < 1e5; high *= 1.37) {
      const Ticks ticks = roundTicks(-0.3 * high, high, most);
      EXPECT_LE(ticks.mCount, most);
      EXPECT_GE(ticks.at(0), -0.3 * high - 1e-6 * high);
      EXPECT_LE(ticks.at(ticks.mCount - 1), high * (1 + 1e-6));
      EXPECT_GE(ticks.mCount, most >= 5 ? 2 : 1) << most << " marks up to " << high;
    }
  }
}

TEST(Axis, ARangeWithoutExtentHasNoMarks) {
  EXPECT_EQ(roundTicks(1, 1, 5).mCount, 0);
  EXPECT_EQ(roundTicks(2, 1, 5).mCount, 0);
  EXPECT_EQ(roundTicks(0, std::numeric_limits<double>::infinity(), 5).mCount, 0);
  EXPECT_EQ(roundTicks(std::numeric_limits<double>::quiet_NaN(), 1, 5).mCount, 0);
}

}  // namespace
}  // namespace vexa::plot
