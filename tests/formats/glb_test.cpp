#include "formats/glb.h"

#include <cmath>
#include <gtest/gtest.h>
#include <tiny_gltf.h>

#include "formats/write_file.h"
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

template <class T>
T numberAt(const tinygltf::Model& model, int view, std::size_t i) {
  T value;
  std::memcpy(
      &value,
      &model.buffers[0].data[model.bufferViews[std::size_t(view)].byteOffset + i * sizeof(T)],
      sizeof(T));
  return value;
}

/// Number i of an accessor of floats.
float floatAt(const tinygltf::Model& model, int accessor, std::size_t i) {
  return numberAt<float>(model, model.accessors[std::size_t(accessor)].bufferView, i);
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
  // Three frames of two weights; the ones are in frame 1 for target 0, in frame 2 for target 1.
  const auto& weights = model.accessors.at(std::size_t(sampler.output));
  EXPECT_EQ(weights.count, 6u);
  ASSERT_EQ(weights.sparse.count, 2);
  EXPECT_EQ(numberAt<std::uint32_t>(model, weights.sparse.indices.bufferView, 0), 2u);
  EXPECT_EQ(numberAt<std::uint32_t>(model, weights.sparse.indices.bufferView, 1), 5u);
  EXPECT_EQ(numberAt<float>(model, weights.sparse.values.bufferView, 1), 1);
  const auto& moves = model.accessors.at(std::size_t(shape.targets[1].at("POSITION")));
  EXPECT_EQ(moves.maxValues, (std::vector<double>{0, 2, 0}));
}

// Half of what a screen shows is about a fifth of the light. The square has no uv for a picture.
TEST(Glb, StatedColoursAndPicturesAreInTheFile) {
  const vexa::tests::ScratchDirectory folder;
  const std::string picture = (folder / "p.png").string(), path = (folder / "flap.glb").string();
  vexa::formats::writeFile(picture, "\x89PNG\r\n\x1a\n and what an encoder wrote");
  MovingMesh plain = flap(2), pictured = flap(2);
  plain.mFile = pictured.mFile = "flap.obj";
  plain.mSurfaces = {vexa::formats::MtlMaterial{"skin", {0.5, 0, 1}, picture}};
  pictured.mSurfaces = plain.mSurfaces;
  pictured.mUvs.resize(2);
  writeGlb(path, {plain, pictured, pictured}, 25);
  tinygltf::TinyGLTF reader;
  std::string image;
  const auto keepImage = [](tinygltf::Image*, int, std::string*, std::string*, int, int,
                            const unsigned char* bytes, int size, void* to) {
    static_cast<std::string*>(to)->assign(bytes, bytes + size);
    return true;
  };
  reader.SetImageLoader(keepImage, &image);
  tinygltf::Model model;
  std::string error, warning;
  ASSERT_TRUE(reader.LoadBinaryFromFile(&model, &error, &warning, path)) << error;
  EXPECT_EQ(image, vexa::tests::textOf(picture));
  const auto materialOf = [&model](std::size_t mesh, std::size_t primitive) {
    const int index = model.meshes.at(mesh).primitives.at(primitive).material;
    return model.materials.at(std::size_t(index));
  };
  const auto& color = materialOf(0, 0).pbrMetallicRoughness.baseColorFactor;
  EXPECT_NEAR(color.at(0), 0.214, 0.001);
  EXPECT_EQ(color.at(2), 1);
  EXPECT_EQ(materialOf(0, 0).pbrMetallicRoughness.baseColorTexture.index, -1);
  EXPECT_EQ(materialOf(1, 0).pbrMetallicRoughness.baseColorTexture.index, 0);
  EXPECT_EQ(materialOf(0, 1).name, "material_5");  // not stated
  EXPECT_EQ(model.materials.size(), 3u);           // the third mesh has those of the second
}

TEST(Glb, WithoutMeshesAnEmptyScene) {
  const vexa::tests::ScratchDirectory folder;
  const std::string path = (folder / "empty.glb").string();
  writeGlb(path, {}, 25);
  tinygltf::Model model;
  std::string error, warning;
  ASSERT_TRUE(tinygltf::TinyGLTF().LoadBinaryFromFile(&model, &error, &warning, path)) << error;
  EXPECT_EQ(model.scenes.size(), 1u);
  EXPECT_EQ(vexa::tests::textOf(path).substr(8, 1)[0], char(std::filesystem::file_size(path)));
}

TEST(Glb, RefusesWhatTheFormatCannotHold) {
  const vexa::tests::ScratchDirectory folder;
  const std::string path = (folder / "bad.glb").string();
  const auto faultOf = [&](std::size_t points, std::size_t frames) {
    MovingMesh large = flap(1);
    large.mTriangles.clear();
    for (unsigned i = 2; i < points; ++i) large.mTriangles.emplace_back(i - 2, i - 1, i);
    large.mMaterials.resize(large.mTriangles.size());
    large.mFrames[0].resize(points);
    const std::string file = (folder / "none").string();
    return vexa::tests::whatOf([&] {
      vexa::formats::NewFile unwritten(file);
      std::filesystem::remove(file);
      vexa::formats::GlbWriter(unwritten, "a.glb", {large}, frames, 25);
    });
  };
  EXPECT_NE(faultOf(10000, 40000).find("the format ends at 4 GiB"), std::string::npos);
  EXPECT_NE(faultOf(3, 70000).find("70000 frames are more"), std::string::npos);
  MovingMesh mesh = flap(2);
  mesh.mFrames[1][3].y = NAN;
  EXPECT_EQ(vexa::tests::whatOf([&] { writeGlb(path, {mesh}, 25); }),
            path +
                ": vertex 3 of \"flap\" is no finite point in sampled frame 1; is it linked to a "
                "node?");
  EXPECT_FALSE(std::filesystem::exists(path));
}

}  // namespace
