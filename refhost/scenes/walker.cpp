#include "refhost/scenes/walker.h"

#include <cmath>
#include <memory>
#include <string>
#include <utility>

namespace vexa::refhost::scenes {

namespace {

constexpr double kPi = 3.141592653589793;
// Apart from the path, which has number 1.
constexpr std::uint32_t kFirstInstance = 101;

// Bit 0 of a corner's number chooses x, bit 1 y and bit 2 z. Two triangles make a face, each
// counter-clockwise seen from outside.
//
//     6-----7       z
//    /|    /|       |  y
//   4-----5 |       | /
//   | 2---|-3       |/
//   |/    |/        +---- x
//   0-----1
void addBox(AnimatedObject& object, UxZel::CZelPoint low, UxZel::CZelPoint high,
            unsigned int material) {
  static const unsigned int kFaces[12][3] = {{0, 2, 3}, {0, 3, 1}, {4, 5, 7}, {4, 7, 6},
                                             {0, 1, 5}, {0, 5, 4}, {2, 6, 7}, {2, 7, 3},
                                             {0, 4, 6}, {0, 6, 2}, {1, 3, 7}, {1, 7, 5}};
  const auto first = unsigned(object.mPoints.GetCount());
  for (int corner = 0; corner < 8; ++corner) {
    object.mPoints.add({(corner & 1) != 0 ? high.x : low.x, (corner & 2) != 0 ? high.y : low.y,
                        (corner & 4) != 0 ? high.z : low.z});
  }
  for (const auto& f : kFaces) {
    object.mPolygons.add(triangle(first + f[0], first + f[1], first + f[2], material));
  }
}

Definition walkerDefinition() {
  Definition definition;
  definition.mName = "walker";
  definition.mAnimatedObject = std::make_unique<AnimatedObject>();
  AnimatedObject& walker = *definition.mAnimatedObject;
  // Body, left foot, right foot: the header numbers their vertices in this order.
  addBox(walker, {-0.15, -0.25, 0.8}, {0.15, 0.25, 1.5}, 0);
  addBox(walker, {-0.1, 0.1, 0}, {0.15, 0.2, 0.1}, 1);
  addBox(walker, {-0.1, -0.2, 0}, {0.15, -0.1, 0.1}, 2);
  Take& take = walker.mTakes.add();
  take.mName = "walk";
  take.mFrameCount = kWalkerFrames;
  return definition;
}

Scene walkers(int count) {
  Scene scene;
  scene.mDefinitions.push_back(walkerDefinition());
  for (int i = 0; i < count; ++i) {
    Instance& instance = scene.mInstances.add();
    instance.mName = "walker " + std::to_string(i);
    instance.mIdentity.mUUID = numberedUUID(kFirstInstance + std::uint32_t(i));
    instance.mDefinition = 0;
  }
  return scene;
}

// A property of an instance with two integer keys.
Property& addProperty(Scene& scene, const char* name, int instance, unsigned int kind,
                      int lastFrame) {
  Property property;
  property.mName = name + std::to_string(instance);
  property.mPropertyType = kind;
  property.mInstance = std::size_t(instance);
  property.mKeys.add(integerKey(0, 0));
  property.mKeys.add(integerKey(lastFrame, kWalkerFrames - 1));
  scene.mProperties.push_back(std::move(property));
  return scene.mProperties.back();
}

}  // namespace

// In the first half of the cycle the left foot swings one stride ahead, in the second the right
// one. The foot that rests stays where it is, and the body moves on evenly above both.
WalkerFrame walkerFrame(int frame) {
  const double t = double(frame) / (kWalkerFrames - 1);  // 0 to 1 in a cycle
  const bool leftSwings = t < 0.5;
  const double swing = leftSwings ? 2 * t : 2 * t - 1;  // 0 to 1 in a step
  const double lift = 0.2 * std::sin(kPi * swing);
  WalkerFrame result;
  result.mBody = kWalkerStride * t;
  result.mLeftFoot = kWalkerStride * (leftSwings ? swing : 1);
  result.mRightFoot = kWalkerStride * (leftSwings ? 0 : swing);
  result.mLeftLift = leftSwings ? lift : 0;
  result.mRightLift = leftSwings ? 0 : lift;
  return result;
}

Scene walk(Path path, int count, int lastFrame) {
  Scene scene = walkers(count);
  path.mIdentity.mUUID = numberedUUID(1);
  scene.mPaths.add(std::move(path));
  for (int i = 0; i < count; ++i) {
    addProperty(scene, "walk ", i, UxZel::kPropertyAnimatedWalk, lastFrame).mPath = numberedUUID(1);
  }
  return scene;
}

Scene parade(int count) {
  Scene scene = walkers(count);
  for (int i = 0; i < count; ++i) {
    Instance& instance = scene.mInstances.mElements[std::size_t(i)];
    instance.mPosition = {0, 2.0 * i, 0};
    instance.mState.mFrameOffset = 5 * i;
    Property& show = addProperty(scene, "show ", i, UxZel::kPropertyAnimatedFrame, kWalkerFrames);
    show.mCyclic = true;
    show.mRepeatCount = 1000;  // longer than any test or benchmark plays
  }
  return scene;
}

}  // namespace vexa::refhost::scenes
