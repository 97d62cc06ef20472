#include <algorithm>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <numeric>
#include <stdexcept>
#include <string>
#include <thread>
#include <unistd.h>

#include "cli/commands.h"
#include "cli/frames.h"
#include "cli/load_scene.h"
#include "formats/printable.h"
#include "scene/RunPart.h"
#include "scene/SceneSkin.h"
#include "scene/scene_extent.h"
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
  std::string glb = "skin";
  bool plot = false;
  unsigned int jobs = 0;
  std::string task;
  bool resume = false;
};

[[noreturn]] void refuseTask(const std::string& fault) {
  throw CLI::ValidationError("--task", fault);
}

std::size_t number(const std::string& text, const std::string& whole) {
  std::size_t value = 0;
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, value);
  if (result.ec == std::errc() && result.ptr == end) return value;
  refuseTask("\"" + whole + "\": expected INDEX/COUNT, such as 0/8");
}

// "3/8": the fourth of eight tasks.
void parseTask(const std::string& text, scene::RunPart& outPart) {
  const std::size_t slash = std::min(text.find('/'), text.size());
  outPart.mTask = number(text.substr(0, slash), text);
  outPart.mTasks = number(text.substr(std::min(slash + 1, text.size())), text);
  if (outPart.mTasks < 1 || outPart.mTasks > std::size_t(scene::kMostTasks)) {
    refuseTask("\"" + text + "\": the count is 1 to a million");
  }
  if (outPart.mTask >= outPart.mTasks) {
    refuseTask("\"" + text + "\": tasks are counted from 0 to " +
               std::to_string(outPart.mTasks - 1));
  }
}

void showProgress(std::size_t done, std::size_t all) {
  // The carriage return writes over the former line; the last one stays.
  std::fprintf(stderr, "\rframe %zu of %zu", done, all);
  if (done == all) std::fputc('\n', stderr);
}

std::vector<std::string> runPart(const Options& options, const SceneOutput& output,
                                 const scene::PlayerMaker& load) {
  scene::RunPart part;
  parseTask(options.task, part);
  // Plots show all frames at once, and a part has only its own.
  if (options.plot) refuseTask("--plot needs a whole run");
  scene::ScenePlayer player = load();
  // The merge may start in another folder.
  part.mScene = std::filesystem::absolute(options.scene).string();
  part.mSceneSum = scene::sceneSum(options.scene, player.scene());
  part.mTake = options.take;
  part.mMesh = options.mesh;
  part.mFrames = output.mFrames;
  // A part must know the frames of the whole run to find its own.
  if (part.mFrames.empty()) {
    part.mFrames.resize(std::size_t(scene::lastFrame(player.scene())) + 1);
    std::iota(part.mFrames.begin(), part.mFrames.end(), 0);
  }
  if (options.mesh == "glb") {
    const bool isSkin =
        options.glb == "skin" && scene::SceneSkin(player, part.mFrames).obstacle().empty();
    part.mGlb = isSkin ? "skin" : "morph";
  }
  // The checksum of the scene is compared, too: after an edit the part is played again.
  if (options.resume && scene::isWhole(part, options.out)) {
    return {options.out + "/" + part.folderName() + " is whole"};
  }
  return scene::writePart(part, options.out, load, output);
}

void run(const Options& options) {
  SceneOutput output;
  if (!options.frames.empty()) output.mFrames = parseFrames(options.frames);
  output.mFolder = options.out;
  if (options.mesh == "obj") output.mMeshes = SceneOutput::Meshes::kObj;
  if (options.mesh == "pc2") output.mMeshes = SceneOutput::Meshes::kPointCache;
  if (options.mesh == "glb") output.mMeshes = SceneOutput::Meshes::kGlb;
  output.mIsMorphed = options.glb == "morph";
  output.mPlots = options.plot;
  // In a log file each step would be a line of its own.
  if (isatty(STDERR_FILENO) != 0) output.mProgress = showProgress;
  output.mJobs =
      // hardware_concurrency may answer 0 for "unknown".
      options.jobs > 0 ? options.jobs : std::max(1u, std::thread::hardware_concurrency());
  // Each thread loads the scene for itself; see writeScene.
  const auto load = [&options] { return loadScene(options.scene, options.take); };
  const auto lines =
      options.task.empty() ? scene::writeScene(load, output) : runPart(options, output, load);
  for (const std::string& line : lines) std::puts(formats::printable(line).c_str());
}

}  // namespace

void addRun(CLI::App& app) {
  CLI::App* command = app.add_subcommand("run", "Play a scene and write what each frame gives");
  const auto options = std::make_shared<Options>();
  command->add_option("SCENE", options->scene, "a scene file (JSON)")->required();
  addFramesOption(*command, options->frames);
  command->add_option("--take", options->take, "show this take of every object that has it")
      ->type_name("NAME");
  command->add_option("--out", options->out, "folder to write into")->capture_default_str();
  command
      ->add_option("--mesh", options->mesh,
                   "deformed meshes: an obj per frame, one glb, a point cache per mesh, or none")
      ->check(CLI::IsMember({"obj", "glb", "pc2", "none"}))
      ->option_text("obj|glb|pc2|none [none]");
  command
      ->add_option("--glb", options->glb,
                   "a glb with joints where that is exact, or always with a morph target per frame")
      ->check(CLI::IsMember({"skin", "morph"}))
      ->option_text("skin|morph [skin]");
  command->add_option("--jobs", options->jobs, "threads; as many as there are cores when missing")
      ->check(CLI::Range(1, 1024));
  command->add_flag("--plot", options->plot, "curves and paths as SVG, posed frames as PNG");
  auto* const task = command->add_option("--task", options->task,
                                         "play one of COUNT parts, counted from 0, for vexa merge");
  task->type_name("INDEX/COUNT");
  command->add_flag("--resume", options->resume, "do nothing for a part that is whole already")
      ->needs(task);
  command->footer("Example: vexa run bison.json --frames 0:200 --mesh glb --plot --out out");
  command->callback([options] { run(*options); });
}

}  // namespace vexa::cli
