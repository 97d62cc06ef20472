#pragma once

#include <functional>
#include <string>
#include <vector>

#include "scene/ScenePlayer.h"

namespace vexa::scene {

/// Which files a run over some frames writes.
struct SceneOutput {
  enum class Meshes { kNone, kObj, kGlb, kPointCache };

  std::vector<int> mFrames;  ///< rising, 0 or more; none stands for all up to lastFrame()
  std::string mFolder;       ///< made when it is not there
  Meshes mMeshes = Meshes::kNone;
  bool mIsMorphed = false;  ///< a GLB has morph targets even where a skin would be exact
  bool mPlots = false;
  std::size_t mJobs = 1;  ///< threads; each loads the scene and plays a part of the frames
  /// Called after every frame with the number of frames done and of all, by one thread at a time.
  std::function<void(std::size_t, std::size_t)> mProgress = [](std::size_t, std::size_t) {};
};

/// Loads the scene that is to be played.
using PlayerMaker = std::function<ScenePlayer()>;

/// Plays the scene and writes into the folder: values.csv, placements.csv; frame_NNNNNN.obj per
/// frame, scene.glb, or per mesh NAME_mesh.obj with its first pose and NAME.pc2 with all; with
/// plots also curves.svg, paths.svg and poses.png.
///
/// The output about a frame depends on the scene and that frame alone: a range that is split over
/// jobs or runs gives the same rows and the same OBJ files. The files appear all together at the
/// end. Memory does not grow with the frames, except for plots. Returns a line per file, with one
/// line for all OBJ files. Throws std::runtime_error that names the file which cannot be written;
/// the folder is then as it was.
std::vector<std::string> writeScene(const PlayerMaker& makePlayer, SceneOutput output);

}  // namespace vexa::scene
