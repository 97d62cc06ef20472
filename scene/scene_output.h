#pragma once

#include <functional>
#include <string>
#include <vector>

#include "scene/ScenePlayer.h"

namespace vexa::scene {

/// What to write of a scene that is played over some frames.
struct SceneOutput {
  enum class Meshes { kNone, kObj, kGlb };

  std::vector<int> mFrames;  ///< rising, 0 or more, at least one
  std::string mFolder;       ///< made when it is not there
  Meshes mMeshes = Meshes::kNone;
  bool mPlots = false;
  /// Called after every frame with the number of frames done.
  std::function<void(std::size_t)> mProgress = [](std::size_t) {};
};

/// Plays the scene and writes into the folder: values.csv, placements.csv; frame_NNNNNN.obj per
/// frame or scene.glb; with plots also curves.svg, paths.svg and poses.png.
///
/// What stands in a file about a frame depends on the scene and that frame alone: a range that is
/// split over several runs gives the same rows and the same OBJ files. Returns the names of the
/// files. Throws std::runtime_error that names the file which cannot be written.
std::vector<std::string> writeScene(ScenePlayer& player, const SceneOutput& output);

}  // namespace vexa::scene
