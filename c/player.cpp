// Playing a scene: values, placements and meshes at a frame.
#include <algorithm>

#include "c/conversion_internal.h"
#include "c/scene_internal.h"
#include "scene/ScenePlayer.h"
#include "scene/value_parts.h"

namespace {

using namespace vexa::c;
using vexa::formats::MovingMesh;
namespace refhost = vexa::refhost;

// What a vexa_player stands for. The meshes are deformed on demand: a program that reads values
// only needs none. mIsPosed is whether they have the pose of the frame shown.
struct PlayerObject final : Object {
  static constexpr char kKind[] = "vexa_player";

  explicit PlayerObject(refhost::Scene scene)
      : mPlayer(std::move(scene)), mMeshes(mPlayer.meshes()) {
    mPlayer.setFrame(0);
  }

  const refhost::Property& property(std::uint32_t value) const {
    const auto& values = mPlayer.scene().mProperties;
    if (value >= values.size()) refuse("there is no value " + std::to_string(value));
    return values[value];
  }

  const refhost::Instance& instance(std::uint32_t index) const {
    const auto& instances = mPlayer.scene().mInstances.mElements;
    if (index >= instances.size()) refuse("there is no instance " + std::to_string(index));
    return instances[index];
  }

  void show(std::int32_t frame) {
    require(frame >= 0, "the frame is less than 0");
    mIsPosed = false;
    mPlayer.setFrame(frame);
  }

  // The meshes with the pose of the frame shown.
  const std::vector<MovingMesh>& posedMeshes() {
    if (!mIsPosed) {
      for (MovingMesh& mesh : mMeshes) mesh.mFrames.clear();
      mPlayer.appendPoses(mMeshes);
      mIsPosed = true;
    }
    return mMeshes;
  }

  vexa::scene::ScenePlayer mPlayer;
  std::vector<MovingMesh> mMeshes;
  bool mIsPosed = false;
  std::vector<double> mNumbers;  // what vexa_player_value hands out
};

}  // namespace

vexa_status vexa_player_new(vexa_scene scene, vexa_player* out_player) {
  return guarded([&] {
    require(out_player != nullptr, "out_player is null");
    // The scene becomes the player's. Its handle ends first: even when the player cannot be made,
    // the scene may have been moved from.
    const Use<SceneObject> use(scene);
    endHandle(scene);
    create<PlayerObject>(out_player, std::move(use->mScene));
  });
}

vexa_status vexa_player_free(vexa_player player) { return freeHandle<PlayerObject>(player); }

vexa_status vexa_player_set_frame(vexa_player player, int32_t frame) {
  return guarded([&] { Use<PlayerObject>(player)->show(frame); });
}

vexa_status vexa_player_counts(vexa_player player, uint32_t* out_values, uint32_t* out_instances) {
  return guarded([&] {
    const Use<PlayerObject> use(player);
    require(out_values != nullptr && out_instances != nullptr, "a pointer to a count is null");
    *out_values = std::uint32_t(use->mPlayer.scene().mProperties.size());
    *out_instances = std::uint32_t(use->mPlayer.scene().mInstances.mElements.size());
  });
}

vexa_status vexa_player_find_value(vexa_player player, const char* name, uint32_t* out_index) {
  return guarded([&] {
    const Use<PlayerObject> use(player);
    require(out_index != nullptr, "out_index is null");
    textOf(name, "name");
    const auto& values = use->mPlayer.scene().mProperties;
    const auto found = std::find_if(values.begin(), values.end(),
                                    [&](const auto& value) { return value.mName == name; });
    if (found == values.end()) refuse(std::string("there is no value \"") + name + "\"");
    *out_index = std::uint32_t(found - values.begin());
  });
}

vexa_status vexa_player_value_size(vexa_player player, uint32_t value, size_t* out_count) {
  return guarded([&] {
    const Use<PlayerObject> use(player);
    require(out_count != nullptr, "out_count is null");
    *out_count = vexa::scene::partCount(use->property(value));
  });
}

vexa_status vexa_player_value(vexa_player player, uint32_t value, const double** out_numbers,
                              size_t* out_count) {
  return guarded([&] {
    const Use<PlayerObject> use(player);
    require(out_numbers != nullptr && out_count != nullptr, "out_numbers or out_count is null");
    const refhost::Property& property = use->property(value);
    use->mNumbers.resize(vexa::scene::partCount(property));
    vexa::scene::writeParts(property, use->mPlayer.samples()[value], use->mNumbers.data());
    *out_numbers = use->mNumbers.data();
    *out_count = use->mNumbers.size();
  });
}

vexa_status vexa_player_sample(vexa_player player, uint32_t value, const int32_t* frames,
                               size_t frame_count, double* out_numbers, size_t capacity) {
  return guarded([&] {
    const Use<PlayerObject> use(player);
    const refhost::Property& property = use->property(value);
    const std::size_t size = vexa::scene::partCount(property);
    requireArray(frames, frame_count, "frames");
    require(out_numbers != nullptr || frame_count == 0, "out_numbers is null");
    // Divided, not multiplied: the product of two counts of a caller may overflow.
    if (capacity / size < frame_count) {
      refuse("out_numbers holds " + std::to_string(capacity) + " numbers; " +
             std::to_string(frame_count * size) + " are needed");
    }
    require(std::all_of(frames, frames + frame_count, [](int frame) { return frame >= 0; }),
            "a frame is less than 0");
    // A value that drives an instance moves it, so the meshes no longer have its pose.
    use->mIsPosed = false;
    for (std::size_t i = 0; i < frame_count; ++i) {
      vexa::scene::writeParts(property, use->mPlayer.sample(value, frames[i]),
                              out_numbers + i * size);
    }
  });
}

vexa_status vexa_player_placement(vexa_player player, uint32_t instance,
                                  vexa_placement* out_placement) {
  return guarded([&] {
    const Use<PlayerObject> use(player);
    require(out_placement != nullptr, "out_placement is null");
    *out_placement = placementOf(use->instance(instance));
  });
}

vexa_status vexa_player_world_position(vexa_player player, uint32_t instance,
                                       double* out_position) {
  return guarded([&] {
    const Use<PlayerObject> use(player);
    require(out_position != nullptr, "out_position is null");
    const UxZel::CZelPoint p = use->mPlayer.worldPosition(use->instance(instance));
    out_position[0] = p.x;
    out_position[1] = p.y;
    out_position[2] = p.z;
  });
}

vexa_status vexa_player_mesh_count(vexa_player player, size_t* out_count) {
  return guarded([&] {
    const Use<PlayerObject> use(player);
    require(out_count != nullptr, "out_count is null");
    *out_count = use->mMeshes.size();
  });
}

vexa_status vexa_player_mesh(vexa_player player, size_t mesh, vexa_mesh* out_mesh) {
  return guarded([&] {
    const Use<PlayerObject> use(player);
    require(out_mesh != nullptr, "out_mesh is null");
    if (mesh >= use->mMeshes.size()) refuse("there is no mesh " + std::to_string(mesh));
    const MovingMesh& posed = use->posedMeshes()[mesh];
    *out_mesh = {};
    setPoints(posed.mFrames[0], *out_mesh);
    setTriangles(posed.mTriangles, *out_mesh);
    out_mesh->materials = posed.mMaterials.data();
    if (!posed.mUvs.empty()) out_mesh->uvs = &posed.mUvs[0].x.x;
  });
}
