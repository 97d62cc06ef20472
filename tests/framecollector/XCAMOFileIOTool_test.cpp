#include "vexa/framecollector/XCAMOFileIOTool.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>
#include <sys/stat.h>
#include <unistd.h>

#include "assets/AnimationFile.h"
#include "assets/write_file.h"
#include "tests/framecollector/RecordingCollector.h"
#include "tests/helpers/compare.h"
#include "tests/models/literal_animation_file.h"

namespace Norvel {
namespace {

using vexa::assets::AnimationFile;
using vexa::tests::RecordingCollector;
using vexa::tests::whatOf;

// Cases run in processes of their own, in one folder.
const std::string kName = "reader_test." + std::to_string(getpid());
const std::string kTruncated = "XCAMOFileIOTool : This file is truncated!";

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
std::string readFile(RecordingCollector& ioCollector, const char* inPath) {
  return whatOf([&] { XCAMOFileIOTool(CChemin(inPath)).Read(&ioCollector); });
}
std::string readBytes(const std::string& inBytes, RecordingCollector& ioCollector) {
  vexa::assets::writeFile(kName, inBytes);
  const std::string error = readFile(ioCollector, kName.c_str());
  std::filesystem::remove(kName);
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

TEST(XCAMOFileIOTool, CallsTheCollectorInTheOrderOfTheFile) {
  AnimationFile file = example();
  file.mNodes.resize(1);
  RecordingCollector collector;
  EXPECT_EQ(readBytes(encodeAnimationFile(file), collector), "nothing was thrown");
  EXPECT_EQ(collector.calls(),
            "CreateTake\nCreateTake\nCreateTake\nSetGlobalTransformation 0.100000001\n"
            "AddTransformation 0 0 -1\nAddTransformation 10 2 5\nAddTransformation 20 2 6\n"
            "AddLink 7 7 0.5\nAddLink 7 8 0.10000000000000001\n");
  EXPECT_EQ(errorOf(words({101, 0, 0}, 140)), "nothing was thrown");
  file.mFrameCounts.clear();
  file.mNodes[0].mMatrices.clear();
  collector = RecordingCollector();
  readBytes(encodeAnimationFile(file), collector);
  EXPECT_EQ(collector.calls(),
            "SetGlobalTransformation 0.100000001\n"
            "AddLink -1 7 0.5\nAddLink -1 8 0.10000000000000001\n");
}

TEST(XCAMOFileIOTool, RefusesOtherVersionsAndWhatIsNoFile) {
  for (const std::uint32_t version : {100u, 102u}) {
    EXPECT_EQ(errorOf(words({version, 0, 0}, 140)),
              "XCAMOFileIOTool : This file has not the good version!");
  }
  EXPECT_EQ(errorOf(""), "XCAMOFileIOTool : This file has not the good version!");
  ASSERT_EQ(mkfifo(kName.c_str(), 0600), 0);
  for (const char* path : {"absent.amo", ".", kName.c_str(), "/dev/zero", ""}) {
    RecordingCollector collector;
    EXPECT_EQ(readFile(collector, path), "XCAMOFileIOTool : This file can not be opened!") << path;
    EXPECT_EQ(collector.calls(), "");
  }
  std::filesystem::remove(kName);
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
      ASSERT_EQ(collector.calls(), literalCalls(bytes));
    } else {
      ++refused;
      ASSERT_TRUE(error == kTruncated || error.find("version") != std::string::npos) << error;
    }
  };
  for (const AnimationFile& file : {example(), noTakes}) {
    const std::string good = encodeAnimationFile(file);
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
  EXPECT_EQ(errorOf(words({101, 1048576}, 8)), "nothing was thrown");
  EXPECT_EQ(errorOf(words({101, 1048577}, 8)), kTruncated);
  EXPECT_EQ(errorOf(words({101, ~0u}, 8)), kTruncated);
  EXPECT_EQ(errorOf(words({101, 0, 1048576}, 140)), "nothing was thrown");  // nodes
  EXPECT_EQ(errorOf(words({101, 0, 1048577}, 140)), kTruncated);
  EXPECT_EQ(errorOf(words({101, 0, 1, 1048576}, 144)), "nothing was thrown");  // links
  EXPECT_EQ(errorOf(words({101, 0, 1, 1048577}, 144)), kTruncated);
  EXPECT_EQ(errorOf(words({101, 1, 1048575, 1}, 144)), "nothing was thrown");  // frames and a node
  EXPECT_EQ(errorOf(words({101, 1, 1048576, 1}, 144)), kTruncated);
  EXPECT_EQ(errorOf(words({101, 1, ~0u, ~0u}, 144)), kTruncated);
  EXPECT_EQ(errorOf(words({101, 2000000}, 136 + 4 * 2000000 + 4)), "nothing was thrown");
  EXPECT_EQ(errorOf(words({101, 0, 2000000}, 140 + 4 * 2000000)), "nothing was thrown");
}

// Takes without frames cost a node 48 bytes each, which nothing in the file has to stand for. The
// bytes behind the counts are a hole in the file.
TEST(XCAMOFileIOTool, RefusesFilesThatWouldFillTheMemory) {
  const struct {
    std::uint32_t mTakes, mNodes;
    std::uintmax_t mSize;
    bool mRefused;
  } kFiles[] = {
      {200000, 25, 1000000, false},    // 240 MB
      {200000, 400, 1000000, true},    // 3.6 GiB from 1 MB
      {200000, 400, 70000000, false},  // the same from 70 MB
      {230000, 400, 70000000, true},   // 4.1 GiB
      {60000000, 0, 250000000, true},  // takes alone
  };
  for (const auto& file : kFiles) {
    std::string bytes = words({101, file.mTakes, 1}, 140);
    if (file.mNodes > 0) bytes.resize(140 + 4 * file.mTakes);
    std::memcpy(&bytes[bytes.size() - 4], &(file.mNodes > 0 ? file.mNodes : file.mTakes), 4);
    vexa::assets::writeFile(kName, bytes);
    std::filesystem::resize_file(kName, file.mSize);
    RecordingCollector collector;
    EXPECT_EQ(readFile(collector, kName.c_str()),
              file.mRefused ? kTruncated : "nothing was thrown");
    EXPECT_EQ(collector.calls().find("AddTransformation") == std::string::npos, file.mRefused);
    std::filesystem::remove(kName);
  }
}

}  // namespace
}  // namespace Norvel
