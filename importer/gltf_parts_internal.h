#pragma once

#include <string>
#include <vector>

#include "formats/tinygltf_internal.h"
#include "importer/SourceModel.h"

namespace vexa::importer {

/// A glTF file on its way to a SourceModel.
struct GltfParts {
  const tinygltf::Model& mFile;
  /// Per node of the file: its index in the model, and whether the scene shows it.
  std::vector<std::int32_t> mNodes;
  std::vector<bool> mIsShown;
};

/// A name for notes: that of the file, else its kind and number.
std::string gltfName(const std::string& name, const char* kind, std::size_t index);
/// The morph weights that a node's mesh has while nothing animates them; empty without targets.
std::vector<double> gltfMorphWeights(const tinygltf::Model& file, const tinygltf::Node& node);

void addGltfMaterials(const tinygltf::Model& file, SourceModel& ioModel);
void addGltfMeshes(const GltfParts& parts, SourceModel& ioModel);
void addGltfClips(const GltfParts& parts, SourceModel& ioModel);

}  // namespace vexa::importer
