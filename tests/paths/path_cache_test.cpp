// A manager keeps the Bezier paths that it has built: nobody may notice, but by the clock.
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

#include "refhost/scenes/paths.h"
#include "refhost/scenes/properties.h"
#include "tests/helpers/compare.h"
#include "tests/helpers/failing_new.h"
#include "tests/helpers/managed.h"
#include "vexa/paths/path_position.h"

using namespace vexa::refhost;
using Points = std::vector<BezierPoint>;
using uValue = UxZel::IZelKeyFrame::uValue;
using vexa::tests::makeManager;
using vexa::tests::sameBits;

namespace {

struct Place {
  uValue mPosition{}, mDirection{};
};

/// Where the cart of a scene is at frame 30, built anew.
Place builtAnew(const Scene& scene) {
  Place place;
  Norvel::Vexa::uxInterpolated3DPath(&scene.mProperties[0].mKeys, scene.mPaths.GetAt(0), 0, 1, 30,
                                     place.mPosition, place.mDirection);
  return place;
}

Place byManager(Norvel::Vexa::XIAnimationMgr& manager, Scene& scene) {
  Place place;
  UxZel::CZelVector direction;
  place.mPosition =
      manager.InterpolateValue(&scene, &scene.mProperties[0], 30, &direction, nullptr);
  std::memcpy(&place.mDirection, &direction, sizeof(direction));
  return place;
}

void flipLowestBit(double& number) {
  std::uint64_t bits;
  std::memcpy(&bits, &number, sizeof(bits));
  bits ^= 1;
  std::memcpy(&number, &bits, sizeof(bits));
}

double& numberOf(BezierPoint& point, int i) {
  double* const triples[] = {&point.mPassage.x, &point.mBefore.x, &point.mAfter.x};
  return triples[i / 3][i % 3];
}

/// A path that writes down what it is asked, through a list and points that do the same.
struct AskedPath final : UxZel::IZel3DPath, UxZel::TZelObjectMgr<UxZel::IZelBezierPoint> {
  struct Point final : UxZel::IZelBezierPoint {
    const UxZel::CZelPoint* GetPassagePoint() const override {
      return *mCalls += 'P', &mPoint.mPassage;
    }
    const UxZel::CZelVector* GetBeforeControlOffset() const override {
      return *mCalls += 'B', &mPoint.mBefore;
    }
    const UxZel::CZelVector* GetAfterControlOffset() const override {
      return *mCalls += 'A', &mPoint.mAfter;
    }
    void SetPassagePoint(const UxZel::CZelPoint*) override {}
    void SetBeforeControlOffset(const UxZel::CZelVector*) override {}
    void SetAfterControlOffset(const UxZel::CZelVector*) override {}
    bool GetTangentLocked() const override { return *mCalls += 'T', false; }
    void SetTangentLocked(bool) override {}
    std::string* mCalls = nullptr;
    BezierPoint mPoint;
  };

  const UxZel::IZelIdentity* GetIdentity() const override { return &mIdentity; }
  bool IsPathClosed() const override { return mCalls += 'c', false; }
  void SetPathClosed(bool) override {}
  const UxZel::TZelObjectMgr<UxZel::IZelBezierPoint>* GetBezierPoints() const override {
    return mCalls += 'l', this;
  }
  UxZel::TZelObjectMgr<UxZel::IZelBezierPoint>* GetBezierPoints() override { return nullptr; }
  int GetCount() const override { return mCalls += 'n', int(mPoints.size()); }
  void RemoveAt(unsigned int) override {}
  UxZel::IZelBezierPoint* GetAt(int i) const override {
    mCalls += std::to_string(i);
    return i == mMissing ? nullptr : &mPoints[std::size_t(i)];
  }
  void InsertAt(unsigned int) override {}

  Identity mIdentity;
  mutable std::string mCalls;
  mutable std::vector<Point> mPoints;
  int mMissing = -1;
};

/// A scene of one such path.
struct AskedScene final : UxZel::IZelMgr, UxZel::TZelObjectMgr<UxZel::IZel3DPath> {
  UxZel::TZelObjectMgr<UxZel::IZelObjectInstance>* GetObjectInstances() const override {
    return nullptr;
  }
  UxZel::TZelObjectMgr<UxZel::IZelSettings>* GetSettingsList() const override { return nullptr; }
  UxZel::TZelObjectMgr<UxZel::IZel3DPath>* Get3DPaths() const override {
    return const_cast<AskedScene*>(this);
  }
  int GetCount() const override { return 1; }
  void RemoveAt(unsigned int) override {}
  UxZel::IZel3DPath* GetAt(int) const override { return &mPath; }
  void InsertAt(unsigned int) override {}

  mutable AskedPath mPath;
};

}  // namespace

