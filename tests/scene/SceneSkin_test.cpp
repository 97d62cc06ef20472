#include "scene/SceneSkin.h"

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "formats/AnimationFile.h"
#include "scene/scene_file.h"
#include "scene/scene_output.h"
#include "tests/helpers/scratch_directory.h"
#include "vexa/mesh/Mesh.h"

namespace vexa::scene {
namespace {

using formats::AnimationFile;
using nlohmann::json;
using tests::ScratchDirectory;

constexpr int kFrames = 5;

/// A GLB file as another program evaluates it.
class Viewer {
 public:
  explicit Viewer(const std::string& bytes) {
    std::uint32_t length;
    std::memcpy(&length, bytes.data() + 12, 4);
    mJson = json::parse(bytes.substr(20, length));
    mBinary = bytes.substr(28 + length);
  }

  /// The vertices of the mesh node at a frame, +Z up.
  formats::MovingMesh::Points pose(std::size_t meshNode, std::size_t frame) const {
    const json& node = mJson["nodes"][meshNode];
    const json& skin = mJson["skins"][node["skin"].get<std::size_t>()];
    const json& vertex =
        mJson["meshes"][node["mesh"].get<std::size_t>()]["primitives"][0]["attributes"];
    const Matrix44 placed = matrixOf(transform(skin["skeleton"], frame));
    std::vector<Matrix44> joints;
    for (std::size_t j = 0; j < skin["joints"].size(); ++j) {
      Matrix44 bind;
      for (int i = 0; i < 16; ++i) {
        bind.e[i] = double(number<float>(skin["inverseBindMatrices"], 16 * j + std::size_t(i)));
      }
      joints.push_back(placed * matrixOf(transform(skin["joints"][j], frame)) * bind);
    }
    formats::MovingMesh::Points points;
    const std::size_t count = mJson["accessors"][vertex["POSITION"].get<std::size_t>()]["count"];
    for (std::size_t v = 0; v < count; ++v) {
      Norvel::Vexa::ux_point3<double> sum(0.0, 0.0, 0.0);
      const auto at = [&](std::size_t i) { return double(number<float>(vertex["POSITION"], i)); };
      const Norvel::Vexa::ux_point3<double> rest(at(3 * v), at(3 * v + 1), at(3 * v + 2));
      for (std::size_t i = 4 * v; i < 4 * v + 4; ++i) {
        const auto p = joints[number<std::uint16_t>(vertex["JOINTS_0"], i)] * rest;
        const auto weight = double(number<float>(vertex["WEIGHTS_0"], i));
        sum.x += p.x * weight;
        sum.y += p.y * weight;
        sum.z += p.z * weight;
      }
      points.emplace_back(float(sum.x), -float(sum.z), float(sum.y));
    }
    return points;
  }

 private:
  template <class T>
  T number(std::size_t accessor, std::size_t i) const {
    const std::size_t view = mJson["accessors"][accessor]["bufferView"];
    const std::size_t offset = mJson["bufferViews"][view]["byteOffset"];
    T value;
    std::memcpy(&value, mBinary.data() + offset + i * sizeof(T), sizeof(T));
    return value;
  }

  formats::GlbTransform transform(std::size_t node, std::size_t frame) const {
    const json& still = mJson["nodes"][node];
    formats::GlbTransform result{still["translation"], still["rotation"], still["scale"]};
    for (const json& channel : mJson["animations"][0]["channels"]) {
      if (channel["target"]["node"] != node) continue;
      const std::string path = channel["target"]["path"];
      const std::size_t sampler = channel["sampler"];
      const auto read = [&](auto& values) {
        for (std::size_t i = 0; i < values.size(); ++i) {
          values[i] = number<float>(mJson["animations"][0]["samplers"][sampler]["output"],
                                    frame * values.size() + i);
        }
      };
      if (path == "translation") read(result.mTranslation);
      if (path == "rotation") read(result.mRotation);
      if (path == "scale") read(result.mScale);
    }
    return result;
  }

