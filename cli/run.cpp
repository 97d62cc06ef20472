#include <algorithm>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <unistd.h>

#include "cli/commands.h"
#include "cli/frames.h"
#include "cli/load_scene.h"
#include "formats/printable.h"
#include "scene/scene_output.h"

namespace vexa::cli {
namespace {

using scene::SceneOutput;

struct Options {
  std::string scene;
  std::string frames;
  std::string take;
  std::string out = "out";
  std::string mesh = "none";
  bool plot = false;
  unsigned int jobs = 0;
};

void showProgress(std::size_t done, std::size_t all) {
  std::fprintf(stderr, "\rframe %zu of %zu", done, all);
  if (done == all) std::fputc('\n', stderr);
}

void run(const Options& options) {
  SceneOutput output;
  if (!options.frames.empty()) output.mFrames = parseFrames(options.frames);
  output.mFolder = options.out;
  if (options.mesh == "obj") output.mMeshes = SceneOutput::Meshes::kObj;
  if (options.mesh == "glb") output.mMeshes = SceneOutput::Meshes::kGlb;
  output.mPlots = options.plot;
  if (isatty(STDERR_FILENO) != 0) output.mProgress = showProgress;
  output.mJobs =
      options.jobs > 0 ? options.jobs : std::max(1u, std::thread::hardware_concurrency());
  const auto load = [&options] { return loadScene(options.scene, options.take); };
  for (const std::string& line : scene::writeScene(load, output)) {
    std::puts(formats::printable(line).c_str());
  }
}

}  // namespace

void addRun(CLI::App& app) {
  CLI::App* command = app.add_subcommand("run", "Play a scene and write what each frame gives");
  const auto options = std::make_shared<Options>();
  command->add_option("SCENE", options->scene, "a scene file (JSON)")->required();
  command->add_option(
      "--frames", options->frames,
      "A, A:B or A:B:STEP, both ends included; all up to the last key when missing");
  command->add_option("--take", options->take, "show this take of every object that has it")
      ->type_name("NAME");
  command->add_option("--out", options->out, "folder to write into")->capture_default_str();
  command
      ->add_option("--mesh", options->mesh, "deformed meshes: an obj per frame, one glb, or none")
      ->check(CLI::IsMember({"obj", "glb", "none"}))
      ->option_text("obj|glb|none [none]");
  command->add_option("--jobs", options->jobs, "threads; as many as there are cores when missing")
      ->check(CLI::Range(1, 1024));
  command->add_flag("--plot", options->plot, "curves and paths as SVG, posed frames as PNG");
  command->footer("Example: vexa run bison.json --frames 0:200 --mesh glb --plot --out out");
  command->callback([options] { run(*options); });
}

}  // namespace vexa::cli
