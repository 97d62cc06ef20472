#include "vexa/tools/uxs_final_options_converter.h"

#include <array>
#include <gtest/gtest.h>
#include <limits>

using Converter = UXS::uxs_final_options_converter;
using Options = std::array<int, 5>;

TEST(FinalOptions, PresetsLevelsAndValues) {
  const Converter converter;
  Options levels{};
  converter.presets_to_options(Converter::engine_0, Converter::ambiance_0, Converter::settings_1,
                               levels.data());
  EXPECT_EQ(levels, (Options{3, 2, 2, 3, 3}));
  Converter::ambiance a{};
  Converter::settings s{};
  converter.options_to_presets(Converter::engine_0, levels.data(), a, s);
  EXPECT_EQ(a, Converter::ambiance_0);
  EXPECT_EQ(s, Converter::settings_1);
  levels = {6, 6, 6, 6, 6};
  converter.decode_options(Converter::engine_1, levels.data());
  EXPECT_EQ(levels, (Options{5, 25, 125, 32, 1}));
  // 25 is halfway between the values of levels 1 and 2.
  EXPECT_EQ(converter.encode_option(Converter::engine_0, Converter::option_2, 25), 1);
  EXPECT_EQ(converter.encode_option(Converter::engine_0, Converter::option_2, 26), 2);
}

// Any number at all; the sanitizers watch the tables.
TEST(FinalOptions, NoNumberLeavesTheTables) {
  const int ends[] = {std::numeric_limits<int>::min(), std::numeric_limits<int>::max(), -1, 300};
  for (const int n : ends) {
    for (const int m : ends) {
      Options levels{9, 9, 9, 9, m};
      Converter().decode_options(Converter::engine(n), levels.data());
      EXPECT_TRUE(levels[4] == m || (1 <= levels[4] && levels[4] <= 125));
      Converter().presets_to_options(Converter::engine(n), Converter::ambiance(n),
                                     Converter::settings(m), levels.data());
      const int level = Converter().encode_option(Converter::engine(n), Converter::options(m), n);
      EXPECT_TRUE(1 <= level && level <= 6);
    }
  }
}
