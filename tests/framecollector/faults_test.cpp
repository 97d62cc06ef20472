// Reading a file and computing a definition while memory runs out: every allocation fails once, and
// every allocation from a certain one on.
#include <algorithm>
#include <ctime>
#include <filesystem>
#include <gtest/gtest.h>
#include <malloc.h>

#include "formats/AnimationFile.h"
#include "tests/helpers/compare.h"
#include "tests/helpers/failing_new.h"
#include "tests/helpers/scratch_directory.h"
#include "vexa/framecollector/XCAMOFileIOTool.h"
#include "vexa/framecollector/XCFrameCollector.h"
#include "vexa/mesh/MeshEditor.h"
#include "vexa/mesh/uxs_autoptr.h"
#include "vexa/support/XStPushReporter.h"

namespace Norvel::Vexa {
namespace {

using vexa::formats::AnimationFile;
using vexa::tests::gMemory;
using vexa::tests::throwsAt;
using Points = std::vector<Oru::TVector3D<float>>;

constexpr UxZel::CZelUUID kNone{};

// Lets `attempt` make a call at each of whose allocations memory runs out in turn: at that one
// alone, or from there on. Nothing of an attempt may stay.
template <class Attempt>
void atEveryAllocation(Attempt attempt) {
  for (const bool onwards : {false, true}) {
    long allocation = 0, failures = 0;
    do {
      const long before = gMemory.mBlocks;
      attempt([&](const auto& call) { failures += throwsAt(allocation, onwards, call); });
      ASSERT_EQ(gMemory.mBlocks, before) << allocation;
    } while (++allocation, gMemory.mFired);
    EXPECT_GE(failures, 10);
  }
}

// A strip of triangles whose vertices follow two nodes for two frames.
class MemoryRunsOut : public testing::Test {
 protected:
  MemoryRunsOut() {
    mMesh->increment();
    UXS::Mesh::Editor editor(*mMesh, false);
    for (unsigned v = 0; v < 12; ++v) editor.AddVertex({float(v / 2), float(v % 2), float(v) / 5});
    for (unsigned v = 0; v + 2 < 12; ++v) editor.AddTriangle({v, v + 1, v + 2}, v % 3);
    AnimationFile file;
    file.mFrameCounts = {2};
    file.mNodes.resize(2);
    for (AnimationFile::Node& node : file.mNodes) {
      node.mMatrices = {AnimationFile::kIdentity, AnimationFile::kIdentity};
      node.mMatrices[1][12] = 3;
      for (unsigned v = 0; v < 12; ++v) node.mLinks.push_back({v, 0.5});
    }
    writeAnimationFile(file, mPath);
  }

  void read(XCFrameCollector& ioCollector) const {
    XCAMOFileIOTool(CChemin(mPath.c_str())).Read(&ioCollector);
  }

