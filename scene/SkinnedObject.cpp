#include "scene/SkinnedObject.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <utility>

namespace vexa::scene {
namespace {

using Vec3 = Oru::TVector3D<double>;

// What a skin may be off, of the size: the rest of a millionth is for what viewers round.
constexpr double kMostError = 7e-7;
// Scales that differ by no more are one scale. They are halfway between, so it costs half of it.
constexpr float kSameScale = 5e-7F;
// Influences that are left out when a vertex has more than four may weigh this much.
constexpr double kNoWeight = 1e-7;
constexpr std::size_t kMostInfluences = 4;

// (x, y, z) with +Y up as (x, -z, y) with +Z up.
Matrix44 toUpZ() {
  Matrix44 result;
  result(1, 1) = result(2, 2) = 0;
  result(1, 2) = -1;
  result(2, 1) = 1;
  return result;
}

Vec3 upY(const Oru::TVector3D<float>& p) { return {double(p.x), double(p.z), -double(p.y)}; }

Vec3 transformed(const Matrix44& m, const Vec3& p) {
  const auto q = m * Norvel::Vexa::ux_point3<double>(p.x, p.y, p.z);
  return {q.x, q.y, q.z};
}

double lengthOf(const Vec3& v) { return std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z); }

double determinant(const Matrix44& m) {
  return m(0, 0) * (m(1, 1) * m(2, 2) - m(1, 2) * m(2, 1)) -
         m(0, 1) * (m(1, 0) * m(2, 2) - m(1, 2) * m(2, 0)) +
         m(0, 2) * (m(1, 0) * m(2, 1) - m(1, 1) * m(2, 0));
}

Matrix44 translation(const Vec3& v) {
  Matrix44 result;
  result.trans(v.x, v.y, v.z);
  return result;
}

// Transposed product of the first three rows and columns: the identity for a rotation.
Matrix44 gramOf(const Matrix44& m) {
  Matrix44 result;
  for (int r = 0; r < 3; ++r) {
    for (int c = 0; c < 3; ++c) {
      result(r, c) = m(0, r) * m(0, c) + m(1, r) * m(1, c) + m(2, r) * m(2, c);
    }
  }
  return result;
}

bool isEvenScale(const Matrix44& gram) {
  constexpr double kEven = 1e-6;
  const double mean = (gram(0, 0) + gram(1, 1) + gram(2, 2)) / 3;
  for (int r = 0; r < 3; ++r) {
    for (int c = 0; c < 3; ++c) {
      if (!(std::abs(gram(r, c) - (r == c ? mean : 0)) <= kEven * mean)) return false;
    }
  }
  return true;
}

// The weights of one vertex by joint.
using Weights = std::map<std::uint32_t, double>;

// The four largest, with the sum 1, or why that is not what the vertex does.
std::string influencesOf(const Weights& weights, formats::GlbSkinnedMesh::Influences& outResult) {
  std::vector<std::pair<double, std::uint32_t>> sorted;
  double sum = 0, rest = 0;
  for (const auto& [joint, weight] : weights) {
    if (weight < 0) return "has a negative weight";
    if (weight > 0) sorted.emplace_back(weight, joint);
    sum += weight;
  }
  if (!(sum > 0) || !std::isfinite(sum)) return "has no weights to divide by";
  std::sort(sorted.rbegin(), sorted.rend());
  for (std::size_t i = kMostInfluences; i < sorted.size(); ++i) rest += sorted[i].first;
  if (rest > kNoWeight * sum) {
    return "follows " + std::to_string(sorted.size()) + " nodes, of which many viewers show four";
  }
  sorted.resize(std::min(sorted.size(), kMostInfluences));
  for (std::size_t i = 0; i < sorted.size(); ++i) {
    outResult.mJoints[i] = std::uint16_t(sorted[i].second);
    outResult.mWeights[i] = float(sorted[i].first / (sum - rest));
  }
  return "";
}

}  // namespace

SkinnedObject::SkinnedObject(const formats::AnimationFile& file, formats::MovingMesh mesh) {
  mMesh.mMesh = std::move(mesh);
  std::uint32_t frames = 0;
  for (const std::uint32_t count : file.mFrameCounts) {
    mFirstFrames.push_back(frames);
    frames += count;
  }
  mFirstFrames.push_back(frames);
  mIsShown.resize(frames);
  for (int i = 0; i < 16; ++i) mAfterBlend.e[i] = double(float(file.mGlobal[std::size_t(i)]));
  Matrix44 axes;  // the exchange of Y and Z that the runtime does, then the turn to +Y up
  axes(2, 2) = -1;
  mAfterBlend = axes * mAfterBlend;
  mFault = addInfluences(file);
}

