#include "cli/load_scene.h"

#include <stdexcept>
#include <utility>

#include "assets/scene_file.h"

namespace vexa::cli {

assets::ScenePlayer loadScene(const std::string& file) {
  refhost::Scene scene = assets::readSceneFile(file);
  try {
    return assets::ScenePlayer(std::move(scene));
  } catch (const std::exception& error) {
    throw std::runtime_error(file + ": " + error.what());
  }
}

}  // namespace vexa::cli
