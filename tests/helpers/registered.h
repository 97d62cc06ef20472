#pragma once

#include <string>

#include "refhost/Scene.h"
#include "vexa/animation/XIAnimationMgr.h"

namespace vexa::tests {

/// Registers an instance of a scene by number; its object's mesh comes from the scene.
inline void registerInstance(Norvel::Vexa::XIAnimationMgr& manager, refhost::Scene& scene,
                             std::size_t instance, const std::string& animationFile,
                             const std::string& fallbackDirectory = "") {
  refhost::Instance& it = scene.mInstances.mElements[instance];
  refhost::AnimatedObject& object = *scene.mDefinitions[it.mDefinition].mAnimatedObject;
  manager.RegisterAnimatedObject(&it, &object, animationFile.c_str(), fallbackDirectory.c_str(),
                                 &object.mPoints, &object.mPolygons);
}

/// Drives the instance of a property of a scene.
inline UxZel::IZelKeyFrame::uValue drive(Norvel::Vexa::XIAnimationMgr& manager,
                                         refhost::Scene& scene, std::size_t property, int frame,
                                         UxZel::CZelVector* direction = nullptr) {
  const refhost::Property& value = scene.mProperties[property];
  refhost::Instance& instance = scene.mInstances.mElements[value.mInstance];
  const UxZel::IZelZelObjectDefinition* definition =
      instance.mDefinition == refhost::kNone ? nullptr : &scene.mDefinitions[instance.mDefinition];
  return manager.ManageAnimatedObjectInstance(&scene, &instance, definition, &value, frame,
                                              direction);
}

}  // namespace vexa::tests
