#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <string>

#include "refhost/scenes/paths.h"
#include "refhost/scenes/walker.h"
#include "scene/fixtures/walker_animation.h"
#include "tests/helpers/captured_stderr.h"
#include "tests/helpers/compare.h"
#include "tests/helpers/managed.h"
#include "tests/helpers/registered.h"
#include "tests/helpers/scratch_directory.h"
#include "vexa/animation/XCAnimationMgr.h"
#include "vexa/mesh/Mesh.h"

using namespace vexa::refhost;
using Norvel::Vexa::XCAnimationMgr;
using scenes::kWalkerFrames;
using scenes::kWalkerStride;
using vexa::tests::drive;
using vexa::tests::registerInstance;
using vexa::tests::sameBits;
using vexa::tests::stderrOf;
using Point = Norvel::Vexa::ux_point3<double>;
using uValue = UxZel::IZelKeyFrame::uValue;

namespace {

/// A scene of walkers whose instances are registered.
struct Stage {
  /// `turn` is the angle from +X to the way that the walkers stride.
  explicit Stage(Scene scene, bool registered = true, double turn = 0) : mScene(std::move(scene)) {
    const vexa::tests::ScratchDirectory scratch;
    const std::string file = scratch / "walker.amo";
    vexa::formats::AnimationFile animation = vexa::scene::walkerAnimation();
    const double c = std::cos(turn), s = std::sin(turn);
    animation.mGlobal = {c, 0, s, 0, -s, 0, c, 0, 0, 1, 0, 0, 0, 0, 0, 1};
    writeAnimationFile(animation, file);
    for (std::size_t i = 0; registered && i < mScene.mInstances.mElements.size(); ++i) {
      registerInstance(mManager, mScene, i, file);
    }
  }
  Instance& walker(std::size_t i = 0) { return mScene.mInstances.mElements[i]; }
  Take& take() { return mScene.mDefinitions[0].mAnimatedObject->mTakes.mElements[0]; }
  uValue driven(int frame, std::size_t property = 0) {
    return drive(mManager, mScene, property, frame);
  }
  /// A vertex of the walker in the world, as the instance is placed and shows a take frame.
  Point vertexAt(unsigned int vertex, int takeFrame, UxZel::IZelMgr* scene = nullptr) {
    const auto& mesh = *mManager.GetCurrentDefinition(0, unsigned(takeFrame), numberedUUID(101));
    const Oru::TVector3D<float>& v = mesh.GetVerticesArray()[vertex];
    return mManager.GetLocal2WorldMatrix(scene != nullptr ? scene : &mScene, &walker()) *
           Point(double(v.x), double(v.y), double(v.z));
  }

  XCAnimationMgr mManager;
  Scene mScene;
};

double horizontalDistance(const Point& a, const Point& b) {
  return std::hypot(a.x - b.x, a.y - b.y);
}

/// The fault that ManageAnimatedObjectInstance names for frame 30.
std::string faultOf(Stage& stage) {
  uValue result;
  const std::string text = stderrOf([&] { result = stage.driven(30); });
  EXPECT_TRUE(sameBits(result, uValue{}));
  return vexa::tests::caughtText(text, "XCAnimationMgr::ManageAnimatedObjectInstance");
}

}  // namespace

// Two walkers of one object, the second five frames ahead; the take of 25 frames starts anew.
TEST(Driving, ShowsTheTakeFrame) {
  Stage stage(scenes::parade(2));
  EXPECT_EQ(stage.driven(7).mInteger, 7);
  EXPECT_EQ(stage.driven(22, 1).mInteger, 2);
  EXPECT_EQ(stage.walker(0).mState.mCurrentFrame, 7);
  EXPECT_EQ(stage.walker(1).mState.mCurrentFrame, 2);
  stage.take().mFrameRate = 50;  // half as long, stretched over the same 25 host frames
  EXPECT_EQ(stage.driven(10).mInteger, 8) << "10 of 25 is 4 of 12, at 2 take frames each";
  Property& value = stage.mScene.mProperties[0];
  value.mRepeatCount = 2;
  EXPECT_EQ(stage.driven(60).mInteger, 6);
  value.mRepeatCount = 1;
  EXPECT_EQ(stage.driven(60).mInteger, kWalkerFrames - 1) << "repeats used up: the second key's";
  value.mRepeatCount = 1000;
  value.mCyclic = false;
  EXPECT_EQ(stage.driven(60).mInteger, kWalkerFrames - 1) << "not cyclic: the second key's";
  value.mKeys.mElements[0] = integerKey(100, 3);
  EXPECT_EQ(stage.driven(99).mInteger, 3) << "before the first key";
}

namespace {

/// The scene of a stage whose list has another instance first at every look, so that each is found.
struct AllFound final : UxZel::IZelMgr, UxZel::TZelObjectMgr<UxZel::IZelObjectInstance> {
  explicit AllFound(const Scene& scene) : mScene(scene) {}

