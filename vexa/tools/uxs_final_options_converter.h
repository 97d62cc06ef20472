#pragma once

#include <cstdint>

#include "vexa/Export.h"

namespace UXS {

/// Quality settings of a final render, in three forms: two presets, five levels of 1 to 6, and the
/// five parameter values that a render engine understands.
///
/// Five options are five ints, option 0 first, in an array of the caller. Numbers outside of the
/// stated ranges are allowed everywhere; the tables are never left. Has no state.
class VEXA_EXPORT uxs_final_options_converter {
 public:
  /// The render engine; every other number counts as engine_2.
  enum engine : std::uint32_t { engine_0, engine_1, engine_2 };
  /// The preset of the scene's lighting.
  enum ambiance : std::uint32_t { ambiance_0, ambiance_1, ambiance_2, ambiance_custom };
  /// The preset of the render quality.
  enum settings : std::uint32_t { settings_0, settings_1, settings_2, settings_custom };
  /// One of the five options.
  enum options : std::uint32_t { option_0, option_1, option_2, option_3, option_4 };

  /// Writes the five levels of a pair of presets; writes nothing when one of them is custom.
  /// Required behaviour: a preset above custom counts as 3 and leads into the records that follow;
  /// past the last record nothing is written.
  void presets_to_options(const engine& e, const ambiance& a, const settings& s, int* levels) const;

  /// The first pair of presets with exactly these five levels, or custom for both.
  void options_to_presets(const engine& e, const int* levels, ambiance& a, settings& s) const;

  /// Replaces five levels by the values they stand for.
  /// Required behaviour: a level outside 1 to 6 reads the rows before or after its own; where the
  /// table ends, the level stays as it is.
  void decode_options(const engine& e, int* levels) const;

  /// The level, 1 to 6, whose value is nearest; the lower one when two are equally near.
  /// Required behaviour: an option above 4 reads option 0 of the next engine; after the last engine
  /// the level is 1.
  int encode_option(const engine& e, const options& o, int value) const;
};

}  // namespace UXS
