#include <gtest/gtest.h>
#include <pthread.h>
#include <string>
#include <thread>

#include "refhost/scenes/paths.h"
#include "refhost/scenes/properties.h"
#include "tests/helpers/captured_stderr.h"
#include "tests/helpers/compare.h"
#include "tests/helpers/managed.h"
#include "vexa/animation/XCAnimationMgr.h"

using namespace vexa::refhost;
using Norvel::Vexa::XIAnimationMgr;
using UxZel::CZelVector;
using uValue = UxZel::IZelKeyFrame::uValue;
using vexa::tests::makeManager;
using vexa::tests::sameBits;
using vexa::tests::stderrOf;

namespace {

struct Asked {
  uValue mValue;
  std::string mErrors;
};

Asked ask(Scene& scene, const Property& property, int frame, CZelVector* direction = nullptr,
          double* rate = nullptr) {
  Asked asked;
  const auto manager = makeManager();
  asked.mErrors = stderrOf(
      [&] { asked.mValue = manager->InterpolateValue(&scene, &property, frame, direction, rate); });
  return asked;
}

/// The fault that an all-zero value was given for.
std::string faultOf(const Asked& asked) {
  EXPECT_TRUE(sameBits(asked.mValue, uValue{}));
  const std::string own = "XCAnimationMgr::InterpolateValue";
  const std::string text = vexa::tests::caughtText(asked.mErrors, own);
  return text.rfind(own + " : ", 0) == 0 ? text.substr(own.size() + 3) : text;
}

}  // namespace

TEST(AnimationMgr, KnowsNothingAtFirstAndForgivesNull) {
  const auto manager = makeManager();
  const Oru::TVector3D<float> point{1, 2, 3}, zero{};
  EXPECT_EQ(manager->GetCurrentDefinition(0, 0, numberedUUID(1)), nullptr);
  EXPECT_EQ(manager->TransformPoint(&point, 0, 0, numberedUUID(1)), zero);
  EXPECT_EQ(manager->TransformPoint(3u, 0, 0, numberedUUID(1)), zero);
  XIAnimationMgr::Destroy(nullptr);
}

/// A key that ends the thread which asks for its value.
struct FinalKey final : UxZel::IZelKeyFrame {
  int mFrame = 0;
  unsigned int GetValueType() const override { return UxZel::kValueReal; }
  const uValue* GetValue() const override { pthread_exit(nullptr); }
  int GetFrame() const override { return mFrame; }
  int GetInterpolationType() const override { return 0; }
};
struct FinalValue final : UxZel::IZelInterpolatedValue {
  List<UxZel::IZelKeyFrame, FinalKey> mKeys;
  bool mIsWhole = true;
  unsigned int GetPropertyType() const override { return 0; }
  const UxZel::TZelObjectMgr<UxZel::IZelKeyFrame>* GetKeyFrames() const override { return &mKeys; }
  bool IsCyclic() const override { return mIsWhole ? false : throw 42; }
  int GetRepeatCount() const override { return 0; }
  const UxZel::CZelUUID* GetPathUUID() const override { return nullptr; }
};

// The end of a thread unwinds, too: were it caught, the process would end.
TEST(AnimationMgr, LetsTheEndOfAThreadPass) {
  bool returned = false;
  std::thread([&] {
    FinalValue value;
    value.mKeys.add();
    value.mKeys.add().mFrame = 10;
    makeManager()->InterpolateValue(nullptr, &value, 5, nullptr, nullptr);
    returned = true;
  }).join();
  EXPECT_FALSE(returned);
}

TEST(AnimationMgr, CatchesWhatIsNoException) {
  FinalValue value;
  value.mKeys.add();
  value.mIsWhole = false;
  EXPECT_EQ(
      stderrOf([&] { makeManager()->InterpolateValue(nullptr, &value, 5, nullptr, nullptr); }),
      "XCAnimationMgr::InterpolateValue - Caught an exception\n");
}

TEST(InterpolateValue, TheLastKeyHoldsAndTheRestIsZero) {
  Scene lamp = scenes::lamp();
  EXPECT_TRUE(sameBits(ask(lamp, lamp.mProperties[0], 1000).mValue, realKey(0, 1).mValue));
}

TEST(InterpolateValue, EveryFaultGivesZeroAndALine) {
  Scene scene;
  Property property;
  EXPECT_EQ(faultOf(ask(scene, property, 0)), "list of keyframes is empty");
  EXPECT_EQ(faultOf(ask(scene, property, -1)), "list of keyframes is empty") << "looked at first";
  property.mKeys.add(realKey(-1, 5));
  EXPECT_EQ(faultOf(ask(scene, property, -1)), "given frame number is negative");
  EXPECT_EQ(faultOf(ask(scene, property, 0)), "bad min index");
  property.mKeys.add(realKey(3, 0.5));
  property.mPropertyType = UxZel::kPropertyPosition;
  property.mPath = numberedUUID(7);
  scene.mPaths.add(scenes::straightPath(1)).mIdentity.mUUID = numberedUUID(8);
  EXPECT_EQ(faultOf(ask(scene, property, 3)),
            "key frame of position, but the path doesn't exists !");
}

