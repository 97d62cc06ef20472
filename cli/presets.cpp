#include <cstdio>
#include <memory>
#include <vector>

#include "cli/commands.h"
#include "vexa/tools/uxs_final_options_converter.h"

namespace vexa::cli {
namespace {

using Converter = UXS::uxs_final_options_converter;

struct Options {
  std::uint32_t engine = 0;
  std::uint32_t ambiance = 0;
  std::uint32_t settings = 0;
  std::vector<int> levels;
};

void printFive(const char* name, const int (&numbers)[5]) {
  std::printf("%-9s %d %d %d %d %d\n", name, numbers[0], numbers[1], numbers[2], numbers[3],
              numbers[4]);
}

void presets(const Options& options) {
  const Converter converter;
  const auto engine = static_cast<Converter::engine>(options.engine);
  auto ambiance = static_cast<Converter::ambiance>(options.ambiance);
  auto settings = static_cast<Converter::settings>(options.settings);
  // Levels are numbers 1 to 6 per option; values are what the render engine takes for them.
  int levels[5] = {};
  if (options.levels.empty()) {
    converter.presets_to_options(engine, ambiance, settings, levels);
  } else {
    std::copy(options.levels.begin(), options.levels.end(), levels);
    converter.options_to_presets(engine, levels, ambiance, settings);
  }
  std::printf("ambiance  %u\nsettings  %u\n", ambiance, settings);
  printFive("levels", levels);
  converter.decode_options(engine, levels);
  printFive("values", levels);
}

}  // namespace

void addPresets(CLI::App& app) {
  CLI::App* command = app.add_subcommand(
      "presets", "Translate render presets to option levels and values, or levels to presets");
  const auto options = std::make_shared<Options>();
  command->add_option("--engine", options->engine, "render engine, 0 to 2")
      ->check(CLI::Range(0, 2));
  command->add_option("--ambiance", options->ambiance, "ambiance preset, 0 to 2")
      ->check(CLI::Range(0, 2));
  command->add_option("--settings", options->settings, "settings preset, 0 to 2")
      ->check(CLI::Range(0, 2));
  command->add_option("--levels", options->levels, "five levels, 1 to 6; preset 3 means none fits")
      ->expected(5)
      ->delimiter(',')
      ->check(CLI::Range(1, 6));
  command->footer(
      "Example: vexa presets --engine 1 --ambiance 0 --settings 2\n"
      "         vexa presets --levels 2,2,2,2,1");
  command->callback([command, options] {
    const auto isGiven = [](const CLI::Option* option) { return option->count() > 0; };
    const auto given = command->get_options(isGiven);
    // All options have defaults, so a bare "vexa presets" would print something that nobody asked
    // for.
    if (given.empty()) {
      std::fputs(command->help().c_str(), stdout);
    } else {
      presets(*options);
    }
  });
}

}  // namespace vexa::cli