  json mJson;
  std::string mBinary;
};

/// Two joints: one turns about a slanted axis and moves; the other is scaled along axes that are
/// slanted against the mesh, mirrored in the last frame, and has no size at all in the first.
AnimationFile twoJoints() {
  AnimationFile file;
  file.mFrameCounts = {kFrames};
  file.mNodes.resize(2);
  for (int k = 0; k < kFrames; ++k) {
    Matrix44 turn, stretch;
    turn.rot(0.6, 0, 0.8, 0.7 * k);
    turn.add_trans(3, 0.5 * k, -2);
    stretch.rot(0, 0, 1, 0.4);
    stretch.add_scale(0.5 * k, k == kFrames - 1 ? -1.0 : 0.75 * k, 1.0 * k);
    stretch.add_rot(1, 0, 0, 0.3 * k);
    for (const std::size_t node : {0u, 1u}) {
      auto& matrix = file.mNodes[node].mMatrices.emplace_back();
      std::copy_n(node == 0 ? turn.e : stretch.e, 16, matrix.begin());
    }
  }
  file.mNodes[0].mLinks = {{0, 2.0}, {1, 1.0}, {3, 0.25}};
  file.mNodes[1].mLinks = {{1, 0.5}, {2, 0.75}, {3, 0.5}};
  return file;
}

// A flag that is played by two instances at different frames, one of them in a turned parent.
struct Flags {
  explicit Flags(const AnimationFile& file) {
    tests::writeText(mFolder / "flag.obj",
                     "v 0 0 0\nv 2 0 1\nv 2 1 -1\nv 0 1 2\nf 1 2 3\nf 1 3 4\n");
    formats::writeAnimationFile(file, (mFolder / "flag.amo").string());
    tests::writeText(mFolder / "scene.json", R"({
      "objects": [{"name": "flag", "mesh": "flag.obj", "animation": "flag.amo",
                   "takes": [{"name": "wave", "frames": 5, "rate": 25}]}],
      "instances": [
        {"name": "a", "object": "flag", "take": "wave", "position": [4, 5, 6], "rotationDegrees": 60},
        {"name": "b", "object": "flag", "take": "wave", "parent": "a", "scale": [1, 2, 3]}],
      "values": [
        {"name": "fa", "kind": "takeFrame", "instance": "a", "keys": [
          {"frame": 0, "value": 0}, {"frame": 5, "value": 4}]},
        {"name": "fb", "kind": "takeFrame", "instance": "b", "keys": [
          {"frame": 0, "value": 1}, {"frame": 3, "value": 4}]}]})");
  }
  ScenePlayer player() const {
    return ScenePlayer(readSceneFile((mFolder / "scene.json").string()));
  }

  ScratchDirectory mFolder;
};

TEST(SceneSkin, AViewerFindsTheVerticesOfTheRun) {
  const Flags flags(twoJoints());
  SceneOutput output;
  output.mFrames = {0, 1, 2, 3, 4};
  output.mFolder = (flags.mFolder / "out").string();
  output.mMeshes = SceneOutput::Meshes::kGlb;
  const auto lines = writeScene([&] { return flags.player(); }, output);
  EXPECT_EQ(lines.back(), output.mFolder + "/scene.glb: a skin of 4 joints");
  const Viewer viewer(tests::textOf(flags.mFolder / "out/scene.glb"));
  ScenePlayer player = flags.player();
  std::vector<formats::MovingMesh::Points> poses;
  for (std::size_t frame = 0; frame < kFrames; ++frame) {
    player.setFrame(int(frame));
    player.getPoses(poses);
    for (const std::size_t instance : {0u, 1u}) {
      const auto shown = viewer.pose(4 * instance, frame);
      ASSERT_EQ(shown.size(), 4u);
      for (std::size_t v = 0; v < 4; ++v) {
        const auto d = shown[v] - poses[instance][v];
        EXPECT_LT(std::abs(d.x) + std::abs(d.y) + std::abs(d.z), 2e-5f) << frame << " " << v;
      }
    }
  }
}

std::string obstacleOf(const AnimationFile& file) {
  const Flags flags(file);
  ScenePlayer player = flags.player();
  return SceneSkin(player, {0, 1, 2, 3, 4}).obstacle();
}

TEST(SceneSkin, WhatJointsCannotShowIsNamed) {
  AnimationFile sheared = twoJoints();  // in two ways: one way alone is a scale along other axes
  sheared.mNodes[0].mMatrices[2][4] += 0.01;
  sheared.mNodes[0].mMatrices[3][9] += 0.01;
  EXPECT_EQ(obstacleOf(sheared),
            "object \"flag\": node 0 is sheared or far from the object's origin");
  AnimationFile crowded = twoJoints();
  for (int i = 0; i < 3; ++i) crowded.mNodes.push_back(crowded.mNodes[0]);
  EXPECT_EQ(obstacleOf(crowded),
            "object \"flag\": vertex 1 follows 5 nodes, of which many viewers show four");
  AnimationFile negative = twoJoints();
  negative.mNodes[1].mLinks[0].mWeight = -0.5;
  EXPECT_EQ(obstacleOf(negative), "object \"flag\": vertex 1 has a negative weight");
}

}  // namespace
}  // namespace vexa::scene
