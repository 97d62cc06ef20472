#pragma once

#include <unordered_map>

#include "importer/SourceModel.h"
#include "importer/fbx_scene_internal.h"

namespace vexa::importer {

/// An FBX file on its way to a SourceModel.
struct FbxParts {
  const FbxScene& mScene;
  /// The model's node of each "Model" object, by its id.
  std::unordered_map<std::int64_t, std::int32_t> mNodes;
  /// The model's material of each "Material" object, by its id.
  std::unordered_map<std::int64_t, std::uint32_t> mMaterials;
};

void addFbxNodes(FbxParts& ioParts, SourceModel& ioModel);
void addFbxMaterials(FbxParts& ioParts, SourceModel& ioModel);
/// Needs nodes and materials.
void addFbxMeshes(const FbxParts& parts, SourceModel& ioModel);
void addFbxClips(const FbxParts& parts, SourceModel& ioModel);

/// How geometry lies on a node: a matrix that the node's children do not take over.
Matrix fbxGeometricMatrix(const FbxObject& node);

/// The keys of an AnimationCurve object; times in seconds from `startTicks` on.
std::vector<SourceModel::CurveKey> fbxCurveKeys(const FbxRecord& curve, double startTicks,
                                                double ticksPerSecond);

}  // namespace vexa::importer
