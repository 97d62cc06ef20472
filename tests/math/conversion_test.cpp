#include "vexa/math/conversion.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace Norvel::Vexa;

constexpr std::int32_t kIntMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t kLongMin = std::numeric_limits<std::int64_t>::min();

TEST(Conversion, TruncatesAndGivesTheMostNegativeForWhatIsOutOfRange) {
  const struct {
    double value;
    std::int32_t asInt;
    std::int64_t asLong;
  } cases[] = {{-1.9, -1, -1},
               {2147483647.9, 2147483647, 2147483647},
               {2147483648.0, kIntMin, 2147483648},
               {-2147483648.9, kIntMin, -2147483648},
               {9223372036854774784.0, kIntMin, 9223372036854774784},
               {9223372036854775808.0, kIntMin, kLongMin},
               {-HUGE_VAL, kIntMin, kLongMin},
               {std::nan(""), kIntMin, kLongMin}};
  for (const auto& c : cases) {
    EXPECT_EQ(truncToInt(c.value), c.asInt) << c.value;
    EXPECT_EQ(truncToLong(c.value), c.asLong) << c.value;
  }
}

TEST(Conversion, SumsAndProductsWrap) {
  EXPECT_EQ(wrapAdd(2147483647, 1), kIntMin);
  EXPECT_EQ(wrapSub(kIntMin, 1), 2147483647);
  EXPECT_EQ(wrapMul(65536, 65536), 0);
  EXPECT_EQ(wrapSub(std::int64_t{0}, kLongMin), kLongMin);
  EXPECT_EQ(wrapToInt(0x1'0000'0005), 5);
}
