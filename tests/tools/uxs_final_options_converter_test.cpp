#include "vexa/tools/uxs_final_options_converter.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

using Converter = UXS::uxs_final_options_converter;
using Options = std::array<int, 5>;

namespace {

const Converter kConverter;

Options levelsOf(unsigned e, unsigned a, unsigned s, Options levels = {}) {
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

TEST(FinalOptions, PresetsAndBack) {
  for (unsigned e = 0; e < 5; ++e) {
    EXPECT_EQ(levelsOf(e, 0, 1), (Options{3, 2, 2, 3, 3}));
    EXPECT_EQ(levelsOf(e, 1, 2), (Options{3, 3, 1, 4, 4}));
    EXPECT_EQ(levelsOf(e, 2, 0), (Options{1, 3, 4, 2, 1}));
    for (unsigned a = 0; a < 3; ++a) {
      for (unsigned s = 0; s < 3; ++s) {
        EXPECT_EQ(presetsOf(e, levelsOf(e, a, s)), std::make_pair(a, s));
      }
    }
  }
  EXPECT_EQ(presetsOf(0, {1, 1, 1, 1, 2}), std::make_pair(3u, 3u));
}

TEST(FinalOptions, CustomWritesNothingAndMoreLeadsIntoTheNextRecords) {
  const Options untouched{9, 9, 9, 9, 9};
  EXPECT_EQ(levelsOf(0, 3, 1, untouched), untouched);
  EXPECT_EQ(levelsOf(1, 4, 3, untouched), untouched);
  EXPECT_EQ(levelsOf(0, 4, 2, untouched), levelsOf(1, 0, 2));
  EXPECT_EQ(levelsOf(0, 1, 77, untouched), levelsOf(0, 2, 0));
  EXPECT_EQ(levelsOf(2, 2, 4, untouched), untouched);
  EXPECT_EQ(levelsOf(~0u, ~0u, ~0u, untouched), untouched);
}

TEST(FinalOptions, ValuesOfLevels) {
  EXPECT_EQ(decoded(0, {1, 1, 1, 1, 1}), (Options{1, 20, 20, 10, 4}));
  EXPECT_EQ(decoded(1, {6, 6, 6, 6, 6}), (Options{5, 25, 125, 32, 1}));
  EXPECT_EQ(decoded(7, {3, 4, 5, 4, 3}), (Options{3, 30, 100, 24, 6}));
  // Outside 1 to 6: the rows before and after; where the table ends, the level itself.
  EXPECT_EQ(decoded(0, {7, 0, 12, -1, 7}), (Options{20, 6, 64, 100, 1}));
  EXPECT_EQ(decoded(0, {0, 85, 78, 79, 66}), (Options{0, 85, 12, 79, 12}));
}

TEST(FinalOptions, NearestLevelTheLowerOneWhenInBetween) {
  const int cases[][4] = {
      {0, 2, 10, 1}, {0, 2, 25, 1}, {0, 2, 26, 2}, {0, 2, 125, 6}, {0, 2, 500, 6}, {0, 2, 62, 3},
      {0, 2, 63, 4}, {1, 1, 20, 1}, {1, 1, 22, 3}, {1, 1, 23, 4},  {1, 4, 1, 1},   {1, 4, 2, 6},
      {0, 5, 3, 4},  {1, 9, 3, 3},  {2, 5, 3, 1},  {9, 4, 11, 5},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(encoded(unsigned(c[0]), unsigned(c[1]), c[2]), c[3]) << c[0] << c[1] << ' ' << c[2];
  }
  for (unsigned e = 0; e < 3; ++e) {
    for (int level = 1; level <= 6; ++level) {
      const Options values = decoded(e, {level, level, level, level, level});
      for (unsigned o = 0; o < 5; ++o) {
        const int back = encoded(e, o, values[o]);
        EXPECT_LE(back, level);
        EXPECT_EQ(decoded(e, {back, back, back, back, back})[o], values[o]);
      }
    }
  }
}

// Any number at all; the sanitizers watch the tables.
TEST(FinalOptions, NoNumberLeavesTheTables) {
  std::vector<int> numbers = {std::numeric_limits<int>::min(), std::numeric_limits<int>::max()};
  for (int n = -10; n <= 300; ++n) numbers.push_back(n);
  for (const int n : numbers) {
    const auto code = unsigned(n);
    for (const int m : numbers) {
      for (const int level : {encoded(code, unsigned(m), n), encoded(2, code, m)}) {
        EXPECT_TRUE(1 <= level && level <= 6);
      }
      for (const int value : decoded(code, {m, m, m, m, m})) {
        EXPECT_TRUE(value == m || (1 <= value && value <= 125));
      }
      for (const unsigned e : {0u, 2u, code}) {
        const Options levels = levelsOf(e, code, unsigned(m));
        EXPECT_LE(*std::max_element(levels.begin(), levels.end()), 5);
        EXPECT_LE(presetsOf(e, {m, n, m, n, m}).first, 3u);
      }
    }
  }
}
