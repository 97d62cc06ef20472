#include "importer/model_check.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "formats/finite.h"
#include "formats/printable.h"
#include "formats/utf8.h"

namespace vexa::importer {

namespace {

[[noreturn]] void refuse(const std::string& reason) { throw std::runtime_error(reason); }

void require(bool condition, const std::string& reason) {
  if (!condition) refuse(reason);
}

std::string quoted(const std::string& name) { return "'" + name + "'"; }

using formats::isFinite;

bool isFinite(const Matrix& m) {
  return std::all_of(std::begin(m.e), std::end(m.e), [](double v) { return std::isfinite(v); });
}

bool isIndex(std::int32_t index, std::size_t count) {
  return index >= 0 && std::size_t(index) < count;
}

// This runs on what a child process has sent. Every later step relies on it: indices exist, parents
// come before children, numbers are finite, times rise.
void checkNodes(const SourceModel& model) {
  require(!model.mNodes.empty(), "it has no nodes");
  for (std::size_t i = 0; i < model.mNodes.size(); ++i) {
    const SourceModel::Node& node = model.mNodes[i];
    require(i == 0 ? node.mParent == SourceModel::kNone : isIndex(node.mParent, i),
            "node " + quoted(node.mName) + " has a wrong parent");
    require(node.mPivots == SourceModel::kNone || isIndex(node.mPivots, model.mPivots.size()),
            "node " + quoted(node.mName) + " has wrong pivots");
    require(node.mInherit <= SourceModel::Inherit::NoParent,
            "node " + quoted(node.mName) + " takes over scale in an unknown way");
    require(isFinite(node.mLocal),
            "node " + quoted(node.mName) + " has a matrix that is not of finite numbers");
  }
  for (const SourceModel::Pivots& p : model.mPivots) {
    for (const Vec3& v : {p.mTranslation, p.mRotation, p.mScale, p.mPreRotation, p.mPostRotation,
                          p.mRotationOffset, p.mRotationPivot, p.mScaleOffset, p.mScalePivot}) {
      require(isFinite(v), "a node has pivots that are not finite numbers");
    }
  }
  require(isFinite(model.mAxes), "its axes are not finite numbers");
}

// Removes influences with an invalid weight or vertex index; returns how many.
std::size_t dropBadInfluences(SourceModel::Bone& bone, std::size_t pointCount) {
  auto& all = bone.mInfluences;
  const auto isBad = [&](const SourceModel::Influence& influence) {
    return influence.mVertex >= pointCount || !std::isfinite(influence.mWeight) ||
           influence.mWeight < 0;
  };
  const auto firstBad = std::remove_if(all.begin(), all.end(), isBad);
  const auto count = std::size_t(all.end() - firstBad);
  all.erase(firstBad, all.end());
  // A weight of 0 is no fault and has no effect: it goes without a note.
  all.erase(std::remove_if(all.begin(), all.end(),
                           [](const SourceModel::Influence& i) { return i.mWeight == 0; }),
            all.end());
  return count;
}

void checkBones(SourceModel::Mesh& mesh, std::size_t nodeCount, std::vector<std::string>& ioNotes) {
  std::size_t dropped = 0;
  for (SourceModel::Bone& bone : mesh.mBones) {
    require(bone.mNode == SourceModel::kNone || isIndex(bone.mNode, nodeCount),
            "bone " + quoted(bone.mName) + " has a wrong node");
    require(isFinite(bone.mOffset),
            "bone " + quoted(bone.mName) + " has a matrix that is not of finite numbers");
    dropped += dropBadInfluences(bone, mesh.mPoints.size());
  }
  if (dropped > 0) {
    ioNotes.push_back("mesh " + quoted(mesh.mName) + ": " + std::to_string(dropped) +
                      " weights that are negative, no numbers or on absent vertices are dropped");
  }
}

void checkMesh(SourceModel::Mesh& mesh) {
  const std::string which = "mesh " + quoted(mesh.mName);
  const std::size_t count = mesh.mPoints.size();
  require(std::all_of(mesh.mPoints.begin(), mesh.mPoints.end(),
                      [](const auto& p) { return isFinite(p); }),
          which + " has coordinates that are not finite numbers");
  require(mesh.mUvs.empty() || mesh.mUvs.size() == count,
          which + " has texture coordinates for some of its vertices only");
  for (auto& uv : mesh.mUvs) {
    // Only the picture suffers.
    if (!isFinite(uv)) uv = {};
  }
  for (const auto& t : mesh.mTriangles) {
    require(t.x < count && t.y < count && t.z < count,
            which + " has a triangle with a corner past its last vertex");
  }
}

template <class Track>
bool isRising(const Track& track) {
  return std::is_sorted(track.mKeys.begin(), track.mKeys.end(),
                        [](const auto& a, const auto& b) { return a.mTime < b.mTime; });
}

// Tangents belong to the keys as they lie: without them, or out of order, lines take their place.
template <class Track>
void checkTrack(Track& track, const std::string& which, std::vector<std::string>& ioNotes) {
  auto& keys = track.mKeys;
  // A key at no time, or with no value, leaves nothing to repair.
  const bool finite = std::all_of(keys.begin(), keys.end(), [](const auto& key) {
    return std::isfinite(key.mTime) && isFinite(key.mValue);
  });
  require(finite && std::all_of(track.mTangents.begin(), track.mTangents.end(),
                                [](const auto& tangent) { return isFinite(tangent); }),
          which + " has a key that is not of finite numbers");
  require(track.mInterpolation <= SourceModel::Interpolation::Cubic,
          which + " has keys of an unknown kind");
  const bool isCubic = track.mInterpolation == SourceModel::Interpolation::Cubic;
  if (isCubic && (track.mTangents.size() != 2 * keys.size() || !isRising(track))) {
    ioNotes.push_back(which + ": a curve with keys out of order is played as straight lines");
    track.mInterpolation = SourceModel::Interpolation::Linear;
  }
  // Stable: of two keys at one time the later one in the file stays the later one.
  std::stable_sort(keys.begin(), keys.end(),
                   [](const auto& a, const auto& b) { return a.mTime < b.mTime; });
}

double squaredLength(const Quaternion& q) { return q.x * q.x + q.y * q.y + q.z * q.z + q.w * q.w; }

void checkRotations(SourceModel::Track<SourceModel::RotationKey>& track, const std::string& which,
                    std::vector<std::string>& ioNotes) {
  // Their tangents belong to the keys by number, so none may be removed.
  if (track.mInterpolation == SourceModel::Interpolation::Cubic) return;
  auto& keys = track.mKeys;
  const auto isBad = [](const SourceModel::RotationKey& key) {
    // It cannot be made a unit quaternion.
    const double length = squaredLength(key.mValue);
    return !(length > 0) || !std::isfinite(length);
  };
  const auto firstBad = std::remove_if(keys.begin(), keys.end(), isBad);
  if (firstBad == keys.end()) return;
  ioNotes.push_back(which + ": " + std::to_string(keys.end() - firstBad) +
                    " rotation keys that are no rotations are dropped");
  keys.erase(firstBad, keys.end());
}

void checkCurve(SourceModel::Curve& curve, const std::string& which) {
  require(curve.mPart < 9, which + " moves an unknown part of a node");
  require(!curve.mKeys.empty(), which + " has a curve without keys");
  for (const SourceModel::CurveKey& key : curve.mKeys) {
    for (const double number :
         {key.mTime, key.mValue, key.mLeftTime, key.mLeftValue, key.mRightTime, key.mRightValue}) {
      require(std::isfinite(number), which + " has a key that is not of finite numbers");
    }
    require(key.mNext <= SourceModel::CurveKey::Next::Jump, which + " has keys of an unknown kind");
  }
  std::stable_sort(curve.mKeys.begin(), curve.mKeys.end(),
                   [](const auto& a, const auto& b) { return a.mTime < b.mTime; });
}

// A JSON text holds UTF-8 only.
void checkName(SourceModel::Clip& clip, std::vector<std::string>& ioNotes) {
  if (formats::isUtf8(clip.mName)) return;
  clip.mName = formats::printable(clip.mName);
  ioNotes.push_back("clip " + quoted(clip.mName) +
                    ": its name is not UTF-8; bytes that do not fit are spelled out");
}

void checkClip(SourceModel::Clip& clip, std::size_t nodeCount, std::size_t pivotCount,
               std::vector<std::string>& ioNotes) {
  checkName(clip, ioNotes);
  const std::string which = "clip " + quoted(clip.mName);
  for (SourceModel::Channel& channel : clip.mChannels) {
    require(isIndex(channel.mNode, nodeCount),
            which + " moves a node that the model does not have");
    require(channel.mPivots == SourceModel::kNone || isIndex(channel.mPivots, pivotCount),
            which + " has wrong pivots");
    checkRotations(channel.mRotations, which, ioNotes);
    checkTrack(channel.mTranslations, which, ioNotes);
    checkTrack(channel.mRotations, which, ioNotes);
    checkTrack(channel.mScales, which, ioNotes);
    for (SourceModel::Curve& curve : channel.mCurves) checkCurve(curve, which);
  }
}

void checkMaterials(SourceModel& ioModel) {
  std::size_t used = 0;
  for (const SourceModel::Mesh& mesh : ioModel.mMeshes) {
    // A damaged number would make as many materials below.
    require(mesh.mMaterial < 65536, "mesh " + quoted(mesh.mName) + " has a wrong material");
    used = std::max<std::size_t>(used, mesh.mMaterial + std::size_t{1});
  }
  // Every material of a mesh has an entry from here on.
  while (ioModel.mMaterials.size() < used) {
    SourceModel::Material material;
    material.mName = "material" + std::to_string(ioModel.mMaterials.size() + 1);
    ioModel.mMaterials.push_back(std::move(material));
  }
}

}  // namespace

void checkModel(SourceModel& ioModel) {
  checkNodes(ioModel);
  for (SourceModel::Mesh& mesh : ioModel.mMeshes) {
    checkMesh(mesh);
    checkBones(mesh, ioModel.mNodes.size(), ioModel.mNotes);
  }
  for (const SourceModel::Instance& instance : ioModel.mInstances) {
    require(isIndex(instance.mNode, ioModel.mNodes.size()) &&
                isIndex(instance.mMesh, ioModel.mMeshes.size()),
            "it hangs a mesh where there is none");
  }
  for (SourceModel::Clip& clip : ioModel.mClips) {
    checkClip(clip, ioModel.mNodes.size(), ioModel.mPivots.size(), ioModel.mNotes);
  }
  checkMaterials(ioModel);
}

}  // namespace vexa::importer