TEST(InterpolateValue, FollowsThePathOfItsName) {
  Scene scene = scenes::ride(scenes::straightPath(30));
  const Property& place = scene.mProperties[0];
  scene.mPaths.add(scenes::straightPath(300)).mIdentity.mUUID = numberedUUID(1);  // not the first
  CZelVector direction{9, 9, 9};
  for (const unsigned int kind : {1u, 38u, 59u}) {
    scene.mProperties[0].mPropertyType = kind;
    EXPECT_NEAR(ask(scene, place, 50, &direction).mValue.mVector[0], 15, 1e-5);
    EXPECT_NEAR(direction.x, 30, 1e-4);
  }
  double rate = 3;
  EXPECT_NEAR(ask(scene, place, 50, &direction, &rate).mValue.mVector[0], 15, 1e-5);
  EXPECT_NEAR(direction.x, 3, 1e-5) << "the chord to the place 3 units on";
  scene.mPaths.mElements[0].mHasPointList = false;
  direction = {9, 9, 9};
  EXPECT_EQ(faultOf(ask(scene, place, 50, &direction)), "XC3DPath::XC3DPath - probleme path ! ");
  EXPECT_EQ(direction.x, 9) << "untouched on failure";
}

// Three passes from 0 to 10: the first as the keys say, later frames one behind. An eased one
// starts square, goes on linear and ends one-minus-square.
TEST(InterpolateValue, FoldsCyclesOneFrameBehind) {
  Scene scene = scenes::lamp();
  Property& pulse = scene.mProperties[5];
  const auto at = [&](int frame) { return ask(scene, pulse, frame).mValue.mReal; };
  EXPECT_EQ(at(10), 1);
  EXPECT_EQ(at(15), 0.4);
  EXPECT_EQ(at(20), 0) << "folds to -1, before the first key";
  EXPECT_EQ(at(31), 1) << "past the last pass";
  pulse.mKeys.mElements[0].mInterpolationType = UxZel::kInterpolationSinus;
  const double square = 0.0954915;  // a fifth of the way in
  EXPECT_NEAR(at(2), square, 1e-7);
  EXPECT_EQ(at(13), 0.2);
  EXPECT_NEAR(at(29), 1 - square, 1e-7);
}

// A cyclic date is computed by its own curve in the first pass and by a line in the later ones: as
// an integer it stays until the second key, and it has no more than 4 bytes.
TEST(InterpolateValue, LaterPassesOfADateAreLinear) {
  Scene scene;
  Property date;
  date.mKeys.mElements = {dateKey(0, -100), dateKey(10, -201)};
  date.mCyclic = true;
  date.mRepeatCount = 3;
  EXPECT_EQ(ask(scene, date, 6).mValue.mDate, -140) << "from the earlier to the later";
  EXPECT_EQ(ask(scene, date, 17).mValue.mDate, 4294967196) << "the low half of -100";
}

TEST(KeyFrameRange, TwoNeighboursOfMany) {
  const Norvel::Vexa::XCAnimationMgr manager;
  const Property keys = scenes::manyKeys(600);
  for (const int frame : {15, 2555, 2565, 5985}) {
    int low = -1, high = -1;
    manager.GetKeyFrameRange(frame, low, high, &keys.mKeys);
    EXPECT_EQ(low, frame / 10);
    EXPECT_EQ(high, low + 1);
  }
}

TEST(InterpolateValue, FrameNumbersFromARate) {
  Scene scene;
  Property frames;
  frames.mPropertyType = UxZel::kPropertyAnimatedFrameRate;
  frames.mKeys.mElements = {integerKey(100, 0), integerKey(200, 0)};
  double rate = 40;
  const auto at = [&](int frame) { return ask(scene, frames, frame, nullptr, &rate); };
  EXPECT_EQ(at(150).mValue.mInteger, 20) << "the object's 40 frames play once in 100 host frames";
  frames.mCyclic = true;
  frames.mRepeatCount = 2;
  EXPECT_EQ(at(200).mValue.mInteger, 40) << "not more than there are";
  rate = 0.5;
  EXPECT_EQ(faultOf(at(320)), "rate is less than one frame");
  scene.mSettings.mElements.clear();
  EXPECT_EQ(faultOf(at(320)), "list of settings is empty");
  frames.mKeys.mElements.resize(1);
  EXPECT_EQ(faultOf(at(320)), "second key frame is missing");
}
