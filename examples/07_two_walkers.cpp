// Two instances of one animated object: one shows its take, the other walks along a circle. Their
// deformed meshes go to walker_K_FRAME.obj, in the world.
#include <cmath>
#include <cstdio>
#include <string>

#include "formats/obj.h"
#include "refhost/scenes/paths.h"
#include "refhost/scenes/walker.h"
#include "scene/fixtures/walker_animation.h"
#include "vexa/vexa.h"

namespace {

using Norvel::Vexa::XIAnimationMgr;
using namespace vexa::refhost;

// The mesh of an instance at a take frame, placed like the instance.
vexa::formats::ObjModel placedMesh(const XIAnimationMgr& manager, const Instance& instance,
                                   int takeFrame) {
  const UXS::Mesh* mesh = manager.GetCurrentDefinition(
      instance.mState.mTakeIndex, static_cast<unsigned int>(takeFrame), instance.mIdentity.mUUID);
  vexa::formats::ObjModel model = vexa::formats::objOf(*mesh);
  const auto world = UxZel::CZelObjectInstanceTool::getObjectTransformToWorld(
      &instance, 1.0f, {}, nullptr, nullptr, false, true, false, true);
  for (auto& p : model.points) {
    const auto q = world * Norvel::Vexa::ux_point3<double>(double(p.x), double(p.y), double(p.z));
    p = {float(q.x), float(q.y), float(q.z)};
  }
  return model;
}

}  // namespace

int main() {
  Scene scene = scenes::walk(scenes::circlePath(4), 2, 1000);
  scene.mProperties[0].mPropertyType = UxZel::kPropertyAnimatedFrame;  // the first one stays
  scene.mProperties[0].mKeys.mElements[1].mFrame = scenes::kWalkerFrames;
  scene.mProperties[0].mCyclic = true;
  scene.mProperties[0].mRepeatCount = 1000;
  scene.mInstances.mElements[0].mState.mFrameOffset = 6;
  AnimatedObject& walker = *scene.mDefinitions[0].mAnimatedObject;
  writeAnimationFile(vexa::scene::walkerAnimation(), "walker.amo");

  XIAnimationMgr* manager = XIAnimationMgr::Create();
  for (Instance& instance : scene.mInstances.mElements) {
    manager->RegisterAnimatedObject(&instance, &walker, "walker.amo", "", &walker.mPoints,
                                    &walker.mPolygons);
  }

  std::printf("frame  take frames  walker 1 at        off the circle by\n");
  double worst = 0;
  for (int frame = 0; frame <= 200; frame += 10) {
    int shown[2];
    for (std::size_t i = 0; i < 2; ++i) {
      Instance& instance = scene.mInstances.mElements[i];
      // Driving an instance places it and answers with the frame of its take to show.
      shown[i] = manager
                     ->ManageAnimatedObjectInstance(&scene, &instance, &scene.mDefinitions[0],
                                                    &scene.mProperties[i], frame, nullptr)
                     .mInteger;
      const auto model = placedMesh(*manager, instance, shown[i]);
      if (frame % 50 == 0) {
        vexa::formats::writeObj(
            "walker_" + std::to_string(i) + "_" + std::to_string(frame) + ".obj", model);
      }
      if (i == 1) {  // its anchor, vertex 0, follows the path
        const auto& anchor = model.points[walker.mAnchorVertex];
        const double off = std::hypot(double(anchor.x), double(anchor.y)) - 4;
        worst = std::fmax(worst, std::fabs(off));
        std::printf("%5d  %4d  %4d   %6.3f  %6.3f    %.5f\n", frame, shown[0], shown[1],
                    double(anchor.x), double(anchor.y), off);
      }
    }
  }
  std::printf("the path itself is off a true circle by up to 0.0011\n");
  manager->Delete();
  return worst < 0.0012 ? 0 : 1;
}
