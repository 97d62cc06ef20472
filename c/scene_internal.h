#pragma once

#include <utility>

#include "c/handles_internal.h"
#include "refhost/Scene.h"

namespace vexa::c {

// What a vexa_scene stands for.
struct SceneObject final : Object {
  static constexpr char kKind[] = "vexa_scene";

  SceneObject() = default;
  explicit SceneObject(refhost::Scene scene) : mScene(std::move(scene)) {}

  refhost::Scene mScene;
};

}  // namespace vexa::c
