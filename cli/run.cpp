#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <unistd.h>

#include "cli/commands.h"
#include "cli/frames.h"
#include "cli/load_scene.h"
#include "scene/scene_file.h"
#include "scene/scene_output.h"

namespace vexa::cli {
namespace {

using scene::SceneOutput;

struct Options {
  std::string scene;
  std::string frames = "0:100";
  std::string out = "out";
  std::string mesh = "none";
  bool plot = false;
};

void showProgress(std::size_t done, std::size_t all) {
  std::fprintf(stderr, "\rframe %zu of %zu", done, all);
  if (done == all) std::fputc('\n', stderr);
}

void run(const Options& options) {
  SceneOutput output;
  output.mFrames = parseFrames(options.frames);
  output.mFolder = options.out;
  if (options.mesh == "obj") output.mMeshes = SceneOutput::Meshes::kObj;
  if (options.mesh == "glb") output.mMeshes = SceneOutput::Meshes::kGlb;
  output.mPlots = options.plot;
  const std::size_t all = output.mFrames.size();
  if (isatty(STDERR_FILENO) != 0) {
    output.mProgress = [all](std::size_t done) { showProgress(done, all); };
  }
  scene::ScenePlayer player = loadScene(options.scene);
  for (const std::string& file : scene::writeScene(player, output)) std::puts(file.c_str());
}

}  // namespace

void addRun(CLI::App& app) {
  CLI::App* command = app.add_subcommand("run", "Play a scene and write what each frame gives");
  const auto options = std::make_shared<Options>();
  command->add_option("SCENE", options->scene, "a scene file (JSON)")->required();
  command->add_option("--frames", options->frames, "A, A:B or A:B:STEP, both ends included")
      ->capture_default_str();
  command->add_option("--out", options->out, "folder to write into")->capture_default_str();
  command
      ->add_option("--mesh", options->mesh, "deformed meshes: an obj per frame, one glb, or none")
      ->check(CLI::IsMember({"obj", "glb", "none"}))
      ->option_text("obj|glb|none [none]");
  command->add_flag("--plot", options->plot, "curves and paths as SVG, posed frames as PNG");
  command->footer("Example: vexa run bison.json --frames 0:200 --mesh glb --plot --out out");
  command->callback([options] { run(*options); });
}

}  // namespace vexa::cli
