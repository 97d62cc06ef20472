// A host given as a table of functions. Each call takes what it needs of the host's scene into a
// small scene in memory before the manager sees it: a function of the host that fails or throws
// then does so outside of the library.
#include <cmath>
#include <cstring>
#include <filesystem>
#include <map>
#include <memory>

#include "c/conversion_internal.h"
#include "c/handles_internal.h"
#include "formats/AnimationFile.h"
#include "formats/read_file.h"
#include "refhost/Scene.h"
#include "scene/ScenePlayer.h"
#include "vexa/animation/XIAnimationMgr.h"
#include "vexa/mesh/Mesh.h"

namespace {

using namespace vexa::c;
namespace refhost = vexa::refhost;
using Manager = Norvel::Vexa::XIAnimationMgr;

UxZel::CZelUUID uuidOf(const vexa_id& id) {
  return {{id.words[0], id.words[1], id.words[2], id.words[3]}};
}

// A count that a function of the host gave. The limit is far above any scene: a count beyond
// it is a mistake of the host, which is reported before memory is taken for it.
void requireCount(std::uint32_t count, const char* what) {
  constexpr std::uint32_t kMost = 100'000'000;
  if (count > kMost) throw Fault(VEXA_HOST_FAILED, std::string(what) + ": too many");
}

// The size tells the version of the table that the host was compiled with.
void requireFunctions(const vexa_host_functions* functions) {
  require(functions != nullptr, "functions is null");
  require(functions->size == sizeof(vexa_host_functions),
          "size of functions is of another version");
  const vexa_host_functions& f = *functions;
  require(f.time_scale && f.path_count && f.path && f.path_point && f.instance_count &&
              f.instance && f.property && f.key,
          "a function of the host is null");
}

// An instance that shows an object. A mesh that is handed out borrows these two arrays: the
// library's mesh stores them per triangle in another form.
struct Shown {
  std::size_t mObject = 0;
  std::vector<std::uint32_t> mMaterials;
  std::vector<Oru::TVector3D<Oru::TVector2D<float>>> mUvs;
};

// What a vexa_host stands for.
//
//   host's scene --(functions)--> refhost::Scene of one call --> manager --> result
//
// The scene of a call is built anew each time and holds what the call needs: the host may change
// its own between two calls without telling. Objects stay, because the manager knows them by
// address; mObjects may move, but each keeps its animated object on the heap.
class HostObject final : public Object {
 public:
  static constexpr char kKind[] = "vexa_host";

  HostObject(const vexa_host_functions& functions, void* user)
      : mFunctions(functions), mUser(user), mManager(Manager::Create()) {
    if (mManager == nullptr) throw std::bad_alloc();
  }

  vexa_number value(std::uint64_t id, int frame, const double* rate, double* outDirection) {
    refhost::Scene scene;
    const refhost::Property property = readProperty(id, scene);
    require(property.mPropertyType != VEXA_TAKE_FRAME && property.mPropertyType != VEXA_WALK,
            "the property drives an instance; see vexa_host_drive");
    vexa::scene::checkValue(scene, property);
    UxZel::CZelVector direction;
    double ahead = rate == nullptr ? 0 : *rate;
    // The manager reports a fault as a zero value; checkValue has raised what it would find.
    const auto result = mManager->InterpolateValue(&scene, &property, frame, &direction,
                                                   rate == nullptr ? nullptr : &ahead);
    if (outDirection != nullptr) std::memcpy(outDirection, &direction, sizeof(direction));
    vexa_number number;
    std::memcpy(&number, &result, sizeof(number));
    return number;
  }

  std::uint32_t addObject(const vexa_object& object) {
    // What can fail comes first; an entry of mTakeFrames too many does no harm.
    refhost::Definition definition = definitionOf(object);
    mTakeFrames.emplace_back();
    mObjects.push_back(std::move(definition));
    return std::uint32_t(mObjects.size() - 1);
  }

  void show(std::uint32_t index, std::uint32_t object) {
    require(object < mObjects.size(), "the object does not exist");
    refhost::Instance instance = readInstance(index);
    const UxZel::CZelUUID id = instance.mIdentity.mUUID;
    require(!UxZel::isNone(id), "the instance has no identifier");
    if (mShown.count(id) != 0) return;
    refhost::AnimatedObject& animated = *mObjects[object].mAnimatedObject;
    // Before the registration, which would stay if a take were found missing after it.
    readTakes(object);
    const std::string& file = animated.mAnimationFile;
    const std::string folder = std::filesystem::path(file).parent_path().string();
    mManager->RegisterAnimatedObject(&instance, &animated, file.c_str(), folder.c_str(),
                                     &animated.mPoints, &animated.mPolygons);
    Shown shown;
    shown.mObject = object;
    const UXS::Mesh* mesh = mManager->GetCurrentDefinition(0, 0, id);
    // A missing file registers nothing and raises nothing.
    if (mesh == nullptr) throw std::runtime_error(file + ": no such animation file");
    for (unsigned int t = 0; t < mesh->GetTrianglesArray().size(); ++t) {
      shown.mMaterials.push_back(mesh->GetTriangleMaterialID(t));
      if (mesh->HasUVCoords()) shown.mUvs.push_back(mesh->GetTriangleUVCoords(t));
    }
    mShown.emplace(id, std::move(shown));
  }

