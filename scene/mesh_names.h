#pragma once

#include <string>
#include <vector>

#include "formats/MovingMesh.h"

namespace vexa::scene {

/// A file name for each mesh, made from the name of its instance: letters, digits, '-' and '_'
/// stay, anything else becomes '_'; a name that is already taken gets a number.
std::vector<std::string> meshNames(const std::vector<formats::MovingMesh>& meshes);

/// How fast frames follow each other when every frame of the list becomes one of a file.
double framesPerSecond(int timeScale, const std::vector<int>& frames);

}  // namespace vexa::scene
