#pragma once

#include <vector>

#include "formats/MovingMesh.h"

namespace vexa::scene {

/// Gives every triangle of the meshes that were read from a file with materials its colour: that of
/// its material, times that of the texture in the middle of the triangle. Other meshes stay as
/// they are, and so do those whose files can no longer be read.
void addColors(std::vector<formats::MovingMesh>& ioMeshes);

}  // namespace vexa::scene