  vexa_placement drive(std::uint32_t index, std::uint64_t id, int frame) {
    refhost::Scene scene;
    scene.mDefinitions.resize(1);
    readInstances(scene);
    require(index < scene.mInstances.mElements.size(), "the instance does not exist");
    refhost::Instance& instance = scene.mInstances.mElements[index];
    const Shown& shown = shownBy(instance);
    ask("time_scale", mFunctions.time_scale, &scene.mSettings.mElements[0].mTimeScale);
    if (scene.mSettings.mElements[0].mTimeScale < 1) {
      throw Fault(VEXA_HOST_FAILED, "the host's time scale is less than 1");
    }
    refhost::Property property = readProperty(id, scene);
    require(property.mPropertyType == VEXA_TAKE_FRAME || property.mPropertyType == VEXA_WALK,
            "the property drives no instance");
    property.mInstance = index;
    instance.mDefinition = 0;
    // Lent for the call, because a definition cannot be copied. Whatever is thrown, it goes back.
    // The manager finds the object's record by the address of the animated object, which moves
    // along.
    refhost::Definition& lent = scene.mDefinitions.front();
    std::swap(lent, mObjects[shown.mObject]);
    const GiveBack giveBack{lent, mObjects[shown.mObject]};
    vexa::scene::checkValue(scene, property);
    UxZel::CZelVector direction;
    instance.mState.mCurrentFrame =
        mManager
            ->ManageAnimatedObjectInstance(&scene, &instance, &lent, &property, frame, &direction)
            .mInteger;
    return placementOf(instance);
  }

  vexa_mesh mesh(std::uint32_t index, std::uint32_t take, std::uint32_t takeFrame) {
    const refhost::Instance instance = readInstance(index);
    const Shown& shown = shownBy(instance);
    const std::vector<std::uint32_t>& frames = mTakeFrames[shown.mObject];
    require(take < frames.size() && takeFrame < frames[take], "the take has no such frame");
    const UXS::Mesh* mesh =
        mManager->GetCurrentDefinition(take, takeFrame, instance.mIdentity.mUUID);
    if (mesh == nullptr) throw Fault(VEXA_INTERNAL, "the instance has lost its mesh");
    vexa_mesh result{};
    setPoints(mesh->GetVerticesArray(), result);
    setTriangles(mesh->GetTrianglesArray(), result);
    result.materials = shown.mMaterials.data();
    if (!shown.mUvs.empty()) result.uvs = &shown.mUvs[0].x.x;
    return result;
  }

 private:
  struct Deleter {
    void operator()(Manager* manager) const { manager->Delete(); }
  };
  struct GiveBack {
    refhost::Definition &mLent, &mOwn;
    ~GiveBack() { std::swap(mLent, mOwn); }
  };

  // The unwinding of a cancelled thread is no exception of the host's: to stop it would end the
  // process.
  template <class Function, class... Arguments>
  void ask(const char* name, Function function, Arguments... arguments) const {
    int failure = 0;
    try {
      failure = function(mUser, arguments...);
    } catch (const abi::__forced_unwind&) {
      throw;
    } catch (...) {
      throw Fault(VEXA_HOST_FAILED, std::string("the host's function ") + name + " threw");
    }
    if (failure == 0) return;
    throw Fault(VEXA_HOST_FAILED, std::string("the host's function ") + name + " failed with " +
                                      std::to_string(failure));
  }

  // A property with its keys; the path that it follows goes into the scene.
  refhost::Property readProperty(std::uint64_t id, refhost::Scene& ioScene) const {
    vexa_host_property from{};
    ask("property", mFunctions.property, id, &from);
    requireCount(from.key_count, "keys of a property");
    refhost::Property property;
    property.mName = std::to_string(id);
    property.mPropertyType = from.kind;
    property.mCyclic = from.cyclic != 0;
    property.mRepeatCount = from.repeat_count;
    property.mPath = uuidOf(from.path);
    for (std::uint32_t i = 0; i < from.key_count; ++i) {
      vexa_key key{};
      ask("key", mFunctions.key, id, i, &key);
      property.mKeys.add(keyOf(key));
    }
    if (!UxZel::isNone(property.mPath)) readPath(property.mPath, ioScene);
    return property;
  }

  // The paths are asked for one by one until the identifier is found; other paths' points are not
  // read.
  void readPath(const UxZel::CZelUUID& id, refhost::Scene& ioScene) const {
    std::uint32_t count = 0;
    ask("path_count", mFunctions.path_count, &count);
    for (std::uint32_t i = 0; i < count; ++i) {
      vexa_host_path from{};
      ask("path", mFunctions.path, i, &from);
      if (uuidOf(from.id) != id) continue;
      requireCount(from.point_count, "points of a path");
      refhost::Path path;
      path.mIdentity.mUUID = id;
      path.mClosed = from.closed != 0;
      for (std::uint32_t j = 0; j < from.point_count; ++j) {
        vexa_path_point point{};
        ask("path_point", mFunctions.path_point, i, j, &point);
        path.mPoints.add(pointOf(point));
      }
      ioScene.mPaths.add(std::move(path));
      return;
    }
  }

