#include "vexa/animation/XCAnimationMgr.h"

#include <iterator>

#include "vexa/animation/entry_point_internal.h"
#include "vexa/framecollector/XCFrameCollector.h"
#include "vexa/paths/path_cache_internal.h"

namespace Norvel::Vexa {

namespace {

template <class Map, class Key>
typename Map::mapped_type valueOrNull(const Map& map, const Key& key) {
  const auto place = map.find(key);
  return place == map.end() ? nullptr : place->second;
}

}  // namespace

XCAnimationMgr::XCAnimationMgr() : mPaths(std::make_unique<PathCache>()) {}

XIAnimationMgr* XIAnimationMgr::Create() {
  return guardEntryPoint<XIAnimationMgr*>("XIAnimationMgr::Create", nullptr,
                                          [] { return new XCAnimationMgr; });
}

bool XIAnimationMgr::ForgetAnimatedObject(XIAnimationMgr* manager,
                                          const UxZel::IZelAnimatedObject* object) {
  auto* const own = dynamic_cast<XCAnimationMgr*>(manager);
  return own != nullptr && own->Forget(object);
}

void XCAnimationMgr::Delete() { delete this; }

UXS::Mesh* XCAnimationMgr::GetCurrentDefinition(unsigned int take, unsigned int frame,
                                                const UxZel::CZelUUID& instance) const {
  const sAnimatedInstanceData* record = findRecord(instance);
  if (record == nullptr) return nullptr;
  return record->mFrameCollector->GetCurrentDefinition(take, frame, instance);
}

Oru::TVector3D<float> XCAnimationMgr::TransformPoint(const Oru::TVector3D<float>* vertex,
                                                     unsigned int take, unsigned int frame,
                                                     const UxZel::CZelUUID& instance) const {
  const sAnimatedInstanceData* record = findRecord(instance);
  if (record == nullptr) return {};
  return record->mFrameCollector->TransformPoint(vertex, take, frame);
}

Oru::TVector3D<float> XCAnimationMgr::TransformPoint(unsigned int vertex, unsigned int take,
                                                     unsigned int frame,
                                                     const UxZel::CZelUUID& instance) const {
  const sAnimatedInstanceData* record = findRecord(instance);
  if (record == nullptr) return {};
  return record->mFrameCollector->TransformPoint(vertex, take, frame);
}

XCAnimationMgr::~XCAnimationMgr() = default;

// Several identifiers may lead to one record, one per instance. The record itself stays: the host
// may still hold its mesh.
bool XCAnimationMgr::Forget(const UxZel::IZelAnimatedObject* object) {
  const auto known = mInstancesByAnimatedObject.find(object);
  if (known == mInstancesByAnimatedObject.end()) return false;
  for (auto it = mInstancesByUUID.begin(); it != mInstancesByUUID.end();) {
    it = it->second == known->second ? mInstancesByUUID.erase(it) : std::next(it);
  }
  mInstancesByAnimatedObject.erase(known);
  return true;
}

const XCAnimationMgr::sAnimatedInstanceData* XCAnimationMgr::findRecord(
    const UxZel::IZelAnimatedObject* object) const {
  return valueOrNull(mInstancesByAnimatedObject, object);
}

const XCAnimationMgr::sAnimatedInstanceData* XCAnimationMgr::findRecord(
    const UxZel::CZelUUID& instance) const {
  return valueOrNull(mInstancesByUUID, instance);
}

}  // namespace Norvel::Vexa
