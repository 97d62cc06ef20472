#pragma once

#include <memory>

#include "vexa/animation/XIAnimationMgr.h"

namespace vexa::tests {

/// Ends a manager with its test.
struct DestroyManager {
  void operator()(Norvel::Vexa::XIAnimationMgr* manager) const {
    Norvel::Vexa::XIAnimationMgr::Destroy(manager);
  }
};
using Manager = std::unique_ptr<Norvel::Vexa::XIAnimationMgr, DestroyManager>;

inline Manager makeManager() { return Manager(Norvel::Vexa::XIAnimationMgr::Create()); }

}  // namespace vexa::tests
