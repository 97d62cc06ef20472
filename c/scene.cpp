// Scenes built by calls or loaded from a file.
#include <algorithm>
#include <limits>

#include "c/conversion_internal.h"
#include "c/scene_internal.h"
#include "scene/scene_file.h"

namespace {

using namespace vexa::c;
namespace refhost = vexa::refhost;

// Apart from the identifiers of instances, which count from 1: paths and instances share one space
// of numbers, and nextIndex keeps a list below this.
constexpr std::uint32_t kFirstPathNumber = 1'000'000;

// The number of a list's next element; names within a list differ.
template <class List>
std::uint32_t nextIndex(const List& list, const char* name, const char* what) {
  textOf(name, "name");
  const bool isTaken =
      std::any_of(list.begin(), list.end(), [&](const auto& each) { return each.mName == name; });
  if (isTaken) refuse(std::string("there is already a ") + what + " \"" + name + "\"");
  require(list.size() < kFirstPathNumber - 1, "the scene is full");
  return std::uint32_t(list.size());
}

void store(std::uint32_t index, std::uint32_t* outIndex) {
  if (outIndex != nullptr) *outIndex = index;
}

// An index that may be VEXA_NONE.
std::size_t indexOf(std::uint32_t index, std::size_t count, const char* what) {
  if (index == VEXA_NONE) return refhost::kNone;
  if (index >= count) refuse(std::string("there is no ") + what + " " + std::to_string(index));
  return index;
}

void chooseTake(const refhost::Scene& scene, std::uint32_t take, refhost::Instance& outInstance) {
  outInstance.mState.mTakeIndex = take;
  if (outInstance.mDefinition == refhost::kNone) {
    require(take == 0, "an instance without an object has no take");
    return;
  }
  const auto& object = *scene.mDefinitions[outInstance.mDefinition].mAnimatedObject;
  require(take < object.mTakes.mElements.size(), "take of an instance does not exist");
}

// What the kind of a value refers to. Indices become identifiers, as the library knows paths by
// these.
void connect(const refhost::Scene& scene, const vexa_value& value, refhost::Property& outProperty) {
  const std::size_t path = indexOf(value.path, scene.mPaths.mElements.size(), "path");
  if (path != refhost::kNone) {
    outProperty.mPath = scene.mPaths.mElements[path].mIdentity.mUUID;
  }
  outProperty.mInstance = indexOf(value.instance, scene.mInstances.mElements.size(), "instance");
}

refhost::Property propertyOf(const vexa_value& value) {
  requireArray(value.keys, value.key_count, "keys of a value");
  require(value.key_count > 0, "a value without keys");
  refhost::Property property;
  property.mName = value.name;
  property.mPropertyType = value.kind;
  property.mCyclic = value.cyclic != 0;
  property.mRepeatCount = value.repeat_count;
  if (value.rate != nullptr) {
    requireFinite(value.rate, 1, "rate of a value");
    property.mRate = *value.rate;
  }
  for (std::size_t i = 0; i < value.key_count; ++i) {
    require(value.keys[i].type == value.keys[0].type, "the keys of a value are of two types");
    property.mKeys.add(keyOf(value.keys[i]));
  }
  return property;
}

}  // namespace

vexa_status vexa_scene_new(vexa_scene* out_scene) {
  return guarded([&] {
    require(out_scene != nullptr, "out_scene is null");
    create<SceneObject>(out_scene);
  });
}

vexa_status vexa_scene_load(const char* file, vexa_scene* out_scene) {
  return guarded([&] {
    require(out_scene != nullptr, "out_scene is null");
    create<SceneObject>(out_scene, vexa::scene::readSceneFile(textOf(file, "file")));
  });
}

vexa_status vexa_scene_free(vexa_scene scene) { return freeHandle<SceneObject>(scene); }

vexa_status vexa_scene_set_time_scale(vexa_scene scene, int32_t frames) {
  return guarded([&] {
    const Use<SceneObject> use(scene);
    require(frames >= 1, "the time scale is less than 1");
    use->mScene.mSettings.mElements[0].mTimeScale = frames;
  });
}

vexa_status vexa_scene_add_path(vexa_scene scene, const char* name, int closed,
                                const vexa_path_point* points, size_t point_count,
                                uint32_t* out_index) {
  return guarded([&] {
    const Use<SceneObject> use(scene);
    auto& paths = use->mScene.mPaths;
    const std::uint32_t index = nextIndex(paths.mElements, name, "path");
    requireArray(points, point_count, "points of a path");
    refhost::Path path;
    path.mName = name;
    path.mIdentity.mUUID = refhost::numberedUUID(kFirstPathNumber + index);
    path.mClosed = closed != 0;
    for (std::size_t i = 0; i < point_count; ++i) path.mPoints.add(pointOf(points[i]));
    // Added last, so that a fault leaves the scene as it was. The other functions do the same.
    paths.add(std::move(path));
    store(index, out_index);
  });
}

vexa_status vexa_scene_add_object(vexa_scene scene, const vexa_object* object,
                                  uint32_t* out_index) {
  return guarded([&] {
    const Use<SceneObject> use(scene);
    require(object != nullptr, "object is null");
    auto& objects = use->mScene.mDefinitions;
    const std::uint32_t index = nextIndex(objects, object->name, "object");
    objects.push_back(definitionOf(*object));
    store(index, out_index);
  });
}

vexa_status vexa_scene_add_instance(vexa_scene scene, const vexa_instance* instance,
                                    uint32_t* out_index) {
  return guarded([&] {
    const Use<SceneObject> use(scene);
    require(instance != nullptr, "instance is null");
    auto& instances = use->mScene.mInstances;
    const std::uint32_t index = nextIndex(instances.mElements, instance->name, "instance");
    refhost::Instance result = instanceOf(*instance);
    result.mIdentity.mUUID = refhost::numberedUUID(index + 1);
    result.mDefinition = indexOf(instance->object, use->mScene.mDefinitions.size(), "object");
    // A parent is added before its children, so parents cannot form a ring.
    const std::size_t parent = indexOf(instance->parent, index, "earlier instance");
    if (parent != refhost::kNone) {
      result.mParent = instances.mElements[parent].mIdentity.mUUID;
    }
    chooseTake(use->mScene, instance->take, result);
    instances.add(std::move(result));
    store(index, out_index);
  });
}

vexa_status vexa_scene_add_value(vexa_scene scene, const vexa_value* value, uint32_t* out_index) {
  return guarded([&] {
    const Use<SceneObject> use(scene);
    require(value != nullptr, "value is null");
    auto& values = use->mScene.mProperties;
    const std::uint32_t index = nextIndex(values, value->name, "value");
    refhost::Property property = propertyOf(*value);
    connect(use->mScene, *value, property);
    values.push_back(std::move(property));
    store(index, out_index);
  });
}
