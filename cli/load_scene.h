#pragma once

#include <string>

#include "scene/ScenePlayer.h"

namespace vexa::cli {

/// A scene file, ready to be played. Throws std::runtime_error "FILE: what is wrong".
scene::ScenePlayer loadScene(const std::string& file);

}  // namespace vexa::cli