  const vexa::tests::ScratchDirectory mScratch;
  const std::string mPath = mScratch / "two_nodes.amo";
  UXS::uxs_autoptr<UXS::Mesh> mMesh{new UXS::Mesh};
};

TEST_F(MemoryRunsOut, WhileAFileIsRead) {
  atEveryAllocation([&](const auto& failing) {
    XCFrameCollector collector(mMesh.get()), next(mMesh.get());
    failing([&] { read(collector); });
    read(next);
    EXPECT_EQ(next.GetSize(), 4 * 64u + 2 * (32 + 48) + 12 * 72 + 24 * 28);
  });
}

TEST_F(MemoryRunsOut, WhileADefinitionIsComputed) {
  {  // from here on the mesh keeps the memory of one copy
    XCFrameCollector collector(mMesh.get());
    read(collector);
    collector.GetCurrentDefinition(0, 0, kNone);
  }
  atEveryAllocation([&](const auto& failing) {
    XCFrameCollector collector(mMesh.get());
    read(collector);
    const Points rest = collector.GetCurrentDefinition(0, 0, kNone)->GetVerticesArray();
    failing([&] { collector.GetCurrentDefinition(0, 1, kNone); });
    const UXS::Mesh& moved = *collector.GetCurrentDefinition(0, 1, kNone);
    ASSERT_EQ(moved.GetVerticesArray().size(), 12u);
    for (unsigned v = 0; v < 12; ++v) EXPECT_EQ(moved.GetVerticesArray()[v].x, rest[v].x + 3);
    EXPECT_EQ(moved.GetSectionsCount(), 3u);
  });
}

// What fails is not there, not even in the size, and what is there stays.
TEST_F(MemoryRunsOut, WhileALinkOrAMatrixIsAdded) {
  for (long allocation = 0; allocation < 5; ++allocation) {
    XCFrameCollector collector(mMesh.get());
    collector.CreateTake();
    collector.AddTransformation({}, 0, -1);
    unsigned matrices = 1, nodes = 1;
    double links = 0, sum = 0;
    for (int i = 0; i < 20; ++i) {
      links += !throwsAt(allocation, true, [&] { collector.AddLink(0, kNone, 0, 1); });
      matrices += !throwsAt(allocation, true, [&] { collector.AddTransformation({}, 0, 0); });
      nodes += !throwsAt(allocation, true, [&] { collector.AddTransformation({}, 0, -1); });
      collector.GetVertexTransformation(mMesh->GetVerticesArray().data(), 0, 0, sum);
      EXPECT_EQ(sum, links);
    }
    EXPECT_EQ(collector.GetSize(), (matrices + nodes - 1) * 64 + nodes * 80 +
                                       (links > 0 ? 72u : 0u) + unsigned(links) * 28);
    EXPECT_NO_THROW(collector.GetTransformation(0, matrices - 1, 0));
    EXPECT_THROW(collector.GetTransformation(0, matrices, 0), std::runtime_error);
    EXPECT_THROW(collector.GetTransformation(0, 0, int(nodes)), std::runtime_error);
  }
}

// Matrices take half their size in the file, and nothing is read twice: all blocks that the reading
// asks for, one after the other, come to three quarters of the file, and what stays to less.
TEST(Memory, ReadingAFileTakesLessThanTheFile) {
  const vexa::tests::ScratchDirectory scratch;
  const std::string path = scratch / "long.amo";
  UXS::Mesh mesh;
  {
    UXS::Mesh::Editor editor(mesh, false);
    for (int v = 0; v < 20000; ++v) editor.AddVertex({float(v), 0, 0});
  }
  AnimationFile file;
  file.mFrameCounts = {2000, 0, 1280};
  file.mNodes.resize(32);
  for (AnimationFile::Node& node : file.mNodes) {
    node.mMatrices.resize(3280, AnimationFile::kIdentity);
  }
  for (unsigned i = 0; i < 80000; ++i) file.mNodes[i * 7 % 32].mLinks.push_back({i / 4, 0.25});
  writeAnimationFile(file, path);
  const double size = double(std::filesystem::file_size(path)), step = 1 << 20;
  const std::size_t allBefore = gMemory.mBytes;
  const double inUseBefore = double(mallinfo2().uordblks + mallinfo2().hblkhd);
  XCFrameCollector collector(&mesh);
  XCAMOFileIOTool(path.c_str()).Read(&collector);
  const double inUse = double(mallinfo2().uordblks + mallinfo2().hblkhd) - inUseBefore;
  EXPECT_LT(double(gMemory.mBytes - allBefore) - step, 0.75 * size);
  EXPECT_LT(inUse, 0.60 * size);
  // Under the address sanitizer another allocator is in use.
  EXPECT_TRUE(inUse == 0 || inUse > 0.40 * size);
}

struct SilentReporter : XIReporter {
  void ReportMsg(EMsgType, const char*) override { ++mCount; }
  int mCount = 0;
};

// A link that can not be followed is reported, which costs no more than to follow it.
TEST(Memory, ALinkThatFailsNeedsNoneAndLittleTime) {
  SilentReporter reporter;
  const XStPushReporter scope(&reporter, false);
  UXS::Mesh mesh;
  {
    UXS::Mesh::Editor editor(mesh, false);
    editor.AddVertex({1, 2, 3});
    editor.AddVertex({1, 2, 3});
  }
  XCFrameCollector collector(&mesh);
  collector.CreateTake();
  collector.AddTransformation({}, 0, -1);
  constexpr int kLinks = 200000;
  for (int i = 0; i < kLinks; ++i) {
    collector.AddLink(0, kNone, 0, 1);
    collector.AddLink(-1, kNone, 1, 1);
  }
  const auto ticks = [&](std::size_t vertex) {
    std::clock_t best = CLOCKS_PER_SEC;
    for (int i = 0; i < 9; ++i) {
      const std::clock_t start = std::clock();
      collector.TransformPoint(&mesh.GetVerticesArray()[vertex], 0, 0);
      best = std::min(best, std::clock() - start);
    }
    return best;
  };
  const std::clock_t good = ticks(0);
  std::clock_t bad = 0;
  EXPECT_EQ(vexa::tests::allocationsOf([&] { bad = ticks(1); }), 0);
  EXPECT_EQ(reporter.mCount, 9 * kLinks);
  // An exception for each link, as it was once, costs a hundred times as much.
  EXPECT_LT(bad, 10 * good);
  RecordProperty("cost of a failing link / of a good one",
                 std::to_string(double(bad) / double(good)));
}

// 8, 140 and 144 bytes that promise the world.
TEST(HostileFile, CostsNeitherTimeNorMemory) {
  const vexa::tests::ScratchDirectory scratch;
  const std::string path = scratch / "hostile.amo";
  const std::vector<std::vector<std::uint32_t>> files = {{101, ~0u},
                                                         {101, 0, ~0u},
                                                         {101, 0, 1, ~0u},
                                                         {101, 1, ~0u, ~0u},
                                                         {101, 1, 100000, 100000},
                                                         {101, 1, 1000, 2000},
                                                         {101, 1, 1, 0x80000000u}};
  UXS::Mesh mesh;
  for (const std::vector<std::uint32_t>& words : files) {
    std::string bytes(8, '\0');
    if (words.size() > 2) bytes.resize(128 + 4 * words.size());
    for (std::size_t i = 0; i < words.size(); ++i) {
      std::memcpy(&bytes[i < 2 ? 4 * i : 128 + 4 * i], &words[i], 4);
    }
    vexa::tests::writeText(path, bytes);
    const std::clock_t start = std::clock();
    const std::size_t before = gMemory.mBytes;
    XCFrameCollector collector(&mesh);
    EXPECT_EQ(vexa::tests::whatOf([&] { XCAMOFileIOTool(path.c_str()).Read(&collector); }),
              "XCAMOFileIOTool : This file is truncated!");
    EXPECT_LT(gMemory.mBytes - before, 16u << 20);
    EXPECT_LT(std::clock() - start, CLOCKS_PER_SEC / 100);
  }
}

}  // namespace
}  // namespace Norvel::Vexa
