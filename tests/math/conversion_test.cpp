#include "vexa/math/conversion.h"

#include <gtest/gtest.h>
#include <limits>

using namespace Norvel::Vexa;

namespace {
constexpr std::int32_t kIntMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t kLongMin = std::numeric_limits<std::int64_t>::min();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
}  // namespace

TEST(Conversion, TruncatesTowardZeroUpToTheVeryEnds) {
  EXPECT_EQ(truncToInt(-1.9), -1);
  EXPECT_EQ(truncToInt(2147483647.9), 2147483647);
  EXPECT_EQ(truncToInt(-2147483648.9), kIntMin);
  EXPECT_EQ(truncToLong(-1.9), -1);
  EXPECT_EQ(truncToLong(9223372036854774784.0), 9223372036854774784);
  EXPECT_EQ(truncToLong(-9223372036854775808.0), kLongMin);
}

TEST(Conversion, OutOfRangeAndNaNGiveTheMostNegative) {
  for (const double bad : {2147483648.0, -2147483649.0, 1e300, kInfinity, -kInfinity, kNaN}) {
    EXPECT_EQ(truncToInt(bad), kIntMin) << bad;
  }
  for (const double bad : {9223372036854775808.0, -1e300, kInfinity, -kInfinity, kNaN}) {
    EXPECT_EQ(truncToLong(bad), kLongMin) << bad;
  }
}

TEST(Conversion, SumsAndProductsWrap) {
  EXPECT_EQ(wrapAdd(2147483647, 1), kIntMin);
  EXPECT_EQ(wrapSub(kIntMin, 1), 2147483647);
  EXPECT_EQ(wrapMul(65536, 65536), 0);
  EXPECT_EQ(wrapSub(std::int64_t{0}, kLongMin), kLongMin);
  EXPECT_EQ(wrapToInt(0x1'0000'0005), 5);
}
