#include "scene/describe.h"

#include <gtest/gtest.h>

#include "formats/AnimationFile.h"
#include "formats/write_file.h"
#include "tests/helpers/compare.h"
#include "tests/helpers/scratch_directory.h"

namespace {

using vexa::formats::AnimationFile;
using vexa::scene::describeFile;

// a.obj, a triangle, and a.amo, one frame of one node to which the first `linked` vertices are
// linked.
void writeTriangle(const vexa::tests::ScratchDirectory& folder, unsigned int linked) {
  AnimationFile file;
  file.mFrameCounts = {1};
  file.mNodes.resize(1);
  file.mNodes[0].mMatrices.assign(1, AnimationFile::kIdentity);
  for (unsigned int v = 0; v < linked; ++v) file.mNodes[0].mLinks.push_back({v, 1});
  writeAnimationFile(file, (folder / "a.amo").string());
  vexa::formats::writeFile((folder / "a.obj").string(), "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
}

TEST(Describe, AnAnimationFileWithEveryFault) {
  const vexa::tests::ScratchDirectory folder;
  const std::string path = (folder / "a.amo").string();
  AnimationFile file;
  file.mFrameCounts = {2, 0};
  file.mNodes.resize(2);
  file.mNodes[0].mMatrices.assign(2, AnimationFile::kIdentity);
  file.mNodes[0].mMatrices[1][5] = std::numeric_limits<double>::infinity();
  file.mNodes[0].mLinks = {{0, 1}, {1, 0.5}, {3, 0}, {4, -1}};
  file.mNodes[1].mMatrices.assign(2, AnimationFile::kIdentity);
  file.mNodes[1].mLinks = {{1, 0.25}};
  writeAnimationFile(file, path);
  const auto description = describeFile(path);
  EXPECT_EQ(description["nodes"].dump(), "2");
  EXPECT_EQ(description["mostInfluencesPerVertex"].dump(), "2");
  EXPECT_EQ(*description["bytesInMemory"].whole(), 4 * 64 + 2 * (32 + 2 * 48) + 4 * 72 + 5 * 28);
  EXPECT_EQ(description["notes"].size(), 1u);  // vertices 1 and 4 do not sum to 1
  EXPECT_EQ(description["weightSumsNotOne"].dump(), "2");
  EXPECT_EQ(description["faults"].dump(),
            R"(["1 vertex index unlinked","1 weight sum of 0","1 weight negative or not finite",)"
            R"("1 matrix not finite"])");
}

TEST(Describe, ASceneWhoseAnimationDoesNotFitItsMesh) {
  const vexa::tests::ScratchDirectory folder;
  writeTriangle(folder, 4);
  vexa::formats::writeFile((folder / "s.json").string(),
                           R"({"objects": [{"name": "o", "mesh": "a.obj", "animation": "a.amo",
                              "takes": [{"name": "t", "frames": 1, "rate": 25}]}]})");
  const auto faults = describeFile((folder / "s.json").string())["faults"];
  EXPECT_EQ(faults.dump(), R"(["object \"o\": links to vertex 3 of a mesh of 3 points"])");
}

TEST(Describe, ASceneThatHidesWhatItSays) {
  const vexa::tests::ScratchDirectory folder;
  writeTriangle(folder, 3);
  vexa::formats::writeFile((folder / "s.json").string(),
                           R"({"objects": [{"name": "o", "mesh": "a.obj", "animation": "a.amo",
                               "takes": [{"name": "t", "frames": 2, "rate": 25}]}],
                               "instances": [{"name": "i", "object": "o", "scale": 0}],
                               "values": [{"name": "v", "keys": [{"frame": 1, "value": 0},
                                                                 {"frame": 1, "value": 1}]}]})");
  EXPECT_EQ(describeFile((folder / "s.json").string())["faults"].dump(),
            R"(["value \"v\" has two keys at frame 1","instance \"i\" has a scale of 0",)"
            R"("object \"o\": take \"t\" has 2 frames, its file has 1"])");
}

TEST(Describe, AWalkerWhoseParentIsNotFound) {
  const vexa::tests::ScratchDirectory folder;
  const auto notes = [&](const char* parent) {
    const std::string file = (folder / "s.json").string();
    vexa::formats::writeFile(file,
                             R"({"paths": [{"name": "p", "points": [{"position": [0, 0, 0]}]}],
      "instances": [{"name": "first"}, {"name": "second"}, {"name": "w", "parent": ")" +
                                 std::string(parent) + R"("}],
      "values": [{"name": "v", "kind": "walk", "path": "p", "instance": "w",
                  "keys": [{"frame": 0, "value": 0}]}]})");
    return describeFile(file)["notes"].dump();
  };
  EXPECT_EQ(notes("first"), "[]");
  EXPECT_EQ(notes("second"),
            R"(["instance \"w\" walks beside its path: its parent is not the first instance"])");
}

TEST(Describe, WhatCannotBeReadNamesTheFile) {
  const vexa::tests::ScratchDirectory folder;
  const std::string path = (folder / "short.amo").string();
  vexa::formats::writeFile(path, "abc");
  EXPECT_EQ(vexa::tests::whatOf([&] { describeFile(path); }).find(path + ": "), 0u);
}

}  // namespace
