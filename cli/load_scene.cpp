#include "cli/load_scene.h"

#include <stdexcept>
#include <utility>

#include "scene/scene_extent.h"
#include "scene/scene_file.h"

namespace vexa::cli {

scene::ScenePlayer loadScene(const std::string& file, const std::string& take) {
  refhost::Scene scene = scene::readSceneFile(file);
  try {
    // Before the player is made: its checks ask which take an instance plays.
    if (!take.empty()) scene::showTake(scene, take);
    return scene::ScenePlayer(std::move(scene));
  } catch (const std::exception& error) {
    throw std::runtime_error(file + ": " + error.what());
  }
}

}  // namespace vexa::cli
