// The placement of instances: their matrices into the world, and their anchors.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "vexa/animation/CZelObjectInstanceTool.h"
#include "vexa/animation/XCAnimationMgr.h"

namespace Norvel::Vexa {

namespace {

const UxZel::CZelUUID& idOf(const UxZel::IZelObjectInstance& instance) {
  return *instance.GetIdentity()->GetUUID();
}

bool isPlantGroup(const UxZel::IZelObjectInstance& instance) {
  return std::strcmp(instance.GetClassName(), "3DPlantGroupInstances") == 0;
}

// What an instance encloses is scaled by one number, however uneven its own three factors are. A
// mirrored axis (a factor below 0) does not shrink it.
float meanScale(const UxZel::IZelObjectInstance& instance) {
  const double* s = instance.GetScale();
  return float((std::fabs(s[0]) + std::fabs(s[1]) + std::fabs(s[2])) / 3.0);
}

}  // namespace

UxZel::IZelObjectInstance* XCAnimationMgr::GetZelObjectInstance(UxZel::IZelMgr* mgr,
                                                                const UxZel::CZelUUID& id) const {
  const UxZel::TZelObjectMgr<UxZel::IZelObjectInstance>* instances = mgr->GetObjectInstances();
  const int passes = instances->GetCount();
  for (int pass = 0; pass < passes; ++pass) {
    // Required behaviour: every pass looks at the first instance.
    UxZel::IZelObjectInstance* instance = instances->GetAt(0);
    if (idOf(*instance) == id) return instance;
  }
  return nullptr;
}

ux_matrix44<double> XCAnimationMgr::GetLocal2WorldMatrix(
    UxZel::IZelMgr* mgr, const UxZel::IZelObjectInstance* instance) const {
  return spaceOf(mgr, instance).mToWorld;
}

//   world > grandparent > parent > instance       the chain is collected from the right
//                                                 and multiplied from the left
//
// Each matrix needs the scale of the instances around it, so the walk outwards comes first. An
// identifier that is in the chain already ends it: parents that form a ring would never end.
XCAnimationMgr::Space XCAnimationMgr::spaceOf(UxZel::IZelMgr* mgr,
                                              const UxZel::IZelObjectInstance* instance) const {
  std::vector<const UxZel::IZelObjectInstance*> chain;  // from the instance outwards
  UxZel::CZelUUID id = idOf(*instance);
  const auto hasId = [&id](const auto* seen) { return idOf(*seen) == id; };
  while (!isNone(id) && std::none_of(chain.begin(), chain.end(), hasId)) {
    const UxZel::IZelObjectInstance* found = GetZelObjectInstance(mgr, id);
    if (found == nullptr) break;
    chain.push_back(found);
    id = *found->GetParentUUID();
  }

  Space space;
  bool insidePlantGroup = false;
  for (auto step = chain.rbegin(); step != chain.rend(); ++step) {
    const UxZel::IZelObjectInstance& current = **step;
    const bool isLast = step + 1 == chain.rend();
    space.mToWorld = UxZel::CZelObjectInstanceTool::getObjectTransformToWorld(
        &current, space.mScale, space.mToWorld, nullptr, nullptr, false, true,
        insidePlantGroup && current.GetPlantGroupFlag(), isLast);
    space.mScale *= meanScale(current);
    insidePlantGroup = isPlantGroup(current);
  }
  return space;
}

void XCAnimationMgr::SetAnchorPos(UxZel::IZelMgr* mgr, UxZel::IZelObjectInstance* instance,
                                  const UxZel::CZelPoint& worldPoint) const {
  const UxZel::CZelPoint anchor = inParent(parentSpaceOf(mgr, instance), worldPoint);
  instance->SetAnchor(&anchor);
}

std::optional<XCAnimationMgr::Space> XCAnimationMgr::parentSpaceOf(
    UxZel::IZelMgr* mgr, const UxZel::IZelObjectInstance* instance) const {
  const UxZel::CZelUUID parentId = *instance->GetParentUUID();
  if (isNone(parentId)) return std::nullopt;
  const UxZel::IZelObjectInstance* parent = GetZelObjectInstance(mgr, parentId);
  if (parent == nullptr) return std::nullopt;
  return spaceOf(mgr, parent);
}

UxZel::CZelPoint XCAnimationMgr::inParent(const std::optional<Space>& parent,
                                          const UxZel::CZelPoint& worldPoint) {
  if (!parent) return worldPoint;
  const ux_point3<double> local =
      parent->mToWorld.invert() * ux_point3<double>(worldPoint.x, worldPoint.y, worldPoint.z);
  return {local.x, local.y, local.z};
}

}  // namespace Norvel::Vexa
