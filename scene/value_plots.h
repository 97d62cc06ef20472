#pragma once

#include <string>
#include <vector>

#include "scene/ScenePlayer.h"

namespace vexa::scene {

/// Draws values over frames as SVG; `samples` has one list per frame. A position gets two plots,
/// one for the place and one for the direction, since their units differ.
void writeValuePlots(const std::string& path, const std::vector<const refhost::Property*>& values,
                     const std::vector<int>& frames,
                     const std::vector<std::vector<ScenePlayer::Sample>>& samples);

}  // namespace vexa::scene
