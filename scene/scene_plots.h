#pragma once

#include <functional>
#include <string>
#include <vector>

#include "scene/ScenePlayer.h"

namespace vexa::scene {

/// What the plots of a run show, gathered while its frames go by.
class SceneRecord {
 public:
  /// Where a file of that name is to be written.
  using PathFor = std::function<std::string(const std::string& name)>;

  SceneRecord(const ScenePlayer& player, std::vector<int> frames);

  /// Takes in frame i of the list, which `player` shows. Several threads may add different frames.
  void add(const ScenePlayer& player, std::size_t i);
  /// Writes curves.svg, paths.svg and poses.png, those for which there is something to draw, and
  /// returns their names.
  std::vector<std::string> write(const refhost::Scene& scene, const PathFor& pathFor);

 private:
  const std::vector<int> mFrames;
  const std::vector<std::size_t> mPictured;  ///< indices of the frames with a picture
  std::vector<std::vector<ScenePlayer::Sample>> mSamples;
  std::vector<std::vector<UxZel::CZelPoint>> mPoints;  ///< per frame, of everything that moves
  std::vector<formats::MovingMesh> mPosed;
};

}  // namespace vexa::scene
