#pragma once

#include <cstdint>
#include <vector>

#include "vexa/framecollector/skinning_internal.h"
#include "vexa/math/uxs_generic_mat4.h"

namespace Norvel::Vexa {

// The matrices of the nodes at one take and frame, gathered once for all vertices of a mesh.
//
// Where all nodes show the same frame, their matrices go into a palette. Otherwise the frame is
// found link by link: a node that is too short holds its last frame for the links behind it, and
// one that can not be followed is left out.
class NodePose {
 public:
  using Matrix = UXS::uxs_generic_mat4<float>;

  // `global` is borrowed.
  NodePose(std::uint32_t nodes, std::uint32_t frame, const Matrix& global);
  NodePose(NodePose&&) = default;  // a copy would point into the original

  // Sets a node that has links: the matrices of its frames; none when it can not be followed.
  void set(std::uint32_t node, const Matrix* frames, std::uint32_t count);
  // Ends the setting. largestWeight: the largest sum of absolute weights of a vertex.
  void gather(double largestWeight);

  const skinning::Pose& pose() const { return mPose; }
  // The quickest kernel that gives the required bits.
  skinning::DeformBlock kernel(const skinning::Kernels& kernels) const;

 private:
  // Reads the rows of a matrix into the palette; returns the largest absolute value, or NaN.
  static float gatherRows(const float* columns, float* outRows);

  const Matrix& mGlobal;
  std::uint32_t mFewest = 0xFFFFFFFF, mMost = 0;  // frames of a node
  std::vector<skinning::HeldNode> mNodes;
  std::vector<float> mPalette;
  bool mIsBounded = false;  // no sum of weighted matrices is infinite or NaN
  skinning::Pose mPose;
};

}  // namespace Norvel::Vexa
