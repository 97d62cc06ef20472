#include "vexa/tools/uxs_final_options_converter.h"

#include <algorithm>

namespace UXS {

namespace {

// Custom is no preset of the tables: it means that the user chose the levels one by one.
constexpr int kEngines = 3, kPresets = 3, kOptions = 5, kLevels = 6;
constexpr int kRecordCount = kEngines * kPresets * kPresets;
constexpr int kValueCount = kEngines * kOptions * kLevels;

// Levels by engine, then ambiance, then settings; a record has the five options in order. A line is
// an ambiance. The three engines have equal levels and differ in what the levels are worth.
constexpr int _presets[kRecordCount][kOptions] = {
    {2, 2, 2, 2, 1}, {3, 2, 2, 3, 3}, {4, 4, 1, 4, 4},  //
    {1, 1, 1, 1, 1}, {2, 3, 2, 2, 3}, {3, 3, 1, 4, 4},  //
    {1, 3, 4, 2, 1}, {2, 4, 5, 3, 3}, {3, 5, 5, 4, 4},  //

    {2, 2, 2, 2, 1}, {3, 2, 2, 3, 3}, {4, 4, 1, 4, 4},  //
    {1, 1, 1, 1, 1}, {2, 3, 2, 2, 3}, {3, 3, 1, 4, 4},  //
    {1, 3, 4, 2, 1}, {2, 4, 5, 3, 3}, {3, 5, 5, 4, 4},  //

    {2, 2, 2, 2, 1}, {3, 2, 2, 3, 3}, {4, 4, 1, 4, 4},  //
    {1, 1, 1, 1, 1}, {2, 3, 2, 2, 3}, {3, 3, 1, 4, 4},  //
    {1, 3, 4, 2, 1}, {2, 4, 5, 3, 3}, {3, 5, 5, 4, 4},
};

// Values of the levels 1 to 6 by engine, then option. The table is flat because a level out of
// range reads a neighbouring row. No row descends, which encode_option's search relies on.
constexpr int _tables[kValueCount] = {
    1,  2,  3,  4,  5,   6,    //
    20, 22, 25, 30, 35,  40,   //
    20, 30, 50, 75, 100, 125,  //
    10, 14, 18, 24, 32,  64,   //
    4,  6,  8,  12, 14,  24,   //

    1,  1,  2,  3,  4,   5,    //
    20, 20, 20, 25, 25,  25,   //
    40, 50, 65, 80, 100, 125,  //
    6,  8,  10, 16, 24,  32,   //
    1,  1,  1,  1,  1,   1,    //

    1,  2,  3,  4,  5,   6,    //
    20, 22, 25, 30, 35,  40,   //
    20, 30, 50, 75, 100, 125,  //
    8,  10, 12, 24, 32,  64,   //
    2,  4,  6,  8,  10,  12,
};

int clamped(std::uint32_t index, int last) { return int(std::min(index, std::uint32_t(last))); }

int engineIndex(std::uint32_t e) { return clamped(e, kEngines - 1); }

}  // namespace

void uxs_final_options_converter::presets_to_options(const engine& e, const ambiance& a,
                                                     const settings& s, int* levels) const {
  if (a == ambiance_custom || s == settings_custom) return;
  const int record =
      (engineIndex(e) * kPresets + clamped(a, kPresets)) * kPresets + clamped(s, kPresets);
  if (record < kRecordCount) std::copy_n(_presets[record], kOptions, levels);
}

void uxs_final_options_converter::options_to_presets(const engine& e, const int* levels,
                                                     ambiance& a, settings& s) const {
  constexpr int kRecordsPerEngine = kPresets * kPresets;
  const auto* records = &_presets[engineIndex(e) * kRecordsPerEngine];
  a = ambiance_custom;
  s = settings_custom;
  for (int i = 0; i < kRecordsPerEngine; ++i) {
    if (!std::equal(levels, levels + kOptions, records[i])) continue;
    a = ambiance(i / kPresets);
    s = settings(i % kPresets);
    return;
  }
}

// The index is computed in 64 bits: a level is any int, and must not overflow before it is refused.
void uxs_final_options_converter::decode_options(const engine& e, int* levels) const {
  for (int option = 0; option < kOptions; ++option) {
    const std::int64_t row = engineIndex(e) * kOptions + option;
    const std::int64_t index = row * kLevels + levels[option] - 1;
    if (0 <= index && index < kValueCount) levels[option] = _tables[index];
  }
}

int uxs_final_options_converter::encode_option(const engine& e, const options& o, int value) const {
  const int row = engineIndex(e) * kOptions + clamped(o, kOptions);
  if (row >= kEngines * kOptions) return 1;
  const int* values = &_tables[row * kLevels];
  const int upper = int(std::lower_bound(values, values + kLevels, value) - values);
  if (upper == 0) return 1;
  if (upper == kLevels) return kLevels;
  // Both differences are at most that of two values of the row.
  return value - values[upper - 1] > values[upper] - value ? upper + 1 : upper;
}

}  // namespace UXS