std::string SkinnedObject::addInfluences(const formats::AnimationFile& file) {
  const formats::MovingMesh::Points& rest = mMesh.mMesh.mFrames[0];
  std::vector<Weights> weights(rest.size());
  for (std::uint32_t node = 0; node < file.mNodes.size(); ++node) {
    const auto& links = file.mNodes[node].mLinks;
    if (links.empty()) continue;
    const auto joint = std::uint32_t(mNodes.size());
    mNodes.push_back(node);
    for (const auto& link : links) {
      if (link.mVertex < rest.size()) weights[link.mVertex][joint] += link.mWeight;
    }
    auto& pose = mPoses.emplace_back();
    pose.reserve(16 * file.mNodes[node].mMatrices.size());
    for (const auto& matrix : file.mNodes[node].mMatrices) {
      std::transform(matrix.begin(), matrix.end(), std::back_inserter(pose),
                     [](double number) { return float(number); });
    }
  }
  if (mNodes.size() > formats::GlbSkinnedMesh::kMostJoints) return "there are too many nodes";
  mMesh.mInfluences.resize(rest.size());
  mCenters.resize(mNodes.size());
  mBoxes.resize(mNodes.size());
  std::vector<double> sums(mNodes.size());
  std::vector<std::pair<Vec3, Vec3>> extents(mNodes.size());
  for (std::size_t v = 0; v < rest.size(); ++v) {
    auto& influences = mMesh.mInfluences[v];
    const std::string fault = influencesOf(weights[v], influences);
    if (!fault.empty()) return "vertex " + std::to_string(v) + " " + fault;
    const Vec3 p = upY(rest[v]);
    for (std::size_t i = 0; i < kMostInfluences && influences.mWeights[i] > 0; ++i) {
      const std::size_t joint = influences.mJoints[i];
      const auto weight = double(influences.mWeights[i]);
      auto& [low, high] = extents[joint];
      if (!(sums[joint] > 0)) low = high = p;
      low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
      high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
      mCenters[joint] = mCenters[joint] + p * weight;
      sums[joint] += weight;
    }
  }
  for (std::size_t j = 0; j < mNodes.size(); ++j) {
    if (!(sums[j] > 0)) continue;
    mCenters[j] = mCenters[j] * (1 / sums[j]);
    const auto& [low, high] = extents[j];
    for (unsigned int corner = 0; corner < 8; ++corner) {
      mBoxes[j].emplace_back((corner & 1u) != 0 ? low.x : high.x,
                             (corner & 2u) != 0 ? low.y : high.y,
                             (corner & 4u) != 0 ? low.z : high.z);
    }
  }
  return "";
}

std::size_t SkinnedObject::frameIndex(unsigned int take, unsigned int frame) const {
  const std::uint32_t first = mFirstFrames[take], count = mFirstFrames[take + 1] - first;
  return first + std::min<std::uint32_t>(frame, count - 1);
}

void SkinnedObject::show(unsigned int take, unsigned int frame) {
  if (take + 1 >= mFirstFrames.size() || mFirstFrames[take] == mFirstFrames[take + 1]) {
    mFault = "a take without frames is shown";
    return;
  }
  mIsShown[frameIndex(take, frame)] = true;
}

Matrix44 SkinnedObject::poseOf(std::size_t joint, std::size_t frame) const {
  static const Matrix44 kToUpZ = toUpZ();
  Matrix44 matrix;
  std::copy_n(mPoses[joint].data() + 16 * frame, 16, matrix.e);
  Matrix44 result = mAfterBlend * matrix * kToUpZ;
  for (const int column : {0, 1, 2}) result(3, column) = 0;
  result(3, 3) = 1;
  return result;
}

std::string SkinnedObject::prepare(double size) {
  if (!mFault.empty()) return mFault;
  mFromNode.resize(mNodes.size());
  mMesh.mInverseBinds.resize(mNodes.size());
  mJoints.resize(mNodes.size());
  for (std::size_t joint = 0; joint < mNodes.size(); ++joint) {
    const std::string fault = prepareJoint(joint, size);
    if (!fault.empty()) return "node " + std::to_string(mNodes[joint]) + " " + fault;
  }
  return "";
}

