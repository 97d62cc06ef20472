#pragma once

#include <string>
#include <vector>

#include "formats/OutputFolder.h"
#include "scene/ScenePlayer.h"

/// The files of a run's parts, put together in the order of the parts. Each function writes into
/// the output folder and returns the names it has written; all throw std::runtime_error.
namespace vexa::scene {

struct MergedPart {
  std::string mFolder;
  std::vector<int> mFrames;
  std::vector<std::string> mNames;
};

/// The CSV tables, with the header of the first part.
std::vector<std::string> mergeTables(const std::vector<MergedPart>& parts,
                                     const formats::OutputFolder& target);
std::vector<std::string> mergeObjs(const std::vector<MergedPart>& parts,
                                   const formats::OutputFolder& target);
/// The point caches, whose samples are `step` frames apart, and the rest meshes beside them.
std::vector<std::string> mergeCaches(const std::vector<MergedPart>& parts, float step,
                                     const formats::OutputFolder& target);
/// One scene.glb from the point caches of parts; `player` plays their scene.
void mergeGlb(const std::vector<MergedPart>& parts, const std::vector<int>& frames,
              ScenePlayer& player, const formats::OutputFolder& target);

}  // namespace vexa::scene