// One bit of one of the nine numbers of one point, or another path at the same address.
TEST(PathCache, EveryChangedBitIsSeen) {
  std::mt19937 random(7);
  const auto below = [&random](std::size_t count) { return random() % count; };
  const auto manager = makeManager();
  for (int segments = 1; segments < 20; ++segments) {
    Scene scene = scenes::ride(scenes::windingPath(segments));
    Points& points = scene.mPaths.mElements[0].mPoints.mElements;
    Points others = scenes::circlePath(3).mPoints.mElements;
    for (int i = 0; i < 40; ++i) {
      const std::size_t change = below(6);
      if (change < 3) {
        double& number = numberOf(points[below(points.size())], int(below(9)));
        if (change > 0) number += 0.5;  // seen in a float too
        flipLowestBit(number);
      }
      if (change == 3) points.swap(others);
      if (change == 4 && points.size() > 2) points.pop_back();
      ASSERT_TRUE(sameBits(byManager(*manager, scene), builtAnew(scene))) << segments << " " << i;
    }
  }
}

// The host cannot tell a kept path from a new one: same calls, same order, also when one fails.
TEST(PathCache, AsksTheHostAsIfItBuiltAnew) {
  const auto manager = makeManager();
  Scene ride = scenes::ride(scenes::windingPath(3));
  AskedScene scene;
  scene.mPath.mIdentity = ride.mPaths.mElements[0].mIdentity;
  for (const BezierPoint& point : ride.mPaths.mElements[0].mPoints.mElements) {
    scene.mPath.mPoints.emplace_back();
    scene.mPath.mPoints.back().mPoint = point;
    scene.mPath.mPoints.back().mCalls = &scene.mPath.mCalls;
  }
  std::string& calls = scene.mPath.mCalls;
  uValue position, direction;
  const auto anew = [&] {
    Norvel::Vexa::uxInterpolated3DPath(&ride.mProperties[0].mKeys, &scene.mPath, 0, 1, 30, position,
                                       direction);
  };
  anew();
  const std::string wanted = calls;
  EXPECT_EQ(wanted.substr(0, 14), "ln0P0AP1P1BP1A");
  for (int i = 0; i < 3; ++i) {
    calls.clear();
    const uValue kept =
        manager->InterpolateValue(&scene, &ride.mProperties[0], 30, nullptr, nullptr);
    EXPECT_EQ(calls, wanted) << "request " << i;
    EXPECT_TRUE(sameBits(kept, position));
  }
  scene.mPath.mMissing = 2;
  testing::internal::CaptureStderr();
  manager->InterpolateValue(&scene, &ride.mProperties[0], 30, nullptr, nullptr);
  EXPECT_EQ(vexa::tests::caughtText(testing::internal::GetCapturedStderr(),
                                    "XCAnimationMgr::InterpolateValue"),
            vexa::tests::whatOf(anew));
}

namespace {

/// Paths of one scene, each followed on request. A path that is kept is followed without memory.
struct Rides {
  Scene mScene;
  vexa::tests::Manager mManager;
  Property mPlace = scenes::ride(scenes::windingPath(1)).mProperties[0];

  explicit Rides(const std::vector<int>& segments) : mManager(makeManager()) {
    for (const int each : segments) {
      Path& path = mScene.mPaths.add(scenes::windingPath(each));
      path.mIdentity.mUUID = numberedUUID(std::uint32_t(mScene.mPaths.GetCount()));
    }
  }
  bool isKept(std::uint32_t path) {
    mPlace.mPath = numberedUUID(path + 1);
    return vexa::tests::allocationsOf(
               [&] { mManager->InterpolateValue(&mScene, &mPlace, 30, nullptr, nullptr); }) == 0;
  }
};

}  // namespace

TEST(PathCache, KeepsThe256PathsThatWereAskedForLast) {
  Rides rides(std::vector<int>(257, 1));
  for (std::uint32_t path = 0; path < 256; ++path) EXPECT_FALSE(rides.isKept(path));
  EXPECT_TRUE(rides.isKept(0));
  EXPECT_FALSE(rides.isKept(256));  // path 1 goes
  for (const std::uint32_t path : {0u, 2u, 256u}) EXPECT_TRUE(rides.isKept(path)) << path;
  EXPECT_FALSE(rides.isKept(1));
}

TEST(PathCache, KeepsAtMost65536Points) {
  Rides rides({40000, 20000, 10000, 30000});
  for (const std::uint32_t path : {0u, 1u, 2u}) EXPECT_FALSE(rides.isKept(path));
  EXPECT_FALSE(rides.isKept(3));  // the first one has gone: there is room
  rides.mScene.mPaths.mElements[3].mPoints.mElements[7].mPassage.y += 1;
  EXPECT_FALSE(rides.isKept(3));  // in the place of what it was
  for (const std::uint32_t path : {1u, 2u, 3u}) EXPECT_TRUE(rides.isKept(path)) << path;
  EXPECT_FALSE(rides.isKept(0));
}
