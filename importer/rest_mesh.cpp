#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <map>
#include <stdexcept>
#include <unordered_map>

#include "importer/model_pose.h"
#include "importer/rest_mesh_internal.h"

namespace vexa::importer {

namespace {

// --- where a mesh lies -----------------------------------------------------------------------

struct Placement {
  Matrix mToHost;
  Matrix mFromHost;
  bool mIsMirrored = false;
};

double volume(const Matrix& m) {
  return m(0, 0) * (m(1, 1) * m(2, 2) - m(1, 2) * m(2, 1)) -
         m(0, 1) * (m(1, 0) * m(2, 2) - m(1, 2) * m(2, 0)) +
         m(0, 2) * (m(1, 0) * m(2, 1) - m(1, 1) * m(2, 0));
}

// Whether its inverse is worth anything: a node that is scaled to nothing has none.
bool isSound(const Matrix& m) {
  double edges = 1;
  for (int c = 0; c < 3; ++c) edges *= std::hypot(m(0, c), m(1, c), m(2, c));
  const double size = std::abs(volume(m));
  return std::isfinite(edges) && size > 1e-6 * edges && m.is_invertible();
}

// Well above the rounding of bind matrices, which files state in about six digits.
constexpr double kNear = 1e-3;

// Whether two places of a mesh differ by less than that part of its size: `extent` is its largest
// coordinate.
bool areNear(const Matrix& a, const Matrix& b, double extent) {
  double turned = 0, moved = 0, largest = 0;
  for (int r = 0; r < 3; ++r) {
    for (int c = 0; c < 3; ++c) {
      turned = std::max(turned, std::abs(a(r, c) - b(r, c)));
      largest = std::max(largest, std::abs(a(r, c)));
    }
    moved = std::max(moved, std::abs(a(r, 3) - b(r, 3)));
  }
  return turned < kNear * largest && moved < kNear * largest * extent;
}

double extentOf(const SourceModel::Mesh& mesh) {
  float extent = 0;
  for (const auto& p : mesh.mPoints) {
    extent = std::max({extent, std::abs(p.x), std::abs(p.y), std::abs(p.z)});
  }
  return double(extent);
}

// Whether a bone moves any vertex.
bool holds(const SourceModel::Bone& bone) {
  return bone.mNode != SourceModel::kNone && !bone.mInfluences.empty();
}

// The bone with the largest sum of weights; null when none has a node.
const SourceModel::Bone* chiefBone(const SourceModel::Mesh& mesh) {
  const SourceModel::Bone* chief = nullptr;
  double most = 0;
  for (const SourceModel::Bone& bone : mesh.mBones) {
    double sum = 0;
    for (const SourceModel::Influence& influence : bone.mInfluences) sum += influence.mWeight;
    if (!holds(bone) || sum <= most) continue;
    chief = &bone;
    most = sum;
  }
  return chief;
}

// --- building --------------------------------------------------------------------------------

class RestMeshBuilder {
 public:
  RestMeshBuilder(const SourceModel& model, const Matrix& worldToHost,
                  std::vector<std::string>& ioNotes)
      : mModel(model),
        mWorldToHost(worldToHost),
        mStored(nodeTransforms(model, nullptr, 0)),
        mNotes(ioNotes) {}

  void addInstances();
  RestMesh take() { return std::move(mResult); }

 private:
  using Influences = std::vector<ModelReference::Influence>;

  void addInstance(const SourceModel::Instance& instance);
  Matrix placeOf(const SourceModel::Instance& instance) const;
  Matrix placeByBone(const SourceModel::Bone& bone) const;
  std::uint32_t placementOf(const SourceModel::Instance& instance);
  std::uint32_t jointOf(std::int32_t node, const Matrix& offset, std::uint32_t placement);
  std::vector<Influences> influencesOf(const SourceModel::Mesh& source, std::int32_t node,
                                       std::uint32_t placement);
  void addTriangles(const SourceModel::Mesh& source, std::uint32_t placement,
                    const std::vector<Influences>& influences);
  std::uint32_t weld(const SourceModel::Mesh& source, std::uint32_t vertex, std::uint32_t placement,
                     const Influences& influences);

