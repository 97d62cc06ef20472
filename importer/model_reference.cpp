#include "importer/model_reference.h"

#include "importer/model_pose.h"

namespace vexa::importer {

namespace {

using Place = Norvel::Vexa::ux_point3<double>;

// Written from the definition, without any step that the animation file or the library takes: a
// fault in either shows as a difference.
Vec3 posed(const ModelReference::Bound& point, const std::vector<Matrix>& skins) {
  const Place source(double(point.mSource.x), double(point.mSource.y), double(point.mSource.z));
  Place sum(0, 0, 0);
  double weights = 0;
  for (const ModelReference::Influence& influence : point.mInfluences) {
    sum = sum + skins[influence.mJoint] * source * influence.mWeight;
    weights += influence.mWeight;
  }
  return {sum.x / weights, sum.y / weights, sum.z / weights};
}

}  // namespace

std::vector<Vec3> ModelReference::pose(std::size_t take, std::size_t frame) const {
  const double seconds = double(frame) / mFramesPerSecond;
  const std::vector<Matrix> nodes = nodeTransforms(mSource, &mSource.mClips[mClips[take]], seconds);
  std::vector<Matrix> skins;
  // Once per joint, not once per vertex.
  skins.reserve(mJoints.size());
  for (const Joint& joint : mJoints) {
    skins.push_back(mToHost * nodes[std::size_t(joint.mNode)] * joint.mOffset);
  }
  std::vector<Vec3> result;
  result.reserve(mBound.size());
  for (const Bound& point : mBound) result.push_back(posed(point, skins));
  return result;
}

}  // namespace vexa::importer
