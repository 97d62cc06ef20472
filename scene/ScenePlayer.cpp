#include "scene/ScenePlayer.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>
#include <numeric>
#include <stdexcept>

#include "formats/AnimationFile.h"
#include "formats/finite.h"
#include "scene/value_kind.h"
#include "vexa/animation/CZelObjectInstanceTool.h"
#include "vexa/mesh/Mesh.h"

namespace vexa::scene {
namespace {

using refhost::Instance;
using refhost::Property;
using Matrix = Norvel::Vexa::ux_matrix44<double>;

[[noreturn]] void refuse(const std::string& what, const std::string& name, const std::string& why) {
  throw std::runtime_error(what + " \"" + name + "\": " + why);
}

const refhost::Path* pathOf(const refhost::Scene& scene, const Property& value) {
  for (const refhost::Path& path : scene.mPaths.mElements) {
    if (path.mIdentity.mUUID == value.mPath) return &path;
  }
  return nullptr;
}

// Whether a control point lies away from its passage point.
bool leans(const UxZel::CZelVector& v) { return v.x != 0 || v.y != 0 || v.z != 0; }

// Straight from passage to passage and along the control points: 0 only for a path of length 0.
bool hasLength(const refhost::Path& path) {
  const auto& points = path.mPoints.mElements;
  const auto differs = [&](const refhost::BezierPoint& point) {
    const UxZel::CZelPoint &p = point.mPassage, &q = points[0].mPassage;
    return p.x != q.x || p.y != q.y || p.z != q.z || leans(point.mBefore) || leans(point.mAfter);
  };
  return std::any_of(points.begin(), points.end(), differs);
}

void checkPosition(const refhost::Scene& scene, const Property& value) {
  const refhost::Path* path = pathOf(scene, value);
  if (path == nullptr) refuse("value", value.mName, "names no path");
  if (path->mPoints.mElements.size() < 2) {
    refuse("value", value.mName, "follows a path of fewer than two points");
  }
  if (!isPosition(value) && !hasLength(*path)) {
    refuse("value", value.mName, "walks along a path of length 0");
  }
  // The keys of a position are fractions of the path's length.
  for (const refhost::Key& key : value.mKeys.mElements) {
    if (!isPosition(value) || (key.mValue.mReal >= 0 && key.mValue.mReal <= 1)) continue;
    refuse("value", value.mName, "a key of a position lies outside 0 to 1");
  }
}

}  // namespace

// The manager answers a request that cannot be met with zeros; here it is refused beforehand.
void checkValue(const refhost::Scene& scene, const Property& value) {
  if (value.mKeys.mElements.empty()) refuse("value", value.mName, "has no key");
  const auto& keys = value.mKeys.mElements;
  if (std::all_of(keys.begin(), keys.end(), [](const auto& key) { return key.mFrame < 0; })) {
    refuse("value", value.mName, "has no key at a frame from 0 on");
  }
  if (showsFrames(value) && value.mKeys.mElements.size() < 2) {
    refuse("value", value.mName, "needs a key at the start and one at the end");
  }
  if (followsPath(value)) checkPosition(scene, value);
  if (!drivesAnInstance(value)) return;
  if (value.mInstance == refhost::kNone) refuse("value", value.mName, "names no instance");
  const Instance& instance = scene.mInstances.mElements[value.mInstance];
  if (instance.mDefinition == refhost::kNone) {
    refuse("value", value.mName, "instance \"" + instance.mName + "\" has no object");
  }
  // Without takes there is no frame that the instance could show.
  const auto& object = scene.mDefinitions[instance.mDefinition].mAnimatedObject;
  if (object == nullptr || instance.mState.mTakeIndex >= object->mTakes.mElements.size()) {
    refuse("value", value.mName, "the object of instance \"" + instance.mName + "\" has no take");
  }
}

namespace {

// A take that the animation file lacks has no pose.
void checkTakes(const refhost::Definition& definition) {
  const refhost::AnimatedObject& object = *definition.mAnimatedObject;
  const formats::AnimationFile file = formats::readAnimationFile(object.mAnimationFile);
  if (object.mTakes.mElements.size() <= file.mFrameCounts.size()) return;
  refuse("object", definition.mName, "more takes than the animation file has");
}

[[noreturn]] void refuseUnposed(const refhost::Scene& scene, const Instance& instance) {
  const std::string& file =
      scene.mDefinitions[instance.mDefinition].mAnimatedObject->mAnimationFile;
  refuse(file + ": instance", instance.mName,
         "a vertex is no finite point; is each linked to a node?");
}

// For each instance the one that encloses it, or kNone.
std::vector<std::size_t> parentsOf(const refhost::Scene& scene) {
  const auto& instances = scene.mInstances.mElements;
  std::map<UxZel::CZelUUID, std::size_t> known;
  for (std::size_t i = 0; i < instances.size(); ++i) known[instances[i].mIdentity.mUUID] = i;
  std::vector<std::size_t> parents(instances.size(), refhost::kNone);
  for (std::size_t i = 0; i < instances.size(); ++i) {
    if (UxZel::isNone(instances[i].mParent)) continue;
    const auto found = known.find(instances[i].mParent);
    if (found != known.end() && found->second != i) parents[i] = found->second;
  }
  return parents;
}

// All instances, each after the one that encloses it. Takes time in proportion to their number:
//
//   each instance that is not placed yet starts a chain upwards:   leaf -> arm -> body
//   the chain ends at the top or at a placed instance, and is then placed from its end:
//                                                                  body, arm, leaf
//
// A chain that meets itself is a ring.
std::vector<std::size_t> parentsFirst(const refhost::Scene& scene,
                                      const std::vector<std::size_t>& parents) {
  enum class State { kUnseen, kInChain, kPlaced };
  std::vector<State> states(parents.size(), State::kUnseen);
  std::vector<std::size_t> order, chain;
  for (std::size_t i = 0; i < parents.size(); ++i) {
    std::size_t each = i;
    for (; each != refhost::kNone && states[each] == State::kUnseen; each = parents[each]) {
      states[each] = State::kInChain;
      chain.push_back(each);
    }
    if (each != refhost::kNone && states[each] == State::kInChain) {
      refuse("instance", scene.mInstances.mElements[each].mName, "stands inside itself");
    }
    for (; !chain.empty(); chain.pop_back()) {
      states[chain.back()] = State::kPlaced;
      order.push_back(chain.back());
    }
  }
  return order;
}

Oru::TVector3D<float> transformed(const Matrix& matrix, const Oru::TVector3D<float>& p) {
  const auto q = matrix * Norvel::Vexa::ux_point3<double>(double(p.x), double(p.y), double(p.z));
  return {static_cast<float>(q.x), static_cast<float>(q.y), static_cast<float>(q.z)};
}

}  // namespace

// What cannot be played is found here and not at some frame of a long run. The values come first,
// because their check needs no file.
ScenePlayer::ScenePlayer(refhost::Scene scene)
    : mScene(std::move(scene)), mManager(Norvel::Vexa::XIAnimationMgr::Create()) {
  if (mManager == nullptr) throw std::bad_alloc();
  for (const Property& value : mScene.mProperties) checkValue(mScene, value);
  for (Instance& instance : mScene.mInstances.mElements) {
    if (instance.mDefinition != refhost::kNone) registerInstance(instance);
  }
  // An object without instance is never played, so its animation file need not be read.
  std::vector<bool> isShown(mScene.mDefinitions.size(), false);
  for (const Instance& instance : mScene.mInstances.mElements) {
    if (instance.mDefinition != refhost::kNone) isShown[instance.mDefinition] = true;
  }
  for (std::size_t i = 0; i < isShown.size(); ++i) {
    if (isShown[i] && mScene.mDefinitions[i].mAnimatedObject) checkTakes(mScene.mDefinitions[i]);
  }
  orderScene();
}

void ScenePlayer::orderScene() {
  mParents = parentsOf(mScene);
  mPlacementOrder = parentsFirst(mScene, mParents);
  placeInstances();
  // Parents are earlier in the list of instances than what they enclose, so the order of the list
  // is an order for the values, too. kNone is the largest number: values that drive nothing come
  // last.
  const auto& values = mScene.mProperties;
  mSamples.assign(values.size(), Sample());
  mOrder.resize(values.size());
  std::iota(mOrder.begin(), mOrder.end(), std::size_t{0});
  std::stable_sort(mOrder.begin(), mOrder.end(), [&values](std::size_t a, std::size_t b) {
    return values[a].mInstance < values[b].mInstance;
  });
}

void ScenePlayer::registerInstance(Instance& instance) {
  refhost::AnimatedObject* object = mScene.mDefinitions[instance.mDefinition].mAnimatedObject.get();
  if (object == nullptr) return;
  // The manager looks for the file here when the first place fails; the folder of the file itself
  // adds no other place.
  const std::string folder = std::filesystem::path(object->mAnimationFile).parent_path().string();
  try {
    mManager->RegisterAnimatedObject(&instance, object, object->mAnimationFile.c_str(),
                                     folder.c_str(), &object->mPoints, &object->mPolygons);
  } catch (const std::exception& error) {
    refuse("instance", instance.mName, object->mAnimationFile + ": " + error.what());
  }
  // A file that is not there is no error to the manager: the instance then shows nothing.
  if (mesh(instance) == nullptr) {
    refuse("instance", instance.mName, object->mAnimationFile + ": no such animation file");
  }
}

const UXS::Mesh* ScenePlayer::mesh(const Instance& instance) const {
  const auto frame = static_cast<unsigned int>(instance.mState.mCurrentFrame);
  return mManager->GetCurrentDefinition(instance.mState.mTakeIndex, frame,
                                        instance.mIdentity.mUUID);
}

void ScenePlayer::setFrame(int frame) {
  for (const std::size_t i : mOrder) {
    Property& value = mScene.mProperties[i];
    if (!drivesAnInstance(value)) {
      mSamples[i] = sample(i, frame);
      continue;
    }
    Sample sample;
    Instance& instance = mScene.mInstances.mElements[value.mInstance];
    sample.mValue = mManager->ManageAnimatedObjectInstance(
        &mScene, &instance, &mScene.mDefinitions[instance.mDefinition], &value, frame,
        &sample.mDirection);
    instance.mState.mCurrentFrame = sample.mValue.mInteger;
    mSamples[i] = sample;
  }
  placeInstances();
}

// A host keeps its own scene graph. This is that part of one: each instance in the world, parents
// before what they enclose, by the functions that the manager itself uses.
void ScenePlayer::placeInstances() {
  const auto& instances = mScene.mInstances.mElements;
  mPlacements.resize(instances.size());
  for (const std::size_t i : mPlacementOrder) {
    const Instance& instance = instances[i];
    const Placement parent = mParents[i] == refhost::kNone ? Placement() : mPlacements[mParents[i]];
    const bool plantGroupFlag = parent.mIsPlantGroup && instance.mPlantGroupFlag;
    Placement& placement = mPlacements[i];
    placement.mToWorld = UxZel::CZelObjectInstanceTool::getObjectTransformToWorld(
        &instance, parent.mScale, parent.mToWorld, nullptr, nullptr, false, true, plantGroupFlag,
        true);
    const double* s = instance.mScale;
    // The mean of the three factors is what the manager takes when it places a walker in its
    // parent.
    placement.mScale =
        parent.mScale * float((std::abs(s[0]) + std::abs(s[1]) + std::abs(s[2])) / 3);
    placement.mIsPlantGroup = instance.mClassName == "3DPlantGroupInstances";
  }
}

// Instances are elements of the scene's list, which does not move while the player exists.
const ScenePlayer::Placement& ScenePlayer::placementOf(const Instance& instance) const {
  return mPlacements[std::size_t(&instance - mScene.mInstances.mElements.data())];
}

void ScenePlayer::edit(refhost::Scene edited) {
  auto& instances = mScene.mInstances.mElements;
  auto& wanted = edited.mInstances.mElements;
  const auto isSame = [](const Instance& a, const Instance& b) {
    return a.mName == b.mName && a.mDefinition == b.mDefinition;
  };
  if (!std::equal(instances.begin(), instances.end(), wanted.begin(), wanted.end(), isSame)) {
    throw std::runtime_error("the instances are not those of the scene that is played");
  }
  // The manager borrows the registered objects: they keep their addresses, while everything else is
  // replaced. Nothing has changed when a check fails.
  edited.mDefinitions.swap(mScene.mDefinitions);
  try {
    for (const Property& value : edited.mProperties) checkValue(edited, value);
    parentsFirst(edited, parentsOf(edited));
  } catch (...) {
    edited.mDefinitions.swap(mScene.mDefinitions);
    throw;
  }
  mScene = std::move(edited);
  orderScene();
}

Matrix ScenePlayer::toWorld(const Instance& instance) const {
  return placementOf(instance).mToWorld;
}

ScenePlayer::Sample ScenePlayer::sample(std::size_t value, int frame) {
  Property& property = mScene.mProperties[value];
  if (drivesAnInstance(property)) {
    setFrame(frame);
    return mSamples[value];
  }
  Sample sample;
  double* rate = property.mRate ? &*property.mRate : nullptr;
  sample.mValue = mManager->InterpolateValue(&mScene, &property, frame, &sample.mDirection, rate);
  return sample;
}

UxZel::CZelPoint ScenePlayer::worldPosition(const Instance& instance) const {
  const auto p = placementOf(instance).mToWorld * Norvel::Vexa::ux_point3<double>(0.0, 0.0, 0.0);
  return {p.x, p.y, p.z};
}

// Triangles, materials and uvs are the same in every frame, so they are copied once; a frame then
// costs its points alone.
std::vector<formats::MovingMesh> ScenePlayer::meshes() const {
  std::vector<formats::MovingMesh> meshes;
  for (const Instance& instance : mScene.mInstances.mElements) {
    const UXS::Mesh* shown = mesh(instance);
    if (shown == nullptr) continue;
    formats::MovingMesh moving;
    moving.mName = instance.mName;
    moving.mFile = mScene.mDefinitions[instance.mDefinition].mAnimatedObject->mMeshFile;
    moving.mTriangles = shown->GetTrianglesArray();
    for (unsigned int t = 0; t < moving.mTriangles.size(); ++t) {
      moving.mMaterials.push_back(shown->GetTriangleMaterialID(t));
      if (shown->HasUVCoords()) moving.mUvs.push_back(shown->GetTriangleUVCoords(t));
    }
    meshes.push_back(std::move(moving));
  }
  return meshes;
}

void ScenePlayer::appendPoses(std::vector<formats::MovingMesh>& ioMeshes) const {
  std::vector<formats::MovingMesh::Points> poses;
  getPoses(poses);
  for (std::size_t i = 0; i < poses.size(); ++i) ioMeshes[i].mFrames.push_back(std::move(poses[i]));
}

void ScenePlayer::getPoses(std::vector<formats::MovingMesh::Points>& outPoses) const {
  std::size_t next = 0;
  for (const Instance& instance : mScene.mInstances.mElements) {
    const UXS::Mesh* shown = mesh(instance);
    if (shown == nullptr) continue;
    const Matrix& toWorld = placementOf(instance).mToWorld;
    if (next == outPoses.size()) outPoses.emplace_back();
    formats::MovingMesh::Points& points = outPoses[next++];
    points = shown->GetVerticesArray();
    for (auto& p : points) {
      p = transformed(toWorld, p);
      if (!formats::isFinite(p)) refuseUnposed(mScene, instance);
    }
  }
  outPoses.resize(next);
}

}  // namespace vexa::scene
