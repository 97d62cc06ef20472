#pragma once

#include <optional>
#include <string>
#include <vector>

#include "formats/MovingMesh.h"
#include "formats/mtl.h"

namespace vexa::scene {

/// The materials of an OBJ text by their ids, as its material files beside `objFile` state them;
/// empty for an id that they do not state. No entries at all where they state no material.
std::vector<std::optional<formats::MtlMaterial>> meshMaterials(const std::string& objText,
                                                               const std::string& objFile);

/// Gives every triangle of the meshes that were read from a file with materials its colour: that of
/// its material, times that of the texture in the middle of the triangle. Other meshes stay as
/// they are, and so do those whose files can no longer be read.
void addColors(std::vector<formats::MovingMesh>& ioMeshes);

}  // namespace vexa::scene