// The first frame, or a later one in which the joint is larger by far: scales may be 0 for a while.
std::size_t SkinnedObject::referenceFrame(std::size_t joint) const {
  std::size_t best = 0;
  double largest = 0;
  for (std::size_t frame = 0; frame < mIsShown.size(); ++frame) {
    if (!mIsShown[frame]) continue;
    const double volume = std::abs(determinant(poseOf(joint, frame)));
    if (volume <= 8 * largest) continue;
    largest = volume;
    best = frame;
  }
  return best;
}

// Weighted sums, because two frames may scale along different axes by amounts that cancel out.
Matrix44 SkinnedObject::axesOfScale(std::size_t joint, const Matrix44& toNode) const {
  Matrix44 sum = Matrix44() * 0.0;
  for (std::size_t frame = 0; frame < mIsShown.size(); ++frame) {
    if (!mIsShown[frame]) continue;
    const Matrix44 gram = gramOf(poseOf(joint, frame) * toNode);
    sum = sum + gram * (1 + double(frame % 7));
  }
  return isEvenScale(sum) ? Matrix44() : mainAxes(sum);
}

std::string SkinnedObject::prepareJoint(std::size_t joint, double size) {
  mMesh.mInverseBinds[joint] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
  if (mBoxes[joint].empty()) return "";
  const Matrix44 reference = poseOf(joint, referenceFrame(joint));
  if (!(std::abs(determinant(reference)) > double(std::numeric_limits<float>::min()))) {
    return "flattens what follows it";
  }
  const Vec3 center = transformed(reference, mCenters[joint]);
  const Matrix44 moved = translation(center * -1.0) * reference;
  Matrix44 turned = axesOfScale(joint, moved.invert());
  turned.transpose();
  const Matrix44 inverseBind = turned * moved;
  for (int i = 0; i < 16; ++i) mMesh.mInverseBinds[joint][std::size_t(i)] = float(inverseBind.e[i]);
  Matrix44 rounded;
  std::copy_n(mMesh.mInverseBinds[joint].data(), 16, rounded.e);
  if (!rounded.is_invertible()) return "flattens what follows it";
  mFromNode[joint] = rounded.invert();
  formats::GlbTransform low, high;
  bool isFirst = true;
  for (std::size_t frame = 0; frame < mIsShown.size(); ++frame) {
    if (!mIsShown[frame]) continue;
    const formats::GlbTransform shown = transformAt(joint, frame);
    const Matrix44 pose = poseOf(joint, frame), node = matrixOf(shown) * rounded;
    for (const Vec3& corner : mBoxes[joint]) {
      const double error = lengthOf(transformed(node, corner) - transformed(pose, corner));
      if (!(error <= kMostError * size)) return "is sheared or far from the object's origin";
    }
    if (isFirst) low = high = shown;
    isFirst = false;
    for (std::size_t i = 0; i < 3; ++i) {
      low.mScale[i] = std::min(low.mScale[i], shown.mScale[i]);
      high.mScale[i] = std::max(high.mScale[i], shown.mScale[i]);
    }
  }
  formats::GlbNode& node = mJoints[joint];
  node.mMoves = node.mTurns = true;
  for (std::size_t i = 0; i < 3; ++i) {
    const float a = low.mScale[i], b = high.mScale[i];
    if (!(b - a <= kSameScale * std::max(std::abs(a), std::abs(b)))) node.mScales = true;
    node.mFirst.mScale[i] = 0.5F * (a + b);
  }
  return "";
}

formats::GlbTransform SkinnedObject::transformAt(std::size_t joint, std::size_t frame) const {
  return rounded(transformOf(poseOf(joint, frame) * mFromNode[joint]));
}

void SkinnedObject::appendTransforms(unsigned int take, unsigned int frame,
                                     std::vector<formats::GlbTransform>& ioTransforms) const {
  const std::size_t index = frameIndex(take, frame);
  for (std::size_t joint = 0; joint < mNodes.size(); ++joint) {
    ioTransforms.push_back(mBoxes[joint].empty() ? formats::GlbTransform()
                                                 : transformAt(joint, index));
    if (!mJoints[joint].mScales) ioTransforms.back().mScale = mJoints[joint].mFirst.mScale;
  }
}

}  // namespace vexa::scene
