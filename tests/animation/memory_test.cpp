// What the manager allocates, and what remains when it can not.
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "refhost/scenes/paths.h"
#include "refhost/scenes/properties.h"
#include "refhost/scenes/walker.h"
#include "scene/fixtures/walker_animation.h"
#include "tests/helpers/captured_stderr.h"
#include "tests/helpers/compare.h"
#include "tests/helpers/failing_new.h"
#include "tests/helpers/managed.h"
#include "tests/helpers/registered.h"
#include "tests/helpers/scratch_directory.h"
#include "vexa/framecollector/XCAMOFileIOTool.h"
#include "vexa/framecollector/XCFrameCollector.h"

using namespace vexa::refhost;
using vexa::tests::allocationsOf;
using vexa::tests::drive;
using vexa::tests::gMemory;
using vexa::tests::makeManager;
using vexa::tests::registerInstance;
using vexa::tests::throwsAt;
using uValue = UxZel::IZelKeyFrame::uValue;

namespace {

std::string writtenWalker(const vexa::tests::ScratchDirectory& scratch) {
  std::string file = scratch / "walker.amo";
  writeAnimationFile(vexa::scene::walkerAnimation(), file);
  return file;
}

}  // namespace

TEST(Memory, CreateGivesNullWithoutAny) {
  Norvel::Vexa::XIAnimationMgr* manager = nullptr;
  const std::string text = vexa::tests::stderrOf([&] {
    EXPECT_FALSE(throwsAt(0, false, [&] { manager = Norvel::Vexa::XIAnimationMgr::Create(); }));
  });
  EXPECT_EQ(manager, nullptr);
  EXPECT_EQ(text, "XIAnimationMgr::Create - Caught an exception \"std::bad_alloc\"\n");
}

TEST(Memory, APropertyNeedsNoneOncePathsAreBuilt) {
  const auto manager = makeManager();
  Scene lamp = scenes::lamp();
  EXPECT_EQ(allocationsOf([&] {
              for (const Property& property : lamp.mProperties) {
                for (int frame = 0; frame < 100; ++frame) {
                  manager->InterpolateValue(&lamp, &property, frame, nullptr, nullptr);
                }
              }
            }),
            0);
  Scene ride = scenes::ride(scenes::windingPath(50));
  const auto ask = [&] {
    return manager->InterpolateValue(&ride, &ride.mProperties[0], 5, nullptr, nullptr);
  };
  EXPECT_GT(allocationsOf(ask), 0);
  EXPECT_EQ(allocationsOf(ask), 0);
  ride.mPaths.mElements[0].mPoints.mElements[3].mPassage.y += 1;
  EXPECT_GT(allocationsOf(ask), 0);
}

// Where memory runs out for a path, the request fails and the next one succeeds.
TEST(Memory, APathThatCannotBeBuiltIsBuiltByTheNextRequest) {
  Scene ride = scenes::ride(scenes::windingPath(5));
  uValue value;
  const auto manager = makeManager();
  for (long allocation = 0; allocation < 20; ++allocation) {
    ride.mPaths.mElements[0].mPoints.mElements[3].mPassage.y += 1;
    const auto fresh = makeManager();
    for (auto* asked : {manager.get(), fresh.get()}) {
      const auto ask = [&] {
        value = asked->InterpolateValue(&ride, &ride.mProperties[0], 5, nullptr, nullptr);
      };
      vexa::tests::stderrOf([&] { throwsAt(allocation, false, ask); });
      EXPECT_EQ(gMemory.mFired, vexa::tests::sameBits(value, uValue{})) << allocation;
      ask();
      EXPECT_FALSE(vexa::tests::sameBits(value, uValue{}));
    }
  }
}

TEST(Memory, OfManyPathsTheOldestAreForgotten) {
  const auto manager = makeManager();
  const long before = gMemory.mBlocks;
  std::vector<Scene> scenes;
  for (int i = 0; i < 1000; ++i) scenes.push_back(scenes::ride(scenes::windingPath(2)));
  const long ofScenes = gMemory.mBlocks - before;
  for (Scene& each : scenes) {
    manager->InterpolateValue(&each, &each.mProperties[0], 5, nullptr, nullptr);
  }
  EXPECT_LT(gMemory.mBlocks - before - ofScenes, 256 * 7);
  EXPECT_EQ(allocationsOf([&] {
              manager->InterpolateValue(&scenes[800], &scenes[800].mProperties[0], 5, nullptr,
                                        nullptr);
            }),
            0);
}

TEST(Memory, ARegisteredInstanceOfASharedObjectTakesLittle) {
  const vexa::tests::ScratchDirectory scratch;
  const std::string file = writtenWalker(scratch);
  Scene crowd = scenes::walk(scenes::straightPath(30), 1001, 100);
  const auto manager = makeManager();
  registerInstance(*manager, crowd, 0, file);
  const std::size_t before = gMemory.mBytes;
  for (std::size_t i = 1; i <= 1000; ++i) registerInstance(*manager, crowd, i, file);
  EXPECT_LT(gMemory.mBytes - before, 200u * 1000);
}

TEST(Memory, DrivingNeedsThatOfItsPath) {
  const vexa::tests::ScratchDirectory scratch;
  const std::string file = writtenWalker(scratch);
  const auto manager = makeManager();
  Scene showing = scenes::parade(1), walking = scenes::walk(scenes::windingPath(50), 1, 100);
  registerInstance(*manager, showing, 0, file);
  EXPECT_EQ(allocationsOf([&] { drive(*manager, showing, 0, 7); }), 0);
  const auto walker = makeManager();
  registerInstance(*walker, walking, 0, file);
  EXPECT_GT(allocationsOf([&] { drive(*walker, walking, 0, 30); }), 0);
  EXPECT_EQ(allocationsOf([&] { drive(*walker, walking, 0, 30); }), 0);
  EXPECT_EQ(walking.mInstances.mElements[0].mState.mStartOffset, 0);
}

// Every allocation from the opening of the file on fails once; before that the mesh is committed,
// which ends the program without memory. Nothing is known after that, nothing leaks, and the next
// try works.
TEST(Memory, RegistrationFailsWithoutATrace) {
  const vexa::tests::ScratchDirectory scratch;
  const std::string file = writtenWalker(scratch);
  Scene scene = scenes::walk(scenes::straightPath(30), 2, 100);
  const UxZel::CZelUUID id = numberedUUID(101);
  auto manager = makeManager();
  const long whole = allocationsOf([&] { registerInstance(*manager, scene, 0, file); });
  UXS::Mesh* mesh = manager->GetCurrentDefinition(0, 0, id);
  const long reading = allocationsOf([&] {
    Norvel::Vexa::XCFrameCollector collector(mesh);
    Norvel::XCAMOFileIOTool(file.c_str()).Read(&collector);
  });
  for (long allocation = whole - reading; allocation < whole; ++allocation) {
    manager = makeManager();
    const long before = gMemory.mBlocks;
    ASSERT_TRUE(throwsAt(allocation, false, [&] { registerInstance(*manager, scene, 0, file); }));
    ASSERT_EQ(gMemory.mBlocks, before) << allocation;
    EXPECT_EQ(manager->GetCurrentDefinition(0, 0, id), nullptr);
    registerInstance(*manager, scene, 0, file);
    EXPECT_NE(manager->GetCurrentDefinition(0, 0, id), nullptr) << allocation;
  }
  EXPECT_GT(reading, 20);
}
