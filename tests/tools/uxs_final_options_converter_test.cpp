#include "vexa/tools/uxs_final_options_converter.h"

#include <array>
#include <gtest/gtest.h>
#include <limits>
#include <numeric>

using Converter = UXS::uxs_final_options_converter;
using Options = std::array<int, 5>;

namespace {

Options levelsOf(unsigned e, unsigned a, unsigned s) {
  Options levels = {9, 9, 9, 9, 9};
  Converter().presets_to_options(Converter::engine(e), Converter::ambiance(a),
                                 Converter::settings(s), levels.data());
  return levels;
}

Options decoded(unsigned e, Options levels) {
  Converter().decode_options(Converter::engine(e), levels.data());
  return levels;
}

int encoded(unsigned e, unsigned o, int value) {
  return Converter().encode_option(Converter::engine(e), Converter::options(o), value);
}

unsigned presetsOf(unsigned e, const Options& levels) {
  Converter::ambiance a{};
  Converter::settings s{};
  Converter().options_to_presets(Converter::engine(e), levels.data(), a, s);
  return 10 * a + s;
}

}  // namespace

TEST(FinalOptions, PresetsToLevelsAndBack) {
  for (unsigned e = 0; e < 4; ++e) {
    EXPECT_EQ(levelsOf(e, 0, 1), (Options{3, 2, 2, 3, 3}));
    EXPECT_EQ(levelsOf(e, 1, 2), (Options{3, 3, 1, 4, 4}));
    for (unsigned a = 0; a < 3; ++a) {
      for (unsigned s = 0; s < 3; ++s) {
        EXPECT_EQ(presetsOf(e, levelsOf(0, a, s)), 10 * a + s);
        EXPECT_EQ(levelsOf(e, a, s), levelsOf(0, a, s));
      }
    }
  }
  EXPECT_EQ(presetsOf(0, {1, 1, 1, 1, 2}), 33u);
  // Above custom: the records that follow, as far as there are any.
  EXPECT_EQ(levelsOf(0, 4, 2), levelsOf(1, 0, 2));
  EXPECT_EQ(levelsOf(0, 1, 77), levelsOf(0, 2, 0));
  for (const Options& untouched : {levelsOf(0, 3, 1), levelsOf(1, 4, 3), levelsOf(2, 2, 4)}) {
    EXPECT_EQ(untouched, (Options{9, 9, 9, 9, 9}));
  }
}

TEST(FinalOptions, LevelsToValues) {
  const int sums[] = {823, 713, 785};  // of all values of an engine
  for (unsigned e = 0; e < 3; ++e) {
    int sum = 0;
    for (int level = 1; level <= 6; ++level) {
      for (const int value : decoded(e, {level, level, level, level, level})) sum += value;
    }
    EXPECT_EQ(sum, sums[e]);
  }
  EXPECT_EQ(decoded(0, {1, 1, 1, 1, 1}), (Options{1, 20, 20, 10, 4}));
  EXPECT_EQ(decoded(1, {6, 6, 6, 6, 6}), (Options{5, 25, 125, 32, 1}));
  // Outside 1 to 6: the rows before and after; where the table ends, the level itself.
  EXPECT_EQ(decoded(0, {7, 0, 12, -1, 7}), (Options{20, 6, 64, 100, 1}));
  EXPECT_EQ(decoded(0, {0, 85, 78, 79, 66}), (Options{0, 85, 12, 79, 12}));
}

TEST(FinalOptions, NearestLevelTheLowerOneWhenInBetween) {
  const int cases[][4] = {{0, 2, 10, 1}, {0, 2, 25, 1}, {0, 2, 26, 2}, {0, 2, 500, 6},
                          {1, 1, 20, 1}, {1, 1, 22, 3}, {1, 1, 23, 4}, {1, 4, 2, 6},
                          {0, 5, 3, 4},  {1, 9, 3, 3},  {2, 5, 3, 1},  {9, 4, 11, 5}};
  for (const auto& [e, o, value, level] : cases) {
    EXPECT_EQ(encoded(unsigned(e), unsigned(o), value), level) << e << o << ' ' << value;
  }
}

// Any number at all; the sanitizers watch the tables.
TEST(FinalOptions, NoNumberLeavesTheTables) {
  std::array<int, 302> numbers = {std::numeric_limits<int>::min()};
  std::iota(numbers.begin() + 1, numbers.end(), -1);
  for (const int n : numbers) {
    for (const int m : numbers) {
      const int level = encoded(unsigned(n), unsigned(m), n),
                read = levelsOf(2, unsigned(n), unsigned(m))[4];
      const int value = decoded(unsigned(n), {1, 1, 1, 1, m})[4];
      EXPECT_TRUE(1 <= level && level <= 6 && (read == 9 || read <= 4));
      EXPECT_TRUE(value == m || (1 <= value && value <= 125));
    }
  }
}
