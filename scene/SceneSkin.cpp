#include "scene/SceneSkin.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "formats/AnimationFile.h"
#include "formats/finite.h"
#include "formats/mesh_surfaces.h"
#include "scene/mesh_names.h"
#include "vexa/mesh/Mesh.h"

namespace vexa::scene {
namespace {

using Points = formats::MovingMesh::Points;

// From an instance to the world, both with +Y up: T W inv(T) for the turn T from +Z up.
Matrix44 placementOf(const ScenePlayer& player, const refhost::Instance& instance) {
  const Matrix44 w = player.toWorld(instance);
  constexpr int kRows[] = {0, 2, 1, 3};
  constexpr double kSigns[] = {1, 1, -1, 1};
  Matrix44 result;
  for (int r = 0; r < 4; ++r) {
    for (int c = 0; c < 4; ++c) result(r, c) = kSigns[r] * kSigns[c] * w(kRows[r], kRows[c]);
  }
  return result;
}

// Whether the transform is the matrix, apart from the rounding of doubles.
bool isSame(const NodeTransform& transform, const Matrix44& matrix) {
  constexpr double kNear = 1e-7;
  const Matrix44 formed = matrixOf(transform);
  const double* s = transform.mScale;
  const double largest = std::max({std::abs(s[0]), std::abs(s[1]), std::abs(s[2])});
  for (int r = 0; r < 3; ++r) {
    for (int c = 0; c < 3; ++c) {
      if (!(std::abs(formed(r, c) - matrix(r, c)) <= kNear * largest)) return false;
    }
    if (!std::isfinite(float(matrix(r, 3)))) return false;
  }
  return true;
}

double sizeOf(const Points& points) {
  Points::value_type low = points[0], high = points[0];
  for (const auto& p : points) {
    if (!formats::isFinite(p)) return 0;
    low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
    high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
  }
  return std::hypot(double(high.x) - double(low.x), double(high.y) - double(low.y),
                    double(high.z) - double(low.z));
}

Points restOf(const refhost::AnimatedObject& object) {
  Points points;
  for (const auto& p : object.mPoints.mElements) {
    points.emplace_back(float(p.x), float(p.y), float(p.z));
  }
  return points;
}

unsigned int shownFrame(const refhost::Instance& instance) {
  return static_cast<unsigned int>(instance.mState.mCurrentFrame);
}

}  // namespace

SceneSkin::SceneSkin(ScenePlayer& player, const std::vector<int>& frames) {
  addInstances(player);
  for (std::size_t i = 0; i < frames.size() && mObstacle.empty(); ++i) {
    player.setFrame(frames[i]);
    see(player, i == 0);
  }
  if (mShown.empty()) mObstacle = "there is no mesh";
  if (mObstacle.empty()) mObstacle = prepareObjects(player);
}

// Instances of one definition share an object.
void SceneSkin::addInstances(ScenePlayer& player) {
  const auto& scene = player.scene();
  std::vector<formats::MovingMesh> meshes = player.meshes();
  formats::addSurfaces(meshes);
  std::size_t next = 0;
  for (std::size_t i = 0; i < scene.mInstances.mElements.size(); ++i) {
    const refhost::Instance& instance = scene.mInstances.mElements[i];
    if (player.mesh(instance) == nullptr) continue;
    formats::MovingMesh& mesh = meshes[next++];
    if (mesh.mTriangles.empty()) continue;
    const auto found = std::find(mDefinitions.begin(), mDefinitions.end(), instance.mDefinition);
    Shown& shown = mShown.emplace_back();
    shown.mInstance = i;
    shown.mObject = std::size_t(found - mDefinitions.begin());
    if (found != mDefinitions.end()) continue;
    const refhost::Definition& definition = scene.mDefinitions[instance.mDefinition];
    const refhost::AnimatedObject& object = *definition.mAnimatedObject;
    mesh.mName = definition.mName;
    mesh.mFrames = {restOf(object)};
    mObjects.emplace_back(formats::readAnimationFile(object.mAnimationFile), std::move(mesh));
    mDefinitions.push_back(instance.mDefinition);
  }
}

void SceneSkin::see(const ScenePlayer& player, bool isFirst) {
  for (Shown& shown : mShown) {
    const refhost::Instance& instance = player.scene().mInstances.mElements[shown.mInstance];
    mObjects[shown.mObject].show(instance.mState.mTakeIndex, shownFrame(instance));
    const Matrix44 matrix = placementOf(player, instance);
    const NodeTransform transform = transformOf(matrix);
    if (!isSame(transform, matrix)) {
      mObstacle = "instance \"" + instance.mName + "\" is sheared by what encloses it";
      return;
    }
    const formats::GlbTransform now = rounded(transform);
    formats::GlbNode& node = shown.mPlacement;
    if (isFirst) node.mFirst = now;
    node.mMoves |= now.mTranslation != node.mFirst.mTranslation;
    node.mTurns |= now.mRotation != node.mFirst.mRotation;
    node.mScales |= now.mScale != node.mFirst.mScale;
  }
}

std::string SceneSkin::prepareObjects(const ScenePlayer& player) {
  for (std::size_t o = 0; o < mObjects.size(); ++o) {
    const auto first = std::find_if(mShown.begin(), mShown.end(),
                                    [o](const Shown& each) { return each.mObject == o; });
    const auto& instance = player.scene().mInstances.mElements[first->mInstance];
    const std::string& name = player.scene().mDefinitions[mDefinitions[o]].mName;
    const Points& pose = player.mesh(instance)->GetVerticesArray();
    if (pose.size() != mObjects[o].mesh().mInfluences.size()) return "the mesh has other points";
    const std::string fault = mObjects[o].prepare(sizeOf(pose));
    if (!fault.empty()) return "object \"" + name + "\": " + fault;
  }
  return "";
}

std::size_t SceneSkin::jointCount() const {
  std::size_t count = 0;
  for (const Shown& shown : mShown) count += mObjects[shown.mObject].joints().size();
  return count;
}

void SceneSkin::write(ScenePlayer& player, const std::vector<int>& frames, formats::NewFile& file,
                      const std::string& name) const {
  const auto& elements = player.scene().mInstances.mElements;
  std::vector<formats::GlbTransform> nodes;
  const auto collect = [&](int frame) {
    player.setFrame(frame);
    nodes.clear();
    for (const Shown& shown : mShown) {
      const refhost::Instance& instance = elements[shown.mInstance];
      nodes.push_back(rounded(transformOf(placementOf(player, instance))));
      mObjects[shown.mObject].appendTransforms(instance.mState.mTakeIndex, shownFrame(instance),
                                               nodes);
    }
  };
  collect(frames[0]);
  std::vector<formats::GlbSkinInstance> instances;
  auto next = nodes.begin();
  for (const Shown& shown : mShown) {
    auto& instance = instances.emplace_back();
    instance.mName = elements[shown.mInstance].mName;
    instance.mMesh = shown.mObject;
    instance.mNodes.push_back(shown.mPlacement);
    const auto& joints = mObjects[shown.mObject].joints();
    instance.mNodes.insert(instance.mNodes.end(), joints.begin(), joints.end());
    for (formats::GlbNode& node : instance.mNodes) {
      node.mFirst = *next++;
      if (frames.size() == 1) node.mMoves = node.mTurns = node.mScales = false;
    }
  }
  std::vector<formats::GlbSkinnedMesh> meshes;
  for (const SkinnedObject& object : mObjects) meshes.push_back(object.mesh());
  formats::GlbSkinWriter writer(
      file, name, meshes, std::move(instances), frames.size(),
      framesPerSecond(player.scene().mSettings.mElements[0].mTimeScale, frames));
  for (const int frame : frames) {
    collect(frame);
    writer.writeFrame(nodes);
  }
  writer.finish();
}

std::string glbText(const SceneSkin& skin) {
  if (!skin.obstacle().empty()) return "morph targets, because " + skin.obstacle();
  const std::size_t joints = skin.jointCount();
  return "a skin of " + std::to_string(joints) + (joints == 1 ? " joint" : " joints");
}

void writeSkin(const SceneSkin& skin, ScenePlayer& player, const std::vector<int>& frames,
               const formats::OutputFolder& folder) {
  formats::NewFile file(folder.pathFor("scene.glb"), folder.finalPath("scene.glb"));
  skin.write(player, frames, file, folder.finalPath("scene.glb"));
  file.close();
}

}  // namespace vexa::scene
