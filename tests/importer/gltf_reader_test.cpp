#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <unistd.h>

#include "importer/model_reader.h"
#include "tests/helpers/compare.h"
#include "tests/importer/small_models.h"

namespace vexa::tests {
namespace {

using importer::Vec3;

// A file of four accessors of floats (0 points, 1 times, 2 and 3 values) whose other parts differ.
// Node 0 has a triangle of its own; nodes 1 and 2 share the name "Head".
struct Gltf {
  std::string mSampler = R"("interpolation": "LINEAR")";
  std::string mMore;
  std::string mPoints = R"({"bufferView": 0, "componentType": 5126, "count": 3, "type": "VEC3"})";
  std::string mChildren = "[1, 2]";
  std::string mPath = "translation";
  std::string mType = "VEC3";
  std::vector<float> mValues = {0, 0, 0, 4, 0, 0};
  std::vector<float> mTimes = {0.5f, 1.5f};

  std::string write() const {
    const std::vector<float> points = {0, 0, 0, 1, 0, 0, 0, 1, 0};
    std::vector<float> all = points;
    all.insert(all.end(), mTimes.begin(), mTimes.end());
    all.insert(all.end(), mValues.begin(), mValues.end());
    const std::string stem = testing::TempDir() + "vexa_" + std::to_string(getpid());
    std::ofstream(stem + ".bin", std::ios::binary)
        .write(reinterpret_cast<const char*>(all.data()), std::streamsize(4 * all.size()));
    const auto view = [](std::size_t offset, std::size_t length) {
      return R"({"buffer": 0, "byteOffset": )" + std::to_string(4 * offset) +
             R"(, "byteLength": )" + std::to_string(4 * length) + "}";
    };
    const std::size_t width = mType == "VEC4" ? 4 : 3;
    std::ofstream(stem + ".gltf")
        << R"({"asset": {"version": "2.0"}, "scenes": [{"nodes": [0]}], "scene": 0,)" << mMore
        << R"("nodes": [{"mesh": 0, "children": )" << mChildren
        << R"(}, {"name": "Head"}, {"name": "Head", "mesh": 0, "scale": [-1, 1, 1]}],)"
        << R"("meshes": [{"primitives": [{"attributes": {"POSITION": 0}}]}],)"
        << R"("buffers": [{"uri": "vexa_)" << getpid() << R"(.bin", "byteLength": )"
        << 4 * all.size() << R"(}], "bufferViews": [)" << view(0, 9) << ","
        << view(9, mTimes.size()) << "," << view(9 + mTimes.size(), mValues.size())
        << R"(], "accessors": [)" << mPoints
        << R"(, {"bufferView": 1, "componentType": 5126, "type": "SCALAR", "count": )"
        << mTimes.size() << R"(}, {"bufferView": 2, "componentType": 5126, "type": ")" << mType
        << R"(", "count": )" << mValues.size() / width << R"(}], "animations": [{"channels": )"
        << R"([{"sampler": 0, "target": {"node": 2, "path": ")" << mPath
        << R"("}}], "samplers": [{"input": 1, "output": 2, )" << mSampler << "}]}]}";
    return stem + ".gltf";
  }
  // Where the corners of node 2 are at a frame, 30 a second: at the origin, on Y, on X (mirrored).
  std::vector<Vec3> corners(std::size_t frame) const {
    const auto pose = importer::importModel(write()).mReference.pose(0, frame);
    return {pose.end() - 3, pose.end()};
  }
};

void expectAt(const Vec3& actual, double x, double y, double z) {
  EXPECT_NEAR(actual.x, x, 1e-6);
  EXPECT_NEAR(actual.y, y, 1e-6);
  EXPECT_NEAR(actual.z, z, 1e-6);
}

// Half way between the keys at 0.5 and 1.5 seconds.
TEST(GltfReader, NodesMoveByTheirIndexAsTheSamplerSays) {
  Gltf file;
  expectAt(file.corners(30)[0], 2, 0, 0);
  expectAt(file.corners(30)[2], 1, 0, 0);  // the mirroring scale stays
  file.mSampler = R"("interpolation": "STEP")";
  expectAt(file.corners(44)[0], 0, 0, 0);
  expectAt(file.corners(45)[0], 4, 0, 0);
  // Leaving 0 at 8 per second and arriving at 4 at rest: 2 + 8 / 8.
  file.mSampler = R"("interpolation": "CUBICSPLINE")";
  file.mValues = {0, 0, 0, 0, 0, 0, 8, 0, 0, 0, 0, 0, 4, 0, 0, 0, 0, 0};
  expectAt(file.corners(30)[0], 3, 0, 0);
}

TEST(GltfReader, RotationsTakeTheShorterWayAndAreMadeUnit) {
  Gltf file;
  file.mPath = "rotation";
  file.mType = "VEC4";
  const float h = std::sqrt(0.5f);
  file.mValues = {0, 0, 0, 2, 0, 0, -h, -h};  // 90 degrees about Z
  expectAt(file.corners(30)[1], -double(h), 0, double(h));
  file.mSampler = R"("interpolation": "CUBICSPLINE")";
  file.mValues = {0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, h, h, 0, 0, 0, 0};
  expectAt(file.corners(30)[1], -double(h), 0, double(h));
}

TEST(GltfReader, ASparseAccessorReplacesSomeElements) {
  Gltf file;
  file.mPoints =
      R"({"bufferView": 0, "componentType": 5126, "count": 3, "type": "VEC3", "sparse": {"count": 1,)"
      R"("indices": {"bufferView": 0, "byteOffset": 4, "componentType": 5125},)"
      R"("values": {"bufferView": 2, "byteOffset": 12}}})";  // index 0, value (4, 0, 0)
  expectAt(file.corners(0)[0], -4, 0, 0);
}

TEST(GltfReader, WhatItCannotShowIsRefusedOrNoted) {
  const std::string prefix = "the model cannot be read: ";
  const auto refusal = [&](const Gltf& file) {
    return whatOf([&] { importer::readModel(file.write()); });
  };
  Gltf file;
  file.mMore = R"("extensionsRequired": ["EXT_meshopt_compression"],)";
  EXPECT_EQ(refusal(file),
            prefix + "its mesh compression (EXT_meshopt_compression) cannot be read");
  file.mMore = R"("extensionsUsed": ["KHR_animation_pointer"],)";
  const auto notes = importer::readModel(file.write()).mNotes;
  ASSERT_EQ(notes.size(), 1u);
  EXPECT_EQ(notes[0], "the extension KHR_animation_pointer is not supported and is left out");
  file.mMore = "";
  file.mChildren = "[1, 2, 1]";
  EXPECT_EQ(refusal(file), prefix + "node 1 hangs on two nodes");
  file.mChildren = "[0]";
  EXPECT_EQ(refusal(file), prefix + "its nodes hang on each other in a ring");
  file.mChildren = "[7]";
  EXPECT_EQ(refusal(file), prefix + "it has no node 7");
  file.mChildren = "[1, 2]";
  file.mPoints = R"({"bufferView": 0, "componentType": 5126, "count": 4, "type": "VEC3"})";
  EXPECT_EQ(refusal(file), prefix + "accessor 0 reaches past the end of its buffer view");
  file.mPoints = R"({"bufferView": 9, "componentType": 5126, "count": 3, "type": "VEC3"})";
  EXPECT_EQ(refusal(file), prefix + "it has no buffer view 9");
}

}  // namespace
}  // namespace vexa::tests
