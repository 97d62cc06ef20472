#pragma once

#include <optional>
#include <string>
#include <vector>

#include "formats/MovingMesh.h"
#include "formats/mtl.h"

namespace vexa::formats {

/// Materials by their ids; no value for one that no material file states.
using MaterialsById = std::vector<std::optional<MtlMaterial>>;

/// The materials of an OBJ text, as its material files beside `objFile` state them. No entries at
/// all where they state no material.
MaterialsById meshMaterials(const std::string& objText, const std::string& objFile);

/// The same of a file; nothing where it cannot be read.
MaterialsById materialsOfFile(const std::string& objFile);

/// Gives the meshes that were read from files the materials of these files, with the paths of their
/// textures.
void addSurfaces(std::vector<MovingMesh>& ioMeshes);

}  // namespace vexa::formats
