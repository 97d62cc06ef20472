#include "vexa/framecollector/XCAMOFileIOTool.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>
#include <sstream>
#include <sys/stat.h>

#include "formats/AnimationFile.h"
#include "models/LiteralFrameCollector.h"
#include "models/literal_animation_file.h"
#include "tests/helpers/compare.h"
#include "tests/helpers/scratch_directory.h"

namespace Norvel {
namespace {

using vexa::formats::AnimationFile;
using vexa::tests::ScratchDirectory;
using vexa::tests::whatOf;

const std::string kTruncated = "XCAMOFileIOTool : This file is truncated!";

// Writes down the calls that fill a collector, matrices by their first element. A new node gets the
// index 5, which then counts up with every call.
class RecordingCollector final : public vexa::tests::LiteralFrameCollector {
 public:
  RecordingCollector() : LiteralFrameCollector({}) {}
  std::string calls() const { return mCalls.str(); }

  unsigned AddTransformation(const Matrix& m, unsigned inTake, int inNode) override {
    mCalls << "AddTransformation " << m.e[0] << ' ' << inTake << ' ' << inNode << '\n';
    return unsigned(inNode < 0 ? 5 : inNode + 1);
  }
  void SetGlobalTransformation(const Matrix& m) override {
    mCalls.precision(9);
    mCalls << "SetGlobalTransformation " << m.e[0] << '\n';
  }
  void AddLink(int inNode, const UxZel::CZelUUID& inDefinition, unsigned inVertex,
               double inWeight) override {
    mCalls.precision(17);
    mCalls << "AddLink " << inNode << ' ' << inVertex << ' ' << inWeight
           << (isNone(inDefinition) ? "\n" : " with a definition\n");
  }
  void CreateTake() override { mCalls << "CreateTake\n"; }

 private:
  std::ostringstream mCalls;
};

AnimationFile::Matrix filled(double inValue) {
  AnimationFile::Matrix matrix;
  matrix.fill(inValue);
  return matrix;
}

// Three takes, the second without frames; three nodes with 2, 0 and 1 links.
AnimationFile example() {
  AnimationFile file;
  file.mFrameCounts = {1, 0, 2};
  file.mGlobal = filled(0.1);
  for (int n = 0; n < 3; ++n)
    file.mNodes.push_back({{filled(n), filled(n + 10), filled(n + 20)}, {}});
  file.mNodes[0].mLinks = {{7, 0.5}, {8, 0.1}};
  file.mNodes[2].mLinks = {{0, 1}};
  return file;
}

// The error, and the calls on the collector up to it.
std::string readFile(RecordingCollector& ioCollector, const std::string& inPath) {
  return whatOf([&] { XCAMOFileIOTool(inPath.c_str()).Read(&ioCollector); });
}
// A new file each time: some file systems wait for the disk when a file is written anew.
std::string readBytes(const std::string& inBytes, RecordingCollector& ioCollector) {
  static const ScratchDirectory sScratch;
  const auto path = sScratch / "read.amo";
  vexa::tests::writeText(path, inBytes);
  const std::string error = readFile(ioCollector, path);
  std::filesystem::remove(path);
  return error;
}
std::string errorOf(const std::string& inBytes) {
  RecordingCollector collector;
  return readBytes(inBytes, collector);
}

std::string literalCalls(std::string inBytes) {
  RecordingCollector collector;
  std::FILE* file = fmemopen(inBytes.data(), inBytes.size(), "rb");
  vexa::tests::readAnimationFileLiterally(file, collector);
  std::fclose(file);
  return collector.calls();
}

std::string words(std::initializer_list<std::uint32_t> inWords, std::size_t inSize) {
  std::string bytes(inSize, '\0');
  std::size_t offset = 0;
  for (const std::uint32_t word : inWords) {
    std::memcpy(&bytes[offset], &word, 4);
    offset += offset == 4 ? 132 : 4;  // the global matrix stays zero
  }
  return bytes;
}

std::size_t openFiles() {
  return std::size_t(std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}));
}

TEST(XCAMOFileIOTool, RefusesOtherVersionsAndWhatIsNoFile) {
  for (const std::uint32_t version : {100u, 102u}) {
    EXPECT_EQ(errorOf(words({version, 0, 0}, 140)),
              "XCAMOFileIOTool : This file has not the good version!");
  }
  EXPECT_EQ(errorOf(""), "XCAMOFileIOTool : This file has not the good version!");
  const ScratchDirectory scratch;
  const std::string pipe = scratch / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  for (const std::string& path :
       {pipe + "absent", std::string("."), pipe, std::string("/dev/zero"), std::string()}) {
    RecordingCollector collector;
    EXPECT_EQ(readFile(collector, path), "XCAMOFileIOTool : This file can not be opened!") << path;
    EXPECT_EQ(collector.calls(), "");
  }
}