  refhost::Instance readInstance(std::uint32_t index) const {
    vexa_host_instance from{};
    from.scale[0] = from.scale[1] = from.scale[2] = 1;  // what a host leaves unset means 1
    ask("instance", mFunctions.instance, index, &from);
    vexa_instance plain{};
    plain.name = "";
    plain.class_name = from.class_name;
    std::memcpy(plain.position, from.position, sizeof(plain.position));
    std::memcpy(plain.scale, from.scale, sizeof(plain.scale));
    plain.rotation = from.rotation;
    plain.frame_offset = from.frame_offset;
    plain.start_offset = from.start_offset;
    plain.billboard = from.billboard;
    requireFinite(from.direction, 3, "direction of an instance");
    refhost::Instance instance = instanceOf(plain);
    instance.mName = std::to_string(index);
    instance.mIdentity.mUUID = uuidOf(from.id);
    instance.mParent = uuidOf(from.parent);
    instance.mDirection = {from.direction[0], from.direction[1], from.direction[2]};
    instance.mState.mTakeIndex = from.take;
    instance.mState.mCurrentFrame = from.take_frame;
    instance.mPlantGroupFlag = from.plant_group != 0;
    return instance;
  }

  // All of them: where a walker belongs depends on the instances that enclose it.
  void readInstances(refhost::Scene& outScene) const {
    std::uint32_t count = 0;
    ask("instance_count", mFunctions.instance_count, &count);
    requireCount(count, "instances");
    for (std::uint32_t i = 0; i < count; ++i) outScene.mInstances.add(readInstance(i));
  }

  const Shown& shownBy(const refhost::Instance& instance) const {
    const auto found = mShown.find(instance.mIdentity.mUUID);
    require(found != mShown.end(), "the instance shows no object");
    return found->second;
  }

  // Reads how many frames each take of the file has. A take that the file lacks has no pose, so an
  // object with more takes than its file is refused.
  void readTakes(std::size_t object) {
    if (!mTakeFrames[object].empty()) return;
    const refhost::AnimatedObject& animated = *mObjects[object].mAnimatedObject;
    const std::string& file = animated.mAnimationFile;
    const auto frames =
        vexa::formats::decodeAnimationFile(vexa::formats::readFile(file)).mFrameCounts;
    if (frames.empty() || animated.mTakes.mElements.size() > frames.size()) {
      throw std::runtime_error(file + ": fewer takes than the object has");
    }
    mTakeFrames[object] = frames;
  }

  const vexa_host_functions mFunctions;
  void* const mUser;
  std::unique_ptr<Manager, Deleter> mManager;
  std::vector<refhost::Definition> mObjects;
  std::vector<std::vector<std::uint32_t>> mTakeFrames;  // per object; empty until it is shown
  std::map<UxZel::CZelUUID, Shown> mShown;
};

}  // namespace

vexa_status vexa_host_new(const vexa_host_functions* functions, void* user, vexa_host* out_host) {
  return guarded([&] {
    require(out_host != nullptr, "out_host is null");
    requireFunctions(functions);
    create<HostObject>(out_host, *functions, user);
  });
}

vexa_status vexa_host_free(vexa_host host) { return freeHandle<HostObject>(host); }

vexa_status vexa_host_value(vexa_host host, uint64_t property, int32_t frame, const double* rate,
                            vexa_number* out_value, double* out_direction) {
  return guarded([&] {
    const Use<HostObject> use(host);
    require(out_value != nullptr, "out_value is null");
    require(frame >= 0, "the frame is less than 0");
    *out_value = use->value(property, frame, rate, out_direction);
  });
}

vexa_status vexa_host_add_object(vexa_host host, const vexa_object* object, uint32_t* out_object) {
  return guarded([&] {
    const Use<HostObject> use(host);
    require(object != nullptr && out_object != nullptr, "object or out_object is null");
    *out_object = use->addObject(*object);
  });
}

vexa_status vexa_host_show(vexa_host host, uint32_t instance, uint32_t object) {
  return guarded([&] { Use<HostObject>(host)->show(instance, object); });
}

vexa_status vexa_host_drive(vexa_host host, uint32_t instance, uint64_t property, int32_t frame,
                            vexa_placement* out_placement) {
  return guarded([&] {
    const Use<HostObject> use(host);
    require(out_placement != nullptr, "out_placement is null");
    require(frame >= 0, "the frame is less than 0");
    *out_placement = use->drive(instance, property, frame);
  });
}

vexa_status vexa_host_mesh(vexa_host host, uint32_t instance, uint32_t take, uint32_t take_frame,
                           vexa_mesh* out_mesh) {
  return guarded([&] {
    const Use<HostObject> use(host);
    require(out_mesh != nullptr, "out_mesh is null");
    *out_mesh = use->mesh(instance, take, take_frame);
  });
}
