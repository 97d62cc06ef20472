#pragma once

#include <cstdint>
#include <vector>

#include "importer/SourceModel.h"

namespace vexa::importer {

/// One thing that moves vertices: a node, and how a mesh lies in it.
struct Joint {
  std::int32_t node = 0;
  /// From the mesh to the node, in the pose in which they were bound.
  Matrix offset;
};

/// The importer's own skinning, in double precision and straight from the model: what an imported
/// animation is compared with. It shares nothing with the animation file but the sampled clips.
struct ModelReference {
  struct Influence {
    std::uint32_t joint = 0;
    double weight = 0;
  };

  /// One per vertex of the rest mesh, as the model has it.
  struct Point {
    Oru::TVector3D<float> source;
    /// At least one; the sum of the weights is above 0.
    std::vector<Influence> influences;
  };

  SourceModel source;
  /// From the model's world to the host's.
  Matrix toHost;
  std::vector<Joint> joints;
  std::vector<Point> points;
  /// Per take the clip that it samples.
  std::vector<std::size_t> clips;
  int framesPerSecond = 30;

  /// Where every vertex is at a frame of a take, in the host's space (+Z up): the blend of
  /// toHost * node * offset * point over the vertex's joints, divided by the sum of its weights.
  std::vector<Oru::TVector3D<double>> pose(std::size_t take, std::size_t frame) const;
};

}  // namespace vexa::importer