  UxZel::TZelObjectMgr<UxZel::IZelObjectInstance>* GetObjectInstances() const override {
    return const_cast<AllFound*>(this);
  }
  UxZel::TZelObjectMgr<UxZel::IZelSettings>* GetSettingsList() const override {
    return mScene.GetSettingsList();
  }
  UxZel::TZelObjectMgr<UxZel::IZel3DPath>* Get3DPaths() const override {
    return mScene.Get3DPaths();
  }
  int GetCount() const override { return mScene.mInstances.GetCount(); }
  void RemoveAt(unsigned int) override {}
  UxZel::IZelObjectInstance* GetAt(int) const override {
    return mScene.mInstances.GetAt(mNext++ % GetCount());
  }
  void InsertAt(unsigned int) override {}

  const Scene& mScene;
  mutable int mNext = 0;
};

}  // namespace

// A walker on a deck of a ship on a sea: whatever moves, turns and scales, its anchor vertex stands
// on the path of the world. Rotation, direction and height are those of a walker without parents.
TEST(Walking, TheAnchorStaysOnThePathInsideParents) {
  Stage alone(scenes::walk(scenes::circlePath(10), 1, 1000), true, 0.4);
  Stage stage(scenes::walk(scenes::circlePath(10), 4, 1000), true, 0.4);
  AllFound scene(stage.mScene);
  for (Stage* each : {&alone, &stage}) {
    each->take().mElevation = 0.25;
    each->walker().mScale[1] = 1.5;
  }
  Instance &deck = stage.walker(1), &ship = stage.walker(2), &sea = stage.walker(3);
  deck.mPosition = {3, -2, 4};
  deck.mScale[0] = deck.mScale[1] = 2;
  ship.mPosition = {100, 50, 7};
  ship.mRotation = 1;
  ship.mDirection = {1, 2, 0};
  sea.mPosition = {-20, 0, 0};
  sea.mScale[0] = -3, sea.mScale[1] = 0.5;  // mirrored, and not alike along x and y
  for (std::uint32_t depth = 0; depth < 4; ++depth) {
    if (depth > 0) stage.walker(depth - 1).mParent = numberedUUID(101 + depth);
    for (const int frame : {0, 7, 30, 180}) {
      const int shown = alone.driven(frame).mInteger;
      stage.mManager.ManageAnimatedObjectInstance(&scene, &stage.walker(),
                                                  &stage.mScene.mDefinitions[0],
                                                  &stage.mScene.mProperties[0], frame, nullptr);
      const Point wanted = alone.vertexAt(0, shown), v = stage.vertexAt(0, shown, &scene);
      EXPECT_LT(horizontalDistance(v, wanted), 1e-11) << depth << " parents, frame " << frame;
      const UxZel::CZelPoint& a = stage.walker().mAnchor;
      const Point parent = depth == 0
                               ? Point(a.x, a.y, a.z)
                               : stage.mManager.GetLocal2WorldMatrix(&scene, &stage.walker(1)) *
                                     Point(a.x, a.y, a.z);
      EXPECT_LT(horizontalDistance(parent, wanted), 1e-11);
      EXPECT_EQ(stage.walker().mPosition.z, 0.25);
      EXPECT_EQ(stage.walker().mRotation, alone.walker().mRotation);
      EXPECT_TRUE(sameBits(stage.walker().mDirection, alone.walker().mDirection));
    }
  }
}

// Each parent scales what is in it by the mean of its factors, without their signs: 3, then 2.
TEST(Walking, ParentsScaleByTheMeanOfTheirFactors) {
  Scene scene = scenes::walk(scenes::straightPath(1), 3, 100);
  const auto scaled = [&](std::size_t i, double x, double y, double z) {
    double* const scale = scene.mInstances.mElements[i].mScale;
    scale[0] = x, scale[1] = y, scale[2] = z;
    scene.mInstances.mElements[i].mParent = numberedUUID(i < 2 ? std::uint32_t(102 + i) : 0);
  };
  scaled(0, 1, 1, 1);
  scaled(1, 2, -5, 2);
  scaled(2, 1, 1, 4);
  AllFound all(scene);
  const Point top =
      XCAnimationMgr().GetLocal2WorldMatrix(&all, scene.mInstances.GetAt(0)) * Point(0, 0, 1);
  EXPECT_EQ(top.z, 4 * (2 * 2) * (1 * 2 * 3));
}

