#include "importer/model_reader.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <thread>

#include "importer/model_bytes_internal.h"
#include "importer/unread_animation.h"
#include "tests/helpers/compare.h"
#include "tests/helpers/scratch_directory.h"
#include "tests/importer/small_models.h"

namespace vexa::tests {
namespace {

using importer::ChildLimits;
using importer::runInChild;
using namespace std::chrono_literals;

std::string outcome(const std::function<std::string()>& work, const ChildLimits& limits = {}) {
  return whatOf([&] { runInChild(work, limits); });
}

TEST(ChildProcess, ItsResultOrItsEndArriveAndItLeavesNothingBehind) {
  const std::string large(3'000'000, 'x');
  EXPECT_EQ(runInChild([&] { return large; }), large);
  EXPECT_EQ(runInChild([] { return std::string(); }), "");
  EXPECT_EQ(outcome([]() -> std::string { throw std::runtime_error("a\n  b\t"); }), "a b");
  EXPECT_EQ(outcome([]() -> std::string { throw 1; }), "unknown exception");
  EXPECT_EQ(outcome([]() -> std::string { std::abort(); }), "it was ended by signal 6 (Aborted)");
  EXPECT_EQ(outcome([]() -> std::string { _exit(3); }),
            "it ended without a result (exit status 3)");
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
  EXPECT_EQ(errno, ECHILD);
}

// The child is a copy of this process at a moment when other threads allocate.
TEST(ChildProcess, ItWorksBesideBusyThreads) {
  std::atomic<bool> isOver{false};
  std::vector<std::thread> threads;
  const std::size_t wanted = importer::packModel(arm()).size();
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      while (!isOver) EXPECT_EQ(importer::packModel(arm()).size(), wanted);
    });
  }
  for (int round = 0; round < 20; ++round) {
    EXPECT_EQ(runInChild([] { return importer::packModel(arm()); }).size(), wanted);
  }
  isOver = true;
  for (std::thread& thread : threads) thread.join();
}

TEST(ChildProcess, ItsLimitsHold) {
  ChildLimits limits;
  limits.mWallTime = 100ms;
  const auto sleep = []() -> std::string {
    std::this_thread::sleep_for(1h);
    return {};
  };
  EXPECT_EQ(outcome(sleep, limits), "it took longer than 100 ms");
  limits.mWallTime = 20s;
  limits.mCpuSeconds = 1;
  const auto spin = []() -> std::string {
    for (volatile unsigned i = 0;; i = i + 1) {
    }
  };
  EXPECT_EQ(outcome(spin, limits), "it took more than 1 s of processor time");
  limits.mMemoryBytes = 64 << 20;
  const std::string what = outcome([] { return std::string(std::size_t{200} << 20, 'x'); }, limits);
  // The address sanitizer ends the process instead.
  EXPECT_TRUE(what == "not enough memory" || what.rfind("it ended without a result", 0) == 0);
  limits.mResultBytes = 10;
  EXPECT_EQ(outcome([] { return std::string(11, 'x'); }, limits),
            "its result is larger than 10 bytes");
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
}

// Whatever the child sends, the parent survives it.
TEST(ModelBytes, OnlyWholeUndamagedBytesMakeAModel) {
  const std::string bytes = importer::packModel(arm());
  EXPECT_EQ(importer::packModel(importer::unpackModel(bytes)), bytes);
  for (std::size_t length = 0; length < bytes.size(); ++length) {
    EXPECT_THROW(importer::unpackModel(bytes.substr(0, length)), std::runtime_error);
  }
  EXPECT_THROW(importer::unpackModel(bytes + 'x'), std::runtime_error);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    std::string damaged = bytes;
    damaged[i] = '\x7f';
    try {
      importer::importModel(importer::unpackModel(damaged));
    } catch (const std::runtime_error&) {
    }
  }
}

std::string writeModel(const std::string& name, const std::string& text) {
  const std::string file = testing::TempDir() + name;
  std::ofstream(file, std::ios::binary) << text;
  return file;
}

// A skinned model as text: a triangle on two bones, the second one turning about Z.
const char kTriangle[] =
    "version 1\nnodes\n0 \"hip\" -1\n1 \"leg\" 0\nend\nskeleton\n"
    "time 0\n0 0 0 0 0 0 0\n1 0 0 2 0 0 0\ntime 6\n1 0 0 2 0 0 1.5707963\nend\ntriangles\nskin\n"
    "0 0 0 0 0 0 1 0 0 1 0 1\n0 1 0 2 0 0 1 0 0 1 1 1\n0 0 1 2 0 0 1 0 0 1 1 1\nend\n";

TEST(ModelReader, AnSmdFileStandsUprightAndMoves) {
  const importer::ImportedModel model =
      importer::importModel(writeModel("triangle.smd", kTriangle));
  ASSERT_EQ(model.mMesh.points.size(), 3u);
  EXPECT_EQ(model.mMesh.points[1].z, 2);
  ASSERT_EQ(model.mTakes.size(), 1u);
  EXPECT_EQ(model.mTakes[0].mFrameCount, 8);
  EXPECT_NEAR(model.mReference.pose(0, 7)[1].y, 1, 0.05);
  EXPECT_LT(checkThroughFile(model).mLargestDifference, 1e-6);
}

TEST(ModelReader, EveryFaultIsOneLine) {
  EXPECT_EQ(whatOf([] { importer::readModel("/nowhere/x.smd"); }), "No such file or directory");
  EXPECT_EQ(whatOf([] { importer::readModel("/dev/null"); }), "is not a regular file");
  EXPECT_EQ(whatOf([] { importer::readModel(testing::TempDir()); }), "is a directory");
  EXPECT_EQ(whatOf([] { importer::readModel(writeModel("empty.fbx", "")); }), "is empty");
  // Some of these keep the reader busy for ever.
  ChildLimits limits;
  limits.mWallTime = 300ms;
  const std::string text = kTriangle;
  for (std::size_t length = 1; length < text.size(); length += 23) {
    const std::string file = writeModel("cut.smd", text.substr(0, length));
    EXPECT_EQ(whatOf([&] { importer::readModel(file, limits); }).find('\n'), std::string::npos);
  }
  for (const char* name :
       {"a.fbx", "a.gltf", "a.glb", "a.dae", "a.x", "a.mdl", "a.bvh", "a.vexa"}) {
    const std::string file = writeModel(name, "\x7f\0 nonsense {\n[ 1e999 -1");
    const std::string what = whatOf([&] { importer::readModel(file); });
    EXPECT_EQ(what.rfind("the model cannot be read: ", 0), 0u) << name << ": " << what;
    EXPECT_EQ(what.find('\n'), std::string::npos);
  }
}

TEST(UnreadAnimation, AFileOfSeveralFramesIsNamed) {
  const ScratchDirectory folder;
  const auto reasonOf = [&](const std::string& start, std::size_t framesAt, char frames) {
    std::string bytes = start + std::string(100 - start.size(), '\0');
    bytes[framesAt] = frames;
    writeText(folder / "model", bytes);
    return importer::unreadAnimation((folder / "model").string());
  };
  EXPECT_EQ(reasonOf("IDP2", 40, 8), "it has vertex animation, not supported");
  EXPECT_EQ(reasonOf("IDP2", 40, 1), "");
  EXPECT_EQ(reasonOf("IDP3", 76, 2), "it has vertex animation, not supported");
  EXPECT_EQ(reasonOf("IDST", 40, 8), "");
}

}  // namespace
}  // namespace vexa::tests
