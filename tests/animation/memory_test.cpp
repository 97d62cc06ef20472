// What the manager allocates, and what remains when it can not.
#include <gtest/gtest.h>
#include <memory>
#include <string>

#include "refhost/scenes/paths.h"
#include "refhost/scenes/properties.h"
#include "refhost/scenes/walker.h"
#include "scene/fixtures/walker_animation.h"
#include "tests/helpers/captured_stderr.h"
#include "tests/helpers/failing_new.h"
#include "tests/helpers/managed.h"
#include "tests/helpers/registered.h"
#include "tests/helpers/scratch_directory.h"
#include "vexa/framecollector/XCAMOFileIOTool.h"
#include "vexa/framecollector/XCFrameCollector.h"
#include "vexa/paths/XC3DPath.h"

using namespace vexa::refhost;
using vexa::tests::allocationsOf;
using vexa::tests::drive;
using vexa::tests::gMemory;
using vexa::tests::makeManager;
using vexa::tests::registerInstance;
using vexa::tests::throwsAt;

namespace {

std::string writtenWalker(const vexa::tests::ScratchDirectory& scratch) {
  std::string file = scratch / "walker.amo";
  writeAnimationFile(vexa::scene::walkerAnimation(), file);
  return file;
}

long pathBuilds(const UxZel::IZel3DPath& path) {
  return allocationsOf([&] {
    const Norvel::Vexa::XCZELPathInfo info(&path);
    const Norvel::Vexa::XC3DPath built(&info);
  });
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

TEST(Memory, AnOrdinaryPropertyNeedsNoneAndAPositionThatOfItsPath) {
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
  EXPECT_EQ(allocationsOf([&] {
              manager->InterpolateValue(&ride, &ride.mProperties[0], 5, nullptr, nullptr);
            }),
            pathBuilds(ride.mPaths.mElements[0]));
}

TEST(Memory, DrivingNeedsThatOfItsPathAndNoMore) {
  const vexa::tests::ScratchDirectory scratch;
  const std::string file = writtenWalker(scratch);
  const auto manager = makeManager();
  Scene showing = scenes::parade(1), walking = scenes::walk(scenes::windingPath(50), 1, 100);
  registerInstance(*manager, showing, 0, file);
  EXPECT_EQ(allocationsOf([&] { drive(*manager, showing, 0, 7); }), 0);
  const auto walker = makeManager();
  registerInstance(*walker, walking, 0, file);
  EXPECT_EQ(allocationsOf([&] { drive(*walker, walking, 0, 30); }),
            pathBuilds(walking.mPaths.mElements[0]));
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
