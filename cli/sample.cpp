#include <algorithm>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>

#include "cli/commands.h"
#include "cli/frames.h"
#include "cli/load_scene.h"
#include "formats/calendar.h"
#include "scene/scene_csv.h"
#include "scene/scene_output.h"
#include "scene/value_parts.h"
#include "scene/value_plots.h"

namespace vexa::cli {
namespace {

struct Options {
  std::string scene;
  std::string value;
  std::string frames = "0:100";
  std::string plot;
};

std::size_t indexOfValue(const Options& options, const refhost::Scene& scene) {
  const auto& values = scene.mProperties;
  const auto found = std::find_if(values.begin(), values.end(),
                                  [&](const auto& value) { return value.mName == options.value; });
  if (found == values.end()) {
    throw std::runtime_error(options.scene + ": there is no value \"" + options.value + "\"");
  }
  return static_cast<std::size_t>(found - values.begin());
}

void printRow(int frame, const refhost::Property& value, const scene::ScenePlayer::Sample& sample) {
  std::printf("%8d", frame);
  for (const double part : scene::parts(value, sample)) {
    const std::string text = scene::isDate(value)
                                 ? formats::dateOfSeconds(static_cast<std::int64_t>(part))
                                 : scene::shortestNumber(part);
    std::printf("  %20s", text.c_str());
  }
  std::printf("\n");
}

void sample(const Options& options) {
  const std::vector<int> frames = parseFrames(options.frames);
  scene::ScenePlayer player = loadScene(options.scene);
  const std::size_t index = indexOfValue(options, player.scene());
  const refhost::Property& value = player.scene().mProperties[index];
  std::vector<std::vector<scene::ScenePlayer::Sample>> samples;
  for (const int frame : frames) {
    player.setFrame(frame);
    samples.push_back({player.samples()[index]});
    if (options.plot.empty()) printRow(frame, value, samples.back()[0]);
  }
  if (options.plot.empty()) return;
  scene::writeValuePlots(options.plot, {&value}, frames, samples);
  std::puts(options.plot.c_str());
}

}  // namespace

void addSample(CLI::App& app) {
  CLI::App* command =
      app.add_subcommand("sample", "Print one value of a scene over frames, or plot it");
  const auto options = std::make_shared<Options>();
  command->add_option("SCENE", options->scene, "a scene file (JSON)")->required();
  command->add_option("VALUE", options->value, "the name of the value")->required();
  command->add_option("--frames", options->frames, "A, A:B or A:B:STEP, both ends included")
      ->capture_default_str();
  command->add_option("--plot", options->plot, "write an SVG plot here instead of the table");
  command->footer("Example: vexa sample scene.json colour --frames 0:50:10");
  command->callback([options] { sample(*options); });
}

}  // namespace vexa::cli
