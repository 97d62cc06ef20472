#pragma once

#include <string>

#include "scene/ScenePlayer.h"

namespace vexa::cli {

/// A scene file, ready to be played. Throws std::runtime_error "FILE: what is wrong".
/// A `take` that is not empty is shown by every object that has it.
scene::ScenePlayer loadScene(const std::string& file, const std::string& take = "");

}  // namespace vexa::cli
