#include <gtest/gtest.h>
#include <limits>
#include <pthread.h>
#include <rapidcheck/gtest.h>
#include <string>
#include <thread>
#include <vector>

#include "refhost/scenes/paths.h"
#include "refhost/scenes/properties.h"
#include "tests/helpers/captured_stderr.h"
#include "tests/helpers/compare.h"
#include "tests/helpers/managed.h"
#include "tests/helpers/raw_bits.h"
#include "tests/helpers/vtable_slot.h"
#include "vexa/animation/XCAnimationMgr.h"

using namespace vexa::refhost;
using Norvel::Vexa::XCAnimationMgr;
using Norvel::Vexa::XIAnimationMgr;
using UxZel::CZelVector;
using uValue = UxZel::IZelKeyFrame::uValue;
using vexa::tests::makeManager;
using vexa::tests::sameBits;
using vexa::tests::stderrOf;

namespace {

constexpr int kIntMax = std::numeric_limits<int>::max();
constexpr int kIntMin = std::numeric_limits<int>::min();

using Range = std::pair<int, int>;

Range rangeOf(const std::vector<int>& keyFrames, int frame) {
  Property property;
  for (const int f : keyFrames) property.mKeys.add(realKey(f, 0));
  int min = -1, max = -1;
  XCAnimationMgr().GetKeyFrameRange(frame, min, max, &property.mKeys);
  return {min, max};
}

/// The same by its definition: the latest key at or before the frame, the earliest of the others
/// at or after it, the first of equals each time.
Range plainRangeOf(const std::vector<int>& keyFrames, int frame) {
  int min = -1, max = -1;
  const auto at = [&](int i) { return keyFrames[std::size_t(i)]; };
  const int count = int(keyFrames.size());
  for (int i = 0; i < count; ++i) {
    if (at(i) != -1 && at(i) <= frame && (min < 0 || at(i) > at(min))) min = i;
  }
  for (int i = 0; i < count; ++i) {
    if (at(i) != -1 && at(i) >= frame && i != min && (max < 0 || at(i) < at(max))) max = i;
  }
  return {min < 0 ? max : min, max < 0 ? min : max};
}

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

double realAt(const Property& property, int frame) {
  Scene scene;
  const Asked asked = ask(scene, property, frame);
  EXPECT_EQ(asked.mErrors, "");
  return asked.mValue.mReal;
}

/// The fault that an all-zero value was given for.
std::string faultOf(const Asked& asked) {
  EXPECT_TRUE(sameBits(asked.mValue, uValue{}));
  const std::string own = "XCAnimationMgr::InterpolateValue";
  const std::string text = vexa::tests::caughtText(asked.mErrors, own);
  return text.rfind(own + " : ", 0) == 0 ? text.substr(own.size() + 3) : text;
}

Property cyclic(std::initializer_list<Key> keys, int repeats) {
  Property property;
  for (const Key& key : keys) property.mKeys.add(key);
  property.mCyclic = true;
  property.mRepeatCount = repeats;
  return property;
}

}  // namespace

TEST(AnimationMgr, VirtualOperationsStandInOrder) {
  using Mgr = XIAnimationMgr;
  using Point = Oru::TVector3D<float>;
  using Id = const UxZel::CZelUUID&;
  Point (Mgr::*byPoint)(const Point*, unsigned, unsigned, Id) const = &Mgr::TransformPoint;
  Point (Mgr::*byIndex)(unsigned, unsigned, unsigned, Id) const = &Mgr::TransformPoint;
  EXPECT_TRUE(vexa::tests::standInOrderFrom(
      0, &Mgr::Delete, &Mgr::InterpolateValue, &Mgr::RegisterAnimatedObject,
      &Mgr::ManageAnimatedObjectInstance, &Mgr::GetCurrentDefinition, byPoint, byIndex));
}

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

RC_GTEST_PROP(KeyRange, AgreesWithItsDefinition, ()) {
  // Few frames, so that keys meet; some at both ends of the integers.
  const auto frames = rc::gen::oneOf(rc::gen::inRange(-3, 8), rc::gen::arbitrary<int>(),
                                     rc::gen::element(kIntMin, kIntMax, -1, 0));
  const auto keys = *rc::gen::container<std::vector<int>>(frames);
  const int frame = *frames;
  RC_ASSERT(rangeOf(keys, frame) == plainRangeOf(keys, frame));
}

TEST(InterpolateValue, TheLastKeyHoldsAndTheRestIsZero) {
  Scene lamp = scenes::lamp();
  EXPECT_TRUE(sameBits(ask(lamp, lamp.mProperties[0], 1000).mValue, realKey(0, 1).mValue));
}

