#pragma once

#include <memory>
#include <string>
#include <vector>

#include "formats/MovingMesh.h"
#include "refhost/Scene.h"
#include "vexa/animation/XIAnimationMgr.h"
#include "vexa/math/ux_matrix44.h"

namespace vexa::scene {

/// Plays a scene through the animation manager, as a host would: frame by frame, in any order.
///
/// What a frame gives depends on the scene and the frame alone, not on the frames shown before.
class ScenePlayer {
 public:
  /// What the manager answered for one value.
  struct Sample {
    UxZel::IZelKeyFrame::uValue mValue{};
    UxZel::CZelVector mDirection;  ///< for positions along a path; zero otherwise
  };

  /// Takes the scene and registers its animated instances. Throws std::runtime_error that names the
  /// value, object or instance that cannot be played, and why.
  explicit ScenePlayer(refhost::Scene scene);

  const refhost::Scene& scene() const { return mScene; }

  /// Takes over the settings, paths and values of an edited scene and how its instances are placed
  /// and animated. The objects stay as they were registered: `edited` needs none. Throws as the
  /// constructor, and when an instance was added, removed, renamed or given another object; the
  /// player then goes on with its former scene.
  void edit(refhost::Scene edited);

  /// Computes every value of the scene at a frame, 0 or more, and drives the instances.
  void setFrame(int frame);

  /// One value at a frame, 0 or more, as setFrame computes it. The frame is shown only when the
  /// value drives an instance.
  Sample sample(std::size_t value, int frame);

  /// One per value of the scene, in its order.
  const std::vector<Sample>& samples() const { return mSamples; }

  /// Where the origin of an instance of the scene lies in the world, through all that enclose it.
  UxZel::CZelPoint worldPosition(const refhost::Instance& instance) const;

  /// The deformed mesh of an instance in its own space, at the frame that it shows; null for an
  /// instance without animated object. Depends on the object, the take and the take's frame only.
  const UXS::Mesh* mesh(const refhost::Instance& instance) const;
  /// From an instance's own space into the world.
  Norvel::Vexa::ux_matrix44<double> toWorld(const refhost::Instance& instance) const;

  /// The meshes of all animated instances without a pose, in the order of the instances.
  std::vector<formats::MovingMesh> meshes() const;
  /// Appends the pose of the frame to each of them, in world space.
  void appendPoses(std::vector<formats::MovingMesh>& ioMeshes) const;
  /// The points of that pose alone, a list per mesh; memory of an earlier frame is used again.
  void getPoses(std::vector<formats::MovingMesh::Points>& outPoses) const;

 private:
  /// Where an instance is in the world, through all that enclose it.
  struct Placement {
    Norvel::Vexa::ux_matrix44<double> mToWorld;
    float mScale = 1;  ///< of all that enclose it and its own
    bool mIsPlantGroup = false;
  };
  struct Deleter {
    void operator()(Norvel::Vexa::XIAnimationMgr* manager) const { manager->Delete(); }
  };

  void registerInstance(refhost::Instance& instance);
  void placeInstances();
  const Placement& placementOf(const refhost::Instance& instance) const;

  void orderScene();

  refhost::Scene mScene;
  std::unique_ptr<Norvel::Vexa::XIAnimationMgr, Deleter> mManager;
  std::vector<Sample> mSamples;
  std::vector<std::size_t> mParents;  ///< of each instance, or kNone
  std::vector<std::size_t> mPlacementOrder;
  std::vector<Placement> mPlacements;
  /// Indices of the values, those of an instance after those of its parents: where a walker is in
  /// its parent depends on where the parent is at the same frame.
  std::vector<std::size_t> mOrder;
};

/// Throws std::runtime_error that names the value when it cannot be played in this scene.
void checkValue(const refhost::Scene& scene, const refhost::Property& value);

}  // namespace vexa::scene
