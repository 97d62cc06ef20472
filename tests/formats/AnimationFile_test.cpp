#include "formats/AnimationFile.h"

#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

#include "tests/helpers/compare.h"
#include "tests/helpers/filled.h"
#include "tests/helpers/scratch_directory.h"

namespace vexa::formats {
namespace {

using tests::filled;
using tests::whatOf;

// Two takes of 1 and 2 frames, two nodes, two links and none.
AnimationFile example() {
  AnimationFile file;
  file.mFrameCounts = {1, 2};
  file.mNodes = {{{filled(1), filled(2), filled(3)}, {{7, 0.5}, {8, 0.25}}},
                 {{filled(4), filled(5), filled(6)}, {}}};
  return file;
}

template <class T>
T at(const std::string& inBytes, std::size_t inOffset) {
  T value;
  std::memcpy(&value, inBytes.data() + inOffset, sizeof(T));
  return value;
}

TEST(AnimationFile, EveryValueHasItsOffset) {
  const std::string bytes = encodeAnimationFile(example());
  ASSERT_EQ(bytes.size(), 136u + 8 + 4 + (3 * 128 + 4 + 24) + (3 * 128 + 4));
  EXPECT_EQ(at<std::uint32_t>(bytes, 0), 101u);
  EXPECT_EQ(at<std::uint32_t>(bytes, 4), 2u);
  EXPECT_EQ(at<double>(bytes, 8 + 8 * 5), 1);    // the identity's second diagonal element
  EXPECT_EQ(at<std::uint32_t>(bytes, 140), 2u);  // frames of the second take
  EXPECT_EQ(at<std::uint32_t>(bytes, 144), 2u);  // nodes
  EXPECT_EQ(at<double>(bytes, 148 + 128), 2);
  EXPECT_EQ(at<std::uint32_t>(bytes, 148 + 384), 2u);
  EXPECT_EQ(at<std::uint32_t>(bytes, 148 + 388 + 12), 8u);
  EXPECT_EQ(at<double>(bytes, 148 + 388 + 16), 0.25);  // right behind the index
}

TEST(AnimationFile, ComesBackAsWrittenAndIsRefusedWhenCutOrLonger) {
  const std::string bytes = encodeAnimationFile(example());
  EXPECT_EQ(encodeAnimationFile(decodeAnimationFile(bytes)), bytes);
  for (std::size_t n = 0; n < bytes.size(); ++n) {
    EXPECT_THROW(decodeAnimationFile(bytes.substr(0, n)), std::runtime_error) << n;
  }
  EXPECT_EQ(whatOf([&] { decodeAnimationFile(bytes + '\0'); }),
            "animation file, byte 948: bytes after the last node");
}

TEST(AnimationFile, AFailedWriteLeavesWhatStoodThere) {
  const tests::ScratchDirectory scratch;
  const std::string path = scratch / "kept.amo";
  AnimationFile file = example();
  writeAnimationFile(file, path);
  file.mNodes[1].mMatrices.pop_back();
  EXPECT_EQ(whatOf([&] { writeAnimationFile(file, path); }),
            "animation file: node 1 has 2 matrices, not 3");
  EXPECT_EQ(tests::textOf(path), encodeAnimationFile(example()));
  EXPECT_EQ(whatOf([] { writeAnimationFile(example(), "no/such/folder.amo"); }),
            "no/such/folder.amo: No such file or directory");
}

}  // namespace
}  // namespace vexa::formats