TEST(InterpolateValue, EveryFaultGivesZeroAndALine) {
  Scene scene;
  Property property;
  EXPECT_EQ(faultOf(ask(scene, property, 0)), "list of keyframes is empty");
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

// Three passes from 0 to 10: the first as the keys say, later frames one behind.
TEST(InterpolateValue, FoldsCyclesOneFrameBehind) {
  const Property pulse = scenes::lamp().mProperties[5];
  EXPECT_EQ(realAt(pulse, 10), 1);
  EXPECT_EQ(realAt(pulse, 15), 0.4);
  EXPECT_EQ(realAt(pulse, 20), 0) << "folds to -1, before the first key";
  EXPECT_EQ(realAt(pulse, 29), 0.8) << "linear keys stay linear";
  EXPECT_EQ(realAt(pulse, 31), 1) << "past the last pass";
  // The remainder is that of the frame itself, not of its distance from the first key.
  const Property late = cyclic({realKey(7, 0), realKey(17, 10)}, 3);
  EXPECT_EQ(realAt(late, 18), 7) << "7 + 8 - 1";
  EXPECT_EQ(realAt(late, 20), 0) << "7 + 0 - 1 is before the first key";
}

// An eased cycle starts square, goes on linear and ends one-minus-square.
TEST(InterpolateValue, ForcesTheCurveByPass) {
  const int kSinus = UxZel::kInterpolationSinus;
  const Property eased = cyclic({realKey(0, 0, kSinus), realKey(10, 1)}, 3);
  const double square = 0.0954915;  // a fifth of the way in
  EXPECT_NEAR(realAt(eased, 2), square, 1e-7);
  EXPECT_EQ(realAt(eased, 13), 0.2);
  EXPECT_EQ(realAt(eased, 19), 0.8);
  EXPECT_NEAR(realAt(eased, 29), 1 - square, 1e-7);
  EXPECT_NEAR(realAt(cyclic({realKey(0, 0, kSinus), realKey(10, 1)}, 0), 8), 1 - square, 1e-7)
      << "no pass, no square";
  Scene scene;
  EXPECT_EQ(ask(scene, cyclic({dateKey(0, -100), dateKey(10, -201)}, 3), 5).mValue.mDate, -150)
      << "dates keep their curve";
  const Property once = cyclic({realKey(3, 0, kSinus), realKey(3, 1)}, 3);
  EXPECT_EQ(realAt(once, 9), 0) << "a span of 0 is not cyclic; the first of equal keys holds";
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

// The object's 40 frames play once in 100 host frames.
TEST(InterpolateValue, FrameNumbersFromARate) {
  Scene scene;
  scene.mSettings.mElements[0].mTimeScale = 7;  // cancels out
  Property frames;
  frames.mPropertyType = UxZel::kPropertyAnimatedFrameRate;
  frames.mKeys.mElements = {integerKey(100, 0), integerKey(200, 0), integerKey(9000, 0)};
  double rate = 40;
  const auto at = [&](int frame) { return ask(scene, frames, frame, nullptr, &rate); };
  EXPECT_EQ(at(100).mValue.mInteger, 0);
  EXPECT_EQ(at(150).mValue.mInteger, 20);
  EXPECT_EQ(at(320).mValue.mInteger, 88) << "runs on";
  EXPECT_EQ(ask(scene, frames, 150).mValue.mInteger, 0) << "without a rate";
  frames.mCyclic = true;
  frames.mRepeatCount = 2;
  EXPECT_EQ(at(320).mValue.mInteger, 8) << "third pass";
  EXPECT_EQ(at(420).mValue.mInteger, 128) << "more passes than it repeats";
  for (const double odd : {0.0, 1e300, std::numeric_limits<double>::quiet_NaN()}) {
    rate = odd;
    EXPECT_EQ(at(320).mValue.mInteger, odd == 0 ? 0 : kIntMin) << odd;
  }
  rate = 0.5;
  EXPECT_EQ(faultOf(at(320)), "rate is less than one frame");
  frames.mKeys.mElements[1].mFrame = 100;
  EXPECT_EQ(at(220).mValue.mInteger, kIntMin) << "no span";
  scene.mSettings.mElements.clear();
  EXPECT_EQ(faultOf(at(220)), "list of settings is empty");
  frames.mKeys.mElements.resize(1);
  EXPECT_EQ(faultOf(at(220)), "second key frame is missing");
}

// Whatever the host hands over ends in a value, and prints nothing or one line.
RC_GTEST_PROP(InterpolateValue, EndsInADefinedResultOnAnyInput, ()) {
  const auto number = rc::gen::oneOf(rc::gen::inRange(-2, 30), rc::gen::arbitrary<int>(),
                                     rc::gen::element(kIntMin, kIntMax));
  Scene scene = scenes::ride(scenes::windingPath(*rc::gen::inRange(-1, 3)));
  scene.mSettings.mElements[0].mTimeScale = *number;
  Property& property = scene.mProperties[0];
  property.mPropertyType = *rc::gen::element(0u, 1u, 135u, 140u);
  property.mCyclic = *rc::gen::arbitrary<bool>();
  property.mRepeatCount = *number;
  property.mKeys.mElements.clear();
  const int count = *rc::gen::inRange(0, 5);
  for (int i = 0; i < count; ++i) {
    Key& key = property.mKeys.add(realKey(*number, *vexa::tests::rawBits<double>()));
    key.mValueType = *rc::gen::inRange(0u, 9u);
    key.mInterpolationType = *rc::gen::inRange(-1, 8);
    for (int c = 1; c < 3; ++c) key.mValue.mVector[c] = *vexa::tests::rawBits<double>();
  }
  double rate = *vexa::tests::rawBits<double>();
  CZelVector direction;
  const Asked asked =
      ask(scene, property, *number, &direction, *rc::gen::arbitrary<bool>() ? &rate : nullptr);
  RC_ASSERT(asked.mErrors.empty() ||
            asked.mErrors.rfind("XCAnimationMgr::InterpolateValue - Caught an exception \"", 0) ==
                0);
  RC_ASSERT(asked.mErrors.empty() || sameBits(asked.mValue, uValue{}));
}