// Every cut, and odd values of every word: each file is read as plainly as can be, or refused.
TEST(XCAMOFileIOTool, ReadsOrRefusesEveryBadFile) {
  AnimationFile noTakes;
  noTakes.mNodes = {{{}, {{1, 1}}}, {}};
  const std::size_t openBefore = openFiles();
  int refused = 0, files = 0;
  const auto check = [&](const std::string& bytes) {
    RecordingCollector collector;
    const std::string error = readBytes(bytes, collector);
    ++files;
    if (error == "nothing was thrown") {
      ASSERT_TRUE(collector.calls() == literalCalls(bytes)) << "file " << files;
    } else {
      ++refused;
      ASSERT_TRUE(error == kTruncated || error.find("version") != std::string::npos) << error;
    }
  };
  for (const AnimationFile& file : {example(), noTakes}) {
    const std::string good = encodeAnimationFile(file);
    EXPECT_EQ(errorOf(good), "nothing was thrown");
    for (std::size_t size = 1; size <= good.size(); ++size) check(good.substr(0, size));
    for (std::size_t offset = 0; offset + 4 <= good.size(); offset += 4) {
      std::uint32_t word;
      std::memcpy(&word, &good[offset], 4);
      for (const std::uint32_t odd :
           {0u, 1u, 1000u, 0x10000u, 0x7FFFFFFFu, 0x80000000u, ~0u, ~word, word + 1, word - 1}) {
        std::string bad = good;
        std::memcpy(&bad[offset], &odd, 4);
        check(bad);
      }
    }
  }
  EXPECT_GT(files, 4000);
  EXPECT_GT(refused, 10);
  EXPECT_EQ(openFiles(), openBefore);
}

// {version, takes, then from byte 136 on frame counts, nodes, links}
TEST(XCAMOFileIOTool, HonoursWhatTheFileHoldsAndLittleBeyond) {
  EXPECT_EQ(errorOf(words({101, 0, 0}, 140)), "nothing was thrown");
  EXPECT_EQ(errorOf(words({101, 1048576}, 8)), "nothing was thrown");
  EXPECT_EQ(errorOf(words({101, 1048577}, 8)), kTruncated);
  EXPECT_EQ(errorOf(words({101, 1048577}, 136)), kTruncated);  // the matrix holds no counts
  EXPECT_EQ(errorOf(words({101, ~0u}, 8)), kTruncated);
  EXPECT_EQ(errorOf(words({101, 0, 1048576}, 140)), "nothing was thrown");  // nodes
  EXPECT_EQ(errorOf(words({101, 0, 1048577}, 140)), kTruncated);
  EXPECT_EQ(errorOf(words({101, 0, 1, 1048576}, 144)), "nothing was thrown");  // links
  EXPECT_EQ(errorOf(words({101, 0, 1, 1048577}, 144)), kTruncated);
  EXPECT_EQ(errorOf(words({101, 1, 1048575, 1}, 144)), "nothing was thrown");  // frames and a node
  EXPECT_EQ(errorOf(words({101, 1, 1048576, 1}, 144)), kTruncated);
  EXPECT_EQ(errorOf(words({101, 1, 1048577, 1}, 144 + 256)),
            "nothing was thrown");  // two are there
  EXPECT_EQ(errorOf(words({101, 1, 1048578, 1}, 144 + 256)), kTruncated);
  EXPECT_EQ(errorOf(words({101, 1, ~0u, ~0u}, 144)), kTruncated);
  EXPECT_EQ(errorOf(words({101, 2000000}, 136 + 4 * 2000000 + 4)), "nothing was thrown");
  EXPECT_EQ(errorOf(words({101, 0, 2000000}, 140 + 4 * 2000000)), "nothing was thrown");
}

// Takes without frames cost a node 48 bytes each, which nothing in the file has to stand for.
TEST(XCAMOFileIOTool, RefusesFilesThatWouldFillTheMemory) {
  const auto takesAndNodes = [](std::uint32_t takes, std::uint32_t nodes) {
    std::string bytes = words({101, takes, 1}, 140 + 4 * takes);
    std::memcpy(&bytes[136 + 4 * takes], &nodes, 4);
    return bytes;
  };
  const struct {
    std::string mStart;
    std::uintmax_t mSize;  // the rest is a hole
    bool mRefused;
  } kFiles[] = {
      {takesAndNodes(200000, 25), 1000000, false},             // 240 MB
      {takesAndNodes(200000, 400), 1000000, true},             // 3.6 GiB from 1 MB
      {takesAndNodes(200000, 400), 70000000, false},           // the same from 70 MB
      {takesAndNodes(230000, 400), 70000000, true},            // 4.1 GiB
      {words({101, 60000000}, 140), 250000000, true},          // takes alone
      {words({101, 0, 1, 160000000}, 144), 2000000000, true},  // links alone
  };
  for (const auto& file : kFiles) {
    const ScratchDirectory scratch;
    const std::string path = scratch / "large.amo";
    vexa::tests::writeText(path, file.mStart);
    std::filesystem::resize_file(path, file.mSize);
    RecordingCollector collector;
    EXPECT_EQ(readFile(collector, path), file.mRefused ? kTruncated : "nothing was thrown");
    EXPECT_EQ(collector.calls().find("Add") == std::string::npos, file.mRefused);
  }
}

}  // namespace
}  // namespace Norvel
