// Reading a file and computing a definition while memory runs out: every allocation fails once, and
// every allocation from a certain one on.
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <new>
#include <unistd.h>

#include "assets/AnimationFile.h"
#include "assets/write_file.h"
#include "tests/helpers/compare.h"
#include "vexa/framecollector/XCAMOFileIOTool.h"
#include "vexa/framecollector/XCFrameCollector.h"
#include "vexa/mesh/MeshEditor.h"
#include "vexa/mesh/uxs_autoptr.h"

namespace {

struct {
  long mUntilFailure = -1;  // allocations that still succeed; none fails while it is negative
  bool mOnwards = false;
  bool mFired = false;
  long mBlocks = 0;
  std::size_t mBytes = 0;  // handed out so far
} gMemory;

void* allocate(std::size_t inSize) {
  if (gMemory.mUntilFailure == 0) {
    if (!gMemory.mOnwards) gMemory.mUntilFailure = -1;
    gMemory.mFired = true;
    throw std::bad_alloc();
  }
  if (gMemory.mUntilFailure > 0) --gMemory.mUntilFailure;
  ++gMemory.mBlocks;
  gMemory.mBytes += inSize;
  void* block = std::malloc(inSize + 1);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}
void release(void* inBlock) {
  if (inBlock != nullptr) --gMemory.mBlocks;
  std::free(inBlock);
}

}  // namespace

void* operator new(std::size_t inSize) { return allocate(inSize); }
void* operator new[](std::size_t inSize) { return allocate(inSize); }
void* operator new(std::size_t inSize, const std::nothrow_t&) noexcept try {
  return allocate(inSize);
} catch (const std::bad_alloc&) {
  return nullptr;
}
void operator delete(void* inBlock) noexcept { release(inBlock); }
void operator delete[](void* inBlock) noexcept { release(inBlock); }
void operator delete(void* inBlock, std::size_t) noexcept { release(inBlock); }
void operator delete[](void* inBlock, std::size_t) noexcept { release(inBlock); }

namespace Norvel::Vexa {
namespace {

using vexa::assets::AnimationFile;
using Points = std::vector<Oru::TVector3D<float>>;

constexpr UxZel::CZelUUID kNone{};

// Runs a call that may fail at one allocation, or at all from that one on, and says whether an
// exception came out; mFired tells whether it came to that allocation at all.
template <class Call>
bool throwsAt(long inAllocation, bool inOnwards, Call call) {
  bool thrown = false;
  gMemory.mFired = false;
  gMemory.mOnwards = inOnwards;
  gMemory.mUntilFailure = inAllocation;
  try {
    call();
  } catch (const std::exception&) {
    thrown = true;
  }
  gMemory.mUntilFailure = -1;
  return thrown;
}

// A strip of triangles whose vertices follow two nodes for two frames.
class MemoryRunsOut : public testing::TestWithParam<bool> {
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
  ~MemoryRunsOut() override { std::filesystem::remove(mPath); }

  void read(XCFrameCollector& ioCollector) const {
    XCAMOFileIOTool(CChemin(mPath.c_str())).Read(&ioCollector);
  }
  static Points deformed(XCFrameCollector& ioCollector, unsigned inFrame) {
    return ioCollector.GetCurrentDefinition(0, inFrame, kNone)->GetVerticesArray();
  }

  const std::string mPath = "faults_test." + std::to_string(getpid());
  UXS::uxs_autoptr<UXS::Mesh> mMesh{new UXS::Mesh};
};

TEST_P(MemoryRunsOut, WhileAFileIsRead) {
  long allocation = 0;
  do {
    const long before = gMemory.mBlocks;
    {
      XCFrameCollector collector(mMesh.get());
      const bool thrown = throwsAt(allocation, GetParam(), [&] { read(collector); });
      EXPECT_EQ(thrown, gMemory.mFired) << allocation;
      XCFrameCollector next(mMesh.get());
      read(next);
      EXPECT_EQ(next.GetSize(), 4 * 64u + 2 * (32 + 48) + 12 * 72 + 24 * 28);
    }
    ASSERT_EQ(gMemory.mBlocks, before) << allocation;
  } while (++allocation, gMemory.mFired);
  EXPECT_GT(allocation, 20);
}

TEST_P(MemoryRunsOut, WhileADefinitionIsComputed) {
  long allocation = 0, failures = 0;
  do {
    const long before = gMemory.mBlocks;
    {
      XCFrameCollector collector(mMesh.get());
      read(collector);
      const Points rest = deformed(collector, 0);
      failures +=
          throwsAt(allocation, GetParam(), [&] { collector.GetCurrentDefinition(0, 1, kNone); });
      const Points moved = deformed(collector, 1);
      ASSERT_EQ(moved.size(), 12u);
      for (std::size_t v = 0; v < 12; ++v) EXPECT_EQ(moved[v].x, rest[v].x + 3);
      EXPECT_EQ(collector.GetCurrentDefinition(0, 1, kNone)->GetSectionsCount(), 3u);
    }
    ASSERT_EQ(gMemory.mBlocks, before) << allocation;
  } while (++allocation, gMemory.mFired);
  EXPECT_GT(failures, 10);
}

TEST_P(MemoryRunsOut, WhileALinkOrAMatrixIsAdded) {
  for (long allocation = 0; allocation < 5; ++allocation) {
    XCFrameCollector collector(mMesh.get());
    collector.CreateTake();
    const auto addMatrix = [&] { collector.AddTransformation({}, 0, 0); };
    const auto addLink = [&] { collector.AddLink(0, kNone, 0, 1); };
    collector.AddTransformation({}, 0, -1);
    unsigned matrices = 1;
    double links = 0, sum = 0;
    for (int i = 0; i < 20; ++i) {
      links += !throwsAt(allocation, GetParam(), addLink);
      matrices += !throwsAt(allocation, GetParam(), addMatrix);
      collector.GetVertexTransformation(mMesh->GetVerticesArray().data(), 0, 0, sum);
      EXPECT_EQ(sum, links);
    }
    EXPECT_NO_THROW(collector.GetTransformation(0, matrices - 1, 0));
    EXPECT_THROW(collector.GetTransformation(0, matrices, 0), std::runtime_error);
  }
}

INSTANTIATE_TEST_SUITE_P(AtOneAllocation, MemoryRunsOut, testing::Values(false));
INSTANTIATE_TEST_SUITE_P(FromOneAllocationOn, MemoryRunsOut, testing::Values(true));

// 8, 140 and 144 bytes that promise the world.
TEST(HostileFile, CostsNeitherTimeNorMemory) {
  const std::string path = "hostile_test." + std::to_string(getpid());
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
    vexa::assets::writeFile(path, bytes);
    const auto start = std::chrono::steady_clock::now();
    const std::size_t before = gMemory.mBytes;
    XCFrameCollector collector(&mesh);
    EXPECT_EQ(vexa::tests::whatOf([&] { XCAMOFileIOTool(path.c_str()).Read(&collector); }),
              "XCAMOFileIOTool : This file is truncated!");
    EXPECT_LT(gMemory.mBytes - before, 16u << 20);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(10));
  }
  std::filesystem::remove(path);
}

}  // namespace
}  // namespace Norvel::Vexa
