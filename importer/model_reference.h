#pragma once

#include <cstdint>
#include <vector>

#include "importer/SourceModel.h"

namespace vexa::importer {

/// One thing that moves vertices: a node, and how a mesh lies in it.
struct Joint {
  std::int32_t mNode = 0;
  /// From the mesh to the node, in the pose in which they were bound.
  Matrix mOffset;
};

/// The importer's own skinning, in double precision and straight from the model: what an imported
/// animation is compared with. It shares nothing with the animation file but the sampled clips.
struct ModelReference {
  struct Influence {
    std::uint32_t mJoint = 0;
    double mWeight = 0;
  };

  /// One per vertex of the rest mesh, as the model has it.
  struct Bound {
    Oru::TVector3D<float> mSource;
    /// At least one; the sum of the weights is above 0.
    std::vector<Influence> mInfluences;
  };

  SourceModel mSource;
  /// From the model's world to the host's.
  Matrix mToHost;
  std::vector<Joint> mJoints;
  std::vector<Bound> mBound;
  /// Per take the clip that it samples.
  std::vector<std::size_t> mClips;
  double mFramesPerSecond = 30;

  /// Where every vertex is at a frame of a take, in the host's space (+Z up): the blend of
  /// toHost * node * offset * point over the vertex's joints, divided by the sum of its weights.
  std::vector<Vec3> pose(std::size_t take, std::size_t frame) const;
};

}  // namespace vexa::importer