  const SourceModel& mModel;
  const Matrix mWorldToHost;
  const std::vector<Matrix> mStored;
  std::vector<std::string>& mNotes;
  RestMesh mResult;
  std::vector<Placement> mPlacements;
  std::map<std::string, std::uint32_t> mJointsByBytes;
  std::unordered_map<std::string, std::uint32_t> mPointsByBytes;
};

Oru::TVector3D<float> toFloat(const Norvel::Vexa::ux_point3<double>& p) {
  constexpr auto kLargest = double(std::numeric_limits<float>::max());
  if (!(std::abs(p.x) <= kLargest && std::abs(p.y) <= kLargest && std::abs(p.z) <= kLargest)) {
    throw std::runtime_error("its mesh reaches further than the runtime's numbers do");
  }
  return {float(p.x), float(p.y), float(p.z)};
}

template <class T>
void appendBytes(std::string& bytes, const T& value) {
  bytes.append(reinterpret_cast<const char*>(&value), sizeof(value));
}

void RestMeshBuilder::addInstances() {
  std::vector<bool> isPlaced(mModel.mMeshes.size(), false);
  for (const SourceModel::Instance& instance : mModel.mInstances) {
    const auto index = std::size_t(instance.mMesh);
    // Bones alone say where a skinned mesh is: hung on a second node it is in the same place.
    if (isPlaced[index] && chiefBone(mModel.mMeshes[index]) != nullptr) continue;
    isPlaced[index] = true;
    addInstance(instance);
  }
  const auto unused = std::count(isPlaced.begin(), isPlaced.end(), false);
  if (unused > 0) {
    mNotes.push_back(std::to_string(unused) + " meshes hang on no node and are left out");
  }
  if (mResult.mMesh.triangles.empty()) throw std::runtime_error("it has no triangles");
}

void RestMeshBuilder::addInstance(const SourceModel::Instance& instance) {
  const SourceModel::Mesh& source = mModel.mMeshes[std::size_t(instance.mMesh)];
  if (source.mTriangles.empty()) return;
  const std::uint32_t placement = placementOf(instance);
  addTriangles(source, placement, influencesOf(source, instance.mNode, placement));
}

// Where a mesh lies in the rest mesh. Rigid: where its node is in the stored pose. Skinned: where
// its bones then have it, if they agree, as they do in the pose of binding; that need not be where
// its node is. Otherwise at its node, unless that is mirrored against the bones.
Matrix RestMeshBuilder::placeOf(const SourceModel::Instance& instance) const {
  const SourceModel::Mesh& source = mModel.mMeshes[std::size_t(instance.mMesh)];
  const Matrix atNode = mWorldToHost * mStored[std::size_t(instance.mNode)];
  const SourceModel::Bone* chief = chiefBone(source);
  if (chief == nullptr) return atNode;
  const Matrix atChief = placeByBone(*chief);
  const double extent = extentOf(source);
  const bool agree =
      std::all_of(source.mBones.begin(), source.mBones.end(), [&](const SourceModel::Bone& bone) {
        return !holds(bone) || areNear(placeByBone(bone), atChief, extent);
      });
  return agree || volume(atNode) * volume(atChief) <= 0 ? atChief : atNode;
}

Matrix RestMeshBuilder::placeByBone(const SourceModel::Bone& bone) const {
  return mWorldToHost * mStored[std::size_t(bone.mNode)] * bone.mOffset;
}

// Nearly the same place is taken as the same, so that meshes with one skeleton are welded; the
// joints make up for the difference.
std::uint32_t RestMeshBuilder::placementOf(const SourceModel::Instance& instance) {
  const SourceModel::Mesh& source = mModel.mMeshes[std::size_t(instance.mMesh)];
  const double extent = extentOf(source);
  Matrix place = placeOf(instance);
  if (!isSound(place)) {
    mNotes.push_back("mesh '" + source.mName +
                     "' is scaled to nothing and lies at the origin of the rest mesh");
    place = mWorldToHost;
  }
  // Few meshes have places of their own, so a list is searched.
  const auto isHere = [&](const Placement& p) { return areNear(p.mToHost, place, extent); };
  const auto found = std::find_if(mPlacements.begin(), mPlacements.end(), isHere);
  if (found != mPlacements.end()) return std::uint32_t(found - mPlacements.begin());
  const Matrix toHost = areNear(mWorldToHost, place, extent) ? mWorldToHost : place;
  mPlacements.push_back({toHost, toHost.invert(), volume(toHost) < 0});
  return std::uint32_t(mPlacements.size() - 1);
}

std::uint32_t RestMeshBuilder::jointOf(std::int32_t node, const Matrix& offset,
                                       std::uint32_t placement) {
  // Keys of the two tables are the bytes of all that makes joints or points the same.
  std::string bytes;
  appendBytes(bytes, node);
  appendBytes(bytes, offset);
  appendBytes(bytes, placement);
  const auto index = std::uint32_t(mResult.mJoints.size());
  const auto [found, isNew] = mJointsByBytes.emplace(bytes, index);
  if (isNew) {
    mResult.mJoints.push_back({node, offset});
    // From the rest mesh back to the space of the source, then into the node.
    mResult.mBinds.push_back(offset * mPlacements[placement].mFromHost);
  }
  return found->second;
}

// Per vertex of the mesh; a vertex that no bone holds hangs on the mesh's own node.
std::vector<RestMeshBuilder::Influences> RestMeshBuilder::influencesOf(
    const SourceModel::Mesh& source, std::int32_t node, std::uint32_t placement) {
  std::vector<Influences> influences(source.mPoints.size());
  for (const SourceModel::Bone& bone : source.mBones) {
    if (bone.mInfluences.empty()) continue;
    const bool isLost = bone.mNode == SourceModel::kNone;
    if (isLost) {
      mNotes.push_back("bone '" + bone.mName + "' names no node: its vertices go with mesh '" +
                       source.mName + "'");
    }
    const std::uint32_t joint =
        isLost ? jointOf(node, {}, placement) : jointOf(bone.mNode, bone.mOffset, placement);
    for (const SourceModel::Influence& influence : bone.mInfluences) {
      influences[influence.mVertex].push_back({joint, influence.mWeight});
    }
  }
  std::size_t unheld = 0;
  for (Influences& own : influences) {
    if (!own.empty()) continue;
    // The runtime divides by the sum of weights, so every vertex needs one.
    own.push_back({jointOf(node, {}, placement), 1.0});
    ++unheld;
  }
  if (unheld > 0 && !source.mBones.empty()) {
    mNotes.push_back("mesh '" + source.mName + "': " + std::to_string(unheld) +
                     " vertices have no weights and go with the mesh");
  }
  return influences;
}

void RestMeshBuilder::addTriangles(const SourceModel::Mesh& source, std::uint32_t placement,
                                   const std::vector<Influences>& influences) {
  for (const auto& triangle : source.mTriangles) {
    std::array<std::uint32_t, 3> corners = {triangle.x, triangle.y, triangle.z};
    // A mirrored node turns its faces inside out.
    if (mPlacements[placement].mIsMirrored) std::swap(corners[1], corners[2]);
    formats::ObjTriangle added;
    added.material = source.mMaterial;
    for (std::size_t i = 0; i < 3; ++i) {
      added.corners[i].point = weld(source, corners[i], placement, influences[corners[i]]);
      if (source.mUvs.empty()) continue;
      added.corners[i].u = source.mUvs[corners[i]].x;
      added.corners[i].v = source.mUvs[corners[i]].y;
    }
    mResult.mMesh.triangles.push_back(added);
  }
}

std::uint32_t RestMeshBuilder::weld(const SourceModel::Mesh& source, std::uint32_t vertex,
                                    std::uint32_t placement, const Influences& influences) {
  const Oru::TVector3D<float>& p = source.mPoints[vertex];
  std::string bytes;
  appendBytes(bytes, placement);
  // Adding 0 makes -0 and 0 the same.
  for (const float v : {p.x + 0.0f, p.y + 0.0f, p.z + 0.0f}) appendBytes(bytes, v);
  for (const ModelReference::Influence& influence : influences) {
    appendBytes(bytes, influence.mJoint);
    appendBytes(bytes, influence.mWeight);
  }
  const auto index = std::uint32_t(mResult.mBound.size());
  const auto [found, isNew] = mPointsByBytes.emplace(std::move(bytes), index);
  if (isNew) {
    mResult.mBound.push_back({p, influences});
    mResult.mMesh.points.push_back(
        toFloat(mPlacements[placement].mToHost *
                Norvel::Vexa::ux_point3<double>(double(p.x), double(p.y), double(p.z))));
  }
  return found->second;
}

}  // namespace

RestMesh buildRestMesh(const SourceModel& model, const Matrix& worldToHost,
                       std::vector<std::string>& ioNotes) {
  RestMeshBuilder builder(model, worldToHost, ioNotes);
  builder.addInstances();
  return builder.take();
}

}  // namespace vexa::importer