// A foot that moves by 1e-22: the square of that loses digits, and the quotient would pass 1. Where
// a control point lies on its end, the path has no direction.
TEST(Walking, TinyWaysHaveADirectionAndNoneHasZero) {
  Scene scene = scenes::walk(scenes::straightPath(30), 1, 1000);
  scene.mPaths.mElements[0].mPoints.mElements[0].mAfter = {};
  AnimatedObject& object = *scene.mDefinitions[0].mAnimatedObject;
  object.mPoints.mElements.assign(1, {});
  object.mPolygons.mElements.clear();
  object.mAnchorVertex = 0;
  object.mTakes.mElements[0].mFrameCount = 2;
  vexa::formats::AnimationFile file;
  file.mFrameCounts = {2};
  file.mNodes.resize(1);
  file.mNodes[0].mMatrices.assign(2, file.kIdentity);
  file.mNodes[0].mMatrices[1][12] = 1e-22;
  file.mNodes[0].mLinks = {{0, 1}};
  const vexa::tests::ScratchDirectory scratch;
  writeAnimationFile(file, scratch / "tiny.amo");
  XCAnimationMgr manager;
  registerInstance(manager, scene, 0, scratch / "tiny.amo");
  UxZel::CZelVector direction{7, 8, 9};
  drive(manager, scene, 0, 0, &direction);
  const Instance& walker = scene.mInstances.mElements[0];
  EXPECT_EQ(walker.mRotation, 1.5707963705062866);
  EXPECT_TRUE(sameBits(walker.mDirection, UxZel::CZelVector{0, 0, 0}));
}

// Neither scale nor height moves the anchor off the path.
TEST(Walking, HeightAndScale) {
  Stage stage(scenes::walk(scenes::straightPath(30), 1, 1000));
  stage.mScene.mDefinitions[0].mSizes.mElevation = 2;
  for (double& factor : stage.walker().mScale) factor = 2;
  stage.driven(24);
  EXPECT_NEAR(horizontalDistance(stage.vertexAt(0, 24), {kWalkerStride, 0, 0}), 0, 1e-5);
  const Instance& walker = stage.walker();
  EXPECT_EQ(walker.mPosition.z, 2) << "the take has no height: the definition's";
  EXPECT_NEAR(walker.mAnchor.x, kWalkerStride, 1e-5);
  EXPECT_EQ(walker.mAnchor.z, 2);
  EXPECT_EQ(walker.mRotation, 1.5707963705062866) << "+X to +Y";
  EXPECT_EQ(stage.driven(100000).mInteger, stage.driven(1000).mInteger) << "ends at the second key";
  EXPECT_NEAR(walker.mAnchor.x, 30, 1e-5) << "and at the end of the path";
}

TEST(Driving, EveryFaultGivesZeroAndALine) {
  const auto keys = [](Stage & s) -> auto& { return s.mScene.mProperties[0].mKeys.mElements; };
  const std::string selection = "XCAnimationMgr::GetAnimatedObjectFrame : ";
  const struct {
    std::string mText;
    std::function<void(Stage&)> mDamage;
  } cases[] = {
      {selection + "frame rate is zero", [](Stage& s) { s.take().mFrameRate = 0; }},
      {selection + "take without frames", [](Stage& s) { s.take().mFrameCount = 0; }},
      {selection + "time scale is zero",
       [](Stage& s) { s.mScene.mSettings.mElements[0].mTimeScale = 0; }},
      {selection + "list of settings is empty",
       [](Stage& s) { s.mScene.mSettings.mElements.clear(); }},
      {selection + "bad take index", [](Stage& s) { s.walker().mState.mTakeIndex = 1; }},
      {selection + "bad take index", [](Stage& s) { s.walker().mState.mTakeIndex = 0xFFFFFFFF; }},
      {selection + "second key frame is missing", [&](Stage& s) { keys(s).pop_back(); }},
      {selection + "first two key frames are equal", [&](Stage& s) { keys(s)[1].mFrame = 0; }},
      {"XCAnimationMgr::ManageAnimatedObjectInstance : bad anchor vertex",
       [](Stage& s) { s.mScene.mDefinitions[0].mAnimatedObject->mAnchorVertex = 24; }},
      {"XC3DPath::XC3DPath - probleme path ! ",
       [](Stage& s) { s.mScene.mPaths.mElements.clear(); }},
  };
  for (const auto& c : cases) {
    Stage stage(scenes::walk(scenes::straightPath(30), 1, 1000));
    stage.walker().mState.mStartOffset = -1;
    c.mDamage(stage);
    EXPECT_EQ(faultOf(stage), c.mText);
  }
}

TEST(Driving, WithoutAnimatedObjectTheFirstKeyHolds) {
  for (const unsigned int kind : {135u, 136u}) {
    Stage stage(scenes::parade(1), false);
    Property& property = stage.mScene.mProperties[0];
    property.mPropertyType = kind;
    property.mKeys.mElements = {integerKey(0, 5)};
    stage.mScene.mDefinitions[0].mAnimatedObject.reset();
    EXPECT_EQ(stage.driven(30).mInteger, 5);
    stage.walker().mDefinition = kNone;
    EXPECT_EQ(stage.driven(30).mInteger, 5);
  }
}
