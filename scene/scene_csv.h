#pragma once

#include <string>

#include "scene/ScenePlayer.h"

namespace vexa::scene {

/// A number in the fewest digits that read back as the same double; "nan", "inf" and "-inf".
std::string shortestNumber(double value);

/// The columns of a scene's values: "frame" and one or more per value, named after it.
std::string valuesHeader(const refhost::Scene& scene);
/// The row of the frame that the player shows.
std::string valuesRow(const ScenePlayer& player, int frame);

/// Where the instances stand: a row per instance and frame.
std::string placementsHeader();
std::string placementsRows(const ScenePlayer& player, int frame);

}  // namespace vexa::scene
