#include "vexa/tools/uxs_final_options_converter.h"

#include <array>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

using Converter = UXS::uxs_final_options_converter;
using Options = std::array<int, 5>;

namespace {

constexpr Converter kConverter;
constexpr Options kUntouched = {9, 9, 9, 9, 9};

Options levelsOf(unsigned e, unsigned a, unsigned s) {
  Options levels = kUntouched;
  kConverter.presets_to_options(Converter::engine(e), Converter::ambiance(a),
                                Converter::settings(s), levels.data());
  return levels;
}

Options decoded(unsigned e, Options levels) {
  kConverter.decode_options(Converter::engine(e), levels.data());
  return levels;
}

int encoded(unsigned e, unsigned o, int value) {
  return kConverter.encode_option(Converter::engine(e), Converter::options(o), value);
}

std::pair<unsigned, unsigned> presetsOf(unsigned e, const Options& levels) {
  Converter::ambiance a{};
  Converter::settings s{};
  kConverter.options_to_presets(Converter::engine(e), levels.data(), a, s);
  return {a, s};
}

}  // namespace

TEST(FinalOptions, PresetsToLevelsAndBack) {
  for (unsigned e = 0; e < 4; ++e) {
    EXPECT_EQ(levelsOf(e, 0, 1), (Options{3, 2, 2, 3, 3}));
    EXPECT_EQ(levelsOf(e, 1, 2), (Options{3, 3, 1, 4, 4}));
    for (unsigned i = 0; i < 9; ++i) {
      EXPECT_EQ(presetsOf(e, levelsOf(e, i / 3, i % 3)), std::make_pair(i / 3, i % 3));
    }
  }
  EXPECT_EQ(presetsOf(0, {1, 1, 1, 1, 2}), std::make_pair(3u, 3u));
  EXPECT_EQ(levelsOf(0, 3, 1), kUntouched);
  EXPECT_EQ(levelsOf(1, 4, 3), kUntouched);
  // Above custom: the records that follow, as far as there are any.
  EXPECT_EQ(levelsOf(0, 4, 2), levelsOf(1, 0, 2));
  EXPECT_EQ(levelsOf(0, 1, 77), levelsOf(0, 2, 0));
  EXPECT_EQ(levelsOf(2, 2, 4), kUntouched);
}

TEST(FinalOptions, LevelsToValues) {
  EXPECT_EQ(decoded(0, {1, 1, 1, 1, 1}), (Options{1, 20, 20, 10, 4}));
  EXPECT_EQ(decoded(1, {6, 6, 6, 6, 6}), (Options{5, 25, 125, 32, 1}));
  // Outside 1 to 6: the rows before and after; where the table ends, the level itself.
  EXPECT_EQ(decoded(0, {7, 0, 12, -1, 7}), (Options{20, 6, 64, 100, 1}));
  EXPECT_EQ(decoded(0, {0, 85, 78, 79, 66}), (Options{0, 85, 12, 79, 12}));
}

TEST(FinalOptions, NearestLevelTheLowerOneWhenInBetween) {
  const int cases[][4] = {
      {0, 2, 10, 1}, {0, 2, 25, 1}, {0, 2, 26, 2}, {0, 2, 500, 6}, {0, 2, 62, 3},
      {0, 2, 63, 4}, {1, 1, 20, 1}, {1, 1, 22, 3}, {1, 1, 23, 4},  {1, 4, 2, 6},
      {0, 5, 3, 4},  {1, 9, 3, 3},  {2, 5, 3, 1},  {9, 4, 11, 5},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(encoded(unsigned(c[0]), unsigned(c[1]), c[2]), c[3]) << c[0] << c[1] << ' ' << c[2];
  }
}

// Any number at all; the sanitizers watch the tables.
TEST(FinalOptions, NoNumberLeavesTheTables) {
  std::vector<int> numbers = {std::numeric_limits<int>::min(), std::numeric_limits<int>::max()};
  for (int n = -10; n <= 300; ++n) numbers.push_back(n);
  for (const int n : numbers) {
    for (const int m : numbers) {
      const auto e = unsigned(n), other = unsigned(m);
      EXPECT_TRUE(1 <= encoded(e, other, n) && encoded(2, other, n) <= 6);
      const int value = decoded(e, {1, 1, 1, 1, m})[4];
      EXPECT_TRUE(value == m || (1 <= value && value <= 125));
      const int level = levelsOf(e, unsigned(n), other)[4];
      EXPECT_TRUE(level == 9 || level <= 4);
      EXPECT_LE(presetsOf(e, {m, n, m, n, m}).first, 3u);
    }
  }
}
