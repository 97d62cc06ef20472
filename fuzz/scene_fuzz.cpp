// A scene file: read, described, played and written in every form. One job and two give the same
// bytes, and nothing but the output appears.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <string>

#include "formats/AnimationFile.h"
#include "formats/read_file.h"
#include "formats/write_file.h"
#include "fuzz/scratch_folder.h"
#include "scene/ScenePlayer.h"
#include "scene/describe.h"
#include "scene/scene_file.h"
#include "scene/scene_output.h"

namespace {

namespace fs = std::filesystem;
using vexa::fuzz::require;
using vexa::fuzz::scratchFolder;

// A mesh "m.obj" and an animation "m.amo" of two takes, which scenes name.
void makeInputs() {
  vexa::formats::AnimationFile file;
  file.mFrameCounts = {3, 2};
  file.mNodes.resize(1);
  file.mNodes[0].mMatrices.assign(5, vexa::formats::AnimationFile::kIdentity);
  file.mNodes[0].mMatrices[2][12] = 2;
  file.mNodes[0].mLinks = {{0, 1}, {1, 1}, {2, 1}};
  vexa::formats::writeAnimationFile(file, scratchFolder() / "m.amo");
  vexa::formats::writeFile(scratchFolder() / "m.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
}

// Every file of a run by its name, or its error under "".
std::map<std::string, std::string> filesOf(vexa::scene::SceneOutput output) {
  const fs::path folder = output.mFolder = scratchFolder() / "out";
  std::map<std::string, std::string> files;
  try {
    const auto load = [] {
      return vexa::scene::ScenePlayer(vexa::scene::readSceneFile(scratchFolder() / "scene.json"));
    };
    vexa::scene::writeScene(load, output);
    for (const auto& entry : fs::directory_iterator(folder)) {
      files[entry.path().filename()] = vexa::formats::readFile(entry.path());
    }
  } catch (const std::runtime_error& error) {
    require(!fs::exists(folder));
    files[""] = error.what();
  }
  fs::remove_all(folder);
  return files;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const bool isReady = (makeInputs(), true);
  using Meshes = vexa::scene::SceneOutput::Meshes;
  const std::string file = scratchFolder() / "scene.json";
  vexa::formats::writeFile(file, std::string(reinterpret_cast<const char*>(data), size));
  try {
    vexa::scene::describeFile(file);
  } catch (const std::runtime_error&) {
    return 0;  // not a scene
  }
  for (const auto meshes : {Meshes::kObj, Meshes::kGlb, Meshes::kPointCache}) {
    const bool plots = meshes == Meshes::kObj && size % 8 == 0;  // pictures are slow
    vexa::scene::SceneOutput output{{0, 1, 7}, "", meshes, plots};
    const auto one = filesOf(output);
    output.mJobs = 2;
    require(filesOf(output) == one);
  }
  require(isReady && std::distance(fs::directory_iterator(scratchFolder()), {}) == 3);
  return 0;
}
