#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "formats/NewFile.h"
#include "formats/OutputFolder.h"
#include "formats/glb_skin.h"
#include "scene/ScenePlayer.h"
#include "scene/SkinnedObject.h"

namespace vexa::scene {

/// The animated instances of a scene over some frames as skins: joints that move instead of points.
///
/// A vertex is then within 1e-6 of its object's size from where the run has it, apart from what the
/// place of the instance rounds. Memory does not grow with the frames.
class SceneSkin {
 public:
  /// Plays the frames, without deforming, to see what is shown. The player is left at any of them.
  SceneSkin(ScenePlayer& player, const std::vector<int>& frames);

  /// Why skins would not be exact, or "".
  const std::string& obstacle() const { return mObstacle; }
  /// Of all instances.
  std::size_t jointCount() const;

  /// Plays the frames again and writes them. Only without an obstacle. Throws as GlbSkinWriter.
  void write(ScenePlayer& player, const std::vector<int>& frames, formats::NewFile& file,
             const std::string& name) const;

 private:
  struct Shown {
    std::size_t mInstance;  ///< of the scene
    std::size_t mObject;
    formats::GlbNode mPlacement;
  };

  void addInstances(ScenePlayer& player);
  void see(const ScenePlayer& player, bool isFirst);
  std::string prepareObjects(const ScenePlayer& player);

  std::vector<Shown> mShown;
  std::vector<SkinnedObject> mObjects;
  std::vector<std::size_t> mDefinitions;  ///< of the objects
  std::string mObstacle;
};

/// What a run writes, for people: a skin, or morph targets and why.
std::string glbText(const SceneSkin& skin);

/// Writes scene.glb.
void writeSkin(const SceneSkin& skin, ScenePlayer& player, const std::vector<int>& frames,
               const formats::OutputFolder& folder);

}  // namespace vexa::scene
