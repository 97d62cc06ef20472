#include "formats/glb.h"

#include <cmath>
#include <gtest/gtest.h>
#include <tiny_gltf.h>

#include "tests/helpers/compare.h"
#include "tests/helpers/scratch_directory.h"

namespace {

using vexa::formats::MovingMesh;
using vexa::formats::writeGlb;

/// A square of two materials whose corner 2 rises by one unit a frame.
MovingMesh flap(std::size_t frames) {
  MovingMesh mesh;
  mesh.mName = "flap";
  mesh.mTriangles = {{0, 1, 2}, {0, 2, 3}};
  mesh.mMaterials = {0, 5};
  for (std::size_t k = 0; k < frames; ++k) {
    mesh.mFrames.push_back({{0, 0, 0}, {1, 0, 0}, {1, 1, static_cast<float>(k)}, {0, 1, 0}});
  }
  return mesh;
}

/// Number i of an accessor of floats.
float floatAt(const tinygltf::Model& model, int accessor, std::size_t i) {
  const auto& view =
      model.bufferViews[std::size_t(model.accessors[std::size_t(accessor)].bufferView)];
  float value;
  std::memcpy(&value, &model.buffers[0].data[view.byteOffset + i * sizeof(float)], sizeof(float));
  return value;
}

TEST(Glb, AnotherReaderFindsTheFramesAsMorphTargets) {
  const vexa::tests::ScratchDirectory folder;
  writeGlb((folder / "flap.glb").string(), {flap(3)}, 25);
  tinygltf::Model model;
  std::string error, warning;
  ASSERT_TRUE(tinygltf::TinyGLTF().LoadBinaryFromFile(&model, &error, &warning,
                                                      (folder / "flap.glb").string()))
      << error;
  ASSERT_EQ(model.meshes.at(0).primitives.size(), 2u);  // one per material
  const auto& shape = model.meshes[0].primitives[0];
  EXPECT_EQ(shape.targets.size(), 2u);
  // +Z up becomes +Y up; the corner has risen by two units in the second target.
  EXPECT_EQ(floatAt(model, shape.targets[1].at("POSITION"), 3 * 2 + 1), 2);
  const auto& sampler = model.animations.at(0).samplers.at(0);
  EXPECT_EQ(floatAt(model, sampler.input, 2), 2 / 25.f);
  const float weights[] = {0, 0, 1, 0, 0, 1};
  for (std::size_t i = 0; i < 6; ++i) EXPECT_EQ(floatAt(model, sampler.output, i), weights[i]);
}

TEST(Glb, RefusesWhatTheFormatCannotHold) {
  const vexa::tests::ScratchDirectory folder;
  const std::string path = (folder / "bad.glb").string();
  MovingMesh mesh = flap(2);
  mesh.mFrames[1][3].y = NAN;
  EXPECT_EQ(vexa::tests::whatOf([&] { writeGlb(path, {mesh}, 25); }),
            path +
                ": vertex 3 of \"flap\" is no finite point in sampled frame 1; is it linked to a "
                "node?");
  EXPECT_FALSE(std::filesystem::exists(path));
}

}  // namespace
