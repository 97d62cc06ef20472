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
#include "tests/helpers/filled.h"
#include "tests/helpers/recording_reporter.h"
#include "tests/helpers/scratch_directory.h"
#include "vexa/framecollector/XCFrameCollector.h"
#include "vexa/mesh/MeshEditor.h"
#include "vexa/support/XStPushReporter.h"

namespace Norvel {
namespace {

using vexa::formats::AnimationFile;
using vexa::tests::filled;
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
std::string readFile(Vexa::XIFrameCollector& ioCollector, const std::string& path) {
  return whatOf([&] { XCAMOFileIOTool(path.c_str()).Read(&ioCollector); });
}
// A new file each time: some file systems wait for the disk when a file is written anew.
std::string readBytes(const std::string& inBytes, Vexa::XIFrameCollector& ioCollector) {
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

// A file of the kernel that opens, has a size and can not be read.
TEST(XCAMOFileIOTool, AReadErrorIsNoEndOfFile) {
  const std::string path = "/sys/class/net/lo/speed";
  if (!std::filesystem::is_regular_file(path)) GTEST_SKIP() << path << " is absent";
  RecordingCollector collector;
  EXPECT_EQ(readFile(collector, path), "XCAMOFileIOTool : This file can not be read!");
  EXPECT_EQ(collector.calls(), "");
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
  EXPECT_EQ(errorOf(words({101, 0, 1, 4096}, 144)), "nothing was thrown");  // links
  EXPECT_EQ(errorOf(words({101, 0, 1, 4097}, 144)), kTruncated);
  EXPECT_EQ(errorOf(words({101, 1, 1048575, 1}, 144)), "nothing was thrown");  // frames and a node
  EXPECT_EQ(errorOf(words({101, 1, 1048576, 1}, 144)), kTruncated);
  EXPECT_EQ(errorOf(words({101, 1, 1048577, 1}, 144 + 256)),
            "nothing was thrown");  // two are there
  EXPECT_EQ(errorOf(words({101, 1, 1048578, 1}, 144 + 256)), kTruncated);
  EXPECT_EQ(errorOf(words({101, 1, ~0u, ~0u}, 144)), kTruncated);
  EXPECT_EQ(errorOf(words({101, 2000000}, 136 + 4 * 2000000 + 4)), "nothing was thrown");
  EXPECT_EQ(errorOf(words({101, 0, 2000000}, 140 + 4 * 2000000)), "nothing was thrown");
}

// A file of `takes` takes, of which the last has one frame where `isFilled`, and `nodes` nodes.
std::string takesAndNodes(std::uint32_t takes, std::uint32_t nodes, bool isFilled) {
  AnimationFile file;
  file.mFrameCounts.resize(takes);
  file.mFrameCounts.back() = isFilled;
  file.mNodes.resize(nodes);
  if (isFilled) {
    for (AnimationFile::Node& node : file.mNodes) node.mMatrices = {AnimationFile::kIdentity};
  }
  return encodeAnimationFile(file);
}

// GetSize() starts again from 0 at 4 GiB: a file that gets there is refused, a complete one below
// is not, and takes without frames cost a node nothing.
TEST(XCAMOFileIOTool, RefusesACompleteFileFrom4GiBOnOnly) {
  const ScratchDirectory scratch;
  const std::string path = scratch / "large.amo";
  UXS::Mesh mesh;
  vexa::tests::writeText(path, takesAndNodes(200000, 400, true));  // 3.6 GiB from 853 kB
  Vexa::XCFrameCollector collector(&mesh);
  EXPECT_EQ(whatOf([&] { XCAMOFileIOTool(path.c_str()).Read(&collector); }), "nothing was thrown");
  EXPECT_EQ(collector.GetSize(), 400u * (32 + 48 * 200000 + 64));
  EXPECT_TRUE(vexa::tests::sameBits(collector.GetTransformation(199999, 0, 399),
                                    UXS::uxs_generic_mat4<float>()));
  EXPECT_EQ(errorOf(takesAndNodes(230000, 400, true)), kTruncated);  // 4.1 GiB
  EXPECT_EQ(errorOf(takesAndNodes(200000, 400, false)), "nothing was thrown");
  vexa::tests::writeText(path, words({101, 60000000}, 140));  // takes alone; the counts are a hole
  std::filesystem::resize_file(path, 250000000);
  RecordingCollector recording;
  EXPECT_EQ(readFile(recording, path), kTruncated);
  EXPECT_EQ(recording.calls(), "");
}

// Fills like a collector of the library, but by the operations of the interface.
class FilledOneByOne : public Vexa::XCFrameCollector {
  using XCFrameCollector::XCFrameCollector;
};

// All that can be seen of a collector after it was filled from bytes, as text.
template <class Collector>
std::string stateAfter(const std::string& bytes, UXS::Mesh& mesh) {
  Collector collector(&mesh);
  std::ostringstream state;
  state << readBytes(bytes, collector) << ' ' << collector.GetSize() << ' '
        << collector.GetNbrTakes() << ' ' << collector.GetGlobalTransformation().e[5] << '\n';
  for (unsigned take = 0; take < std::min(collector.GetNbrTakes(), 5u); ++take) {
    for (int node = 0; node < 5; ++node) {
      for (unsigned frame = 0; frame < 4; ++frame) {
        state << whatOf([&] { state << collector.GetTransformation(take, frame, node).e[7]; });
      }
    }
    for (const auto& vertex : mesh.GetVerticesArray()) {
      double sum = -7;
      state << ' ' << collector.GetVertexTransformation(&vertex, take, 1, sum).e[0] << ' ' << sum;
    }
  }
  return state.str();
}

// Whole nodes at a time or one call per matrix: both leave the same, also where a file is bad.
TEST(XCAMOFileIOTool, FillsACollectorOfTheLibraryAsAnyOther) {
  vexa::tests::RecordingReporter reporter;
  const XStPushReporter scope(&reporter, false);
  UXS::Mesh mesh;
  {
    UXS::Mesh::Editor editor(mesh, false);
    for (int v = 0; v < 9; ++v) editor.AddVertex({1, float(v), 3});
  }
  const auto check = [&](const std::string& bytes) {
    ASSERT_EQ(stateAfter<Vexa::XCFrameCollector>(bytes, mesh),
              stateAfter<FilledOneByOne>(bytes, mesh));
  };
  const std::string good = encodeAnimationFile(example());
  for (std::size_t size = 1; size <= good.size(); size += 5) check(good.substr(0, size));
  for (std::size_t offset = 4; offset + 4 <= good.size(); offset += 4) {
    for (const std::uint32_t odd : {1u, 9u, ~0u}) {
      std::string bad = good;
      std::memcpy(&bad[offset], &odd, 4);
      check(bad);
    }
  }
}

}  // namespace
}  // namespace Norvel
