#pragma once

#include <string>
#include <vector>

#include "formats/MovingMesh.h"

namespace vexa::formats {

/// Writes moving meshes as one binary glTF 2.0 file, +Y up as that format has it.
///
/// Each mesh rests in its first frame; every later frame is a morph target, and an animation turns
/// one target after the other on, so that a player between two frames blends them linearly. All
/// meshes have the same number of frames, `framesPerSecond` of them a second.
///
/// Throws std::runtime_error "PATH: what is wrong": no frame, a coordinate that is not a finite
/// number, what writeFile throws.
void writeGlb(const std::string& path, const std::vector<MovingMesh>& meshes,
              double framesPerSecond);

}  // namespace vexa::formats
