#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

#include "cli/commands.h"
#include "cli/frames.h"
#include "cli/load_scene.h"
#include "formats/calendar.h"
#include "formats/printable.h"
#include "scene/scene_csv.h"
#include "scene/scene_extent.h"
#include "scene/scene_plots.h"
#include "scene/value_parts.h"
#include "scene/value_plots.h"

namespace vexa::cli {
namespace {

struct Options {
  std::string scene;
  std::string value;
  std::string frames;
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
    // Columns are wide enough for a date and for the longest double.
    const std::string text = scene::isDate(value)
                                 ? formats::dateOfSeconds(static_cast<std::int64_t>(part))
                                 : scene::shortestNumber(part);
    std::printf("  %20s", text.c_str());
  }
  std::printf("\n");
}

std::string columnName(const std::string& part) { return part.empty() ? "value" : part; }

void printHeader(const refhost::Property& value) {
  std::printf("%8s", "frame");
  for (const std::string& part : scene::partNames(value)) {
    std::printf("  %20s", columnName(part).c_str());
  }
  std::printf("\n");
}

void sample(const Options& options) {
  scene::ScenePlayer player = loadScene(options.scene);
  // As text, so that the limit on the number of frames holds here as well.
  const std::string all = "0:" + std::to_string(scene::lastFrame(player.scene()));
  const std::vector<int> frames = parseFrames(options.frames.empty() ? all : options.frames);
  const std::size_t index = indexOfValue(options, player.scene());
  const refhost::Property& value = player.scene().mProperties[index];
  if (options.plot.empty()) printHeader(value);
  std::vector<std::vector<scene::ScenePlayer::Sample>> samples;
  for (const int frame : frames) {
    player.setFrame(frame);
    samples.push_back({player.samples()[index]});
    if (options.plot.empty()) printRow(frame, value, samples.back()[0]);
  }
  if (options.plot.empty()) return;
  scene::writeValuePlots(options.plot, {&value}, frames, samples);
  std::puts(formats::printable(options.plot).c_str());
}

}  // namespace

void addSample(CLI::App& app) {
  CLI::App* command =
      app.add_subcommand("sample", "Print one value of a scene over frames, or plot it");
  const auto options = std::make_shared<Options>();
  command->add_option("SCENE", options->scene, "a scene file (JSON)")->required();
  command->add_option("VALUE", options->value, "the name of the value")->required();
  addFramesOption(*command, options->frames);
  command
      ->add_option("--plot", options->plot,
                   "write a plot here instead of the table, as its name ends: .svg or .png")
      ->check([](const std::string& path) {
        const std::string ending = std::filesystem::path(path).extension().string();
        return ending == ".svg" || ending == ".png"
                   ? std::string()
                   : "\"" + path + "\" ends neither in .svg nor in .png";
      });
  command->footer("Example: vexa sample scene.json colour --frames 0:50:10");
  command->callback([options] { sample(*options); });
}

}  // namespace vexa::cli
