#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "scene/scene_output.h"

namespace vexa::scene {

constexpr std::int64_t kMostTasks = 1'000'000;

/// One task of a run that is split over processes, and how the parts become one run again.
///
/// Task i of n plays the frames f * i / n up to f * (i + 1) / n of f frames: contiguous, every
/// frame once, the same for everybody. It writes into a folder of its own, with a file part.json
/// that states the run, the task and a checksum of each file.
struct RunPart {
  std::string mScene;          ///< the scene file, an absolute path
  std::string mSceneSum;       ///< checksum of the scene and all that it plays
  std::string mTake;           ///< the take shown, or ""
  std::string mMesh = "none";  ///< as vexa run --mesh
  std::string mGlb;            ///< of "glb": "skin" or "morph"
  std::vector<int> mFrames;    ///< of the whole run
  std::size_t mTask = 0, mTasks = 1;
  std::vector<std::pair<std::string, std::string>> mFiles;  ///< name and checksum

  /// "part_3_of_8", with as many digits for the task as the count has.
  std::string folderName() const;
  /// The frames of the task.
  std::vector<int> frames() const;
};

/// A checksum of the scene file, its meshes and its animation files.
std::string sceneSum(const std::string& file, const refhost::Scene& scene);

/// Whether the part is complete in `folder`: written for the same run and task, its files with
/// their checksums.
bool isWhole(const RunPart& part, const std::string& folder);

/// Plays the frames of the part into its folder below `folder`. Returns what was written; throws as
/// writeScene.
std::vector<std::string> writePart(RunPart part, const std::string& folder,
                                   const PlayerMaker& makePlayer, const SceneOutput& output);

/// Puts the parts below a folder together into that folder, to the bytes of one run. `makePlayer`
/// loads a scene by its file and take.
///
/// Throws std::runtime_error that names the part: missing, there twice, of another run, or with a
/// file that is not as its run wrote it; the folder is then as it was.
std::vector<std::string> mergeParts(
    const std::string& folder,
    const std::function<ScenePlayer(const std::string& file, const std::string& take)>& makePlayer);

}  // namespace vexa::scene
