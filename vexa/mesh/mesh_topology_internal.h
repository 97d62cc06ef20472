#pragma once

#include <vector>

#include "vexa/mesh/Mesh.h"
#include "vexa/mesh/VertexTriangles_internal.h"

/// What follows from the triangles alone, wherever their vertices are.
namespace UXS {

constexpr unsigned int kNoNeighbour = 0xFFFFFFFF;

/// A directed edge of a triangle that may be drawn: always when it has no neighbour, else if the
/// triangle and the neighbour do not lie in one plane.
struct sEdgeCandidate {
  unsigned int mFrom, mTo;
  unsigned int mTriangle;
  unsigned int mNeighbour;
};

/// The edges that may be drawn, in order of their triangles and around each. An edge shared by
/// several triangles is compared with the last of them and belongs to each one before that.
/// `around` has all triangles; `sharing` those that count as neighbours, in ascending order.
std::vector<sEdgeCandidate> findEdgeCandidates(const std::vector<Mesh::Corners>& triangles,
                                               const VertexTriangles& around,
                                               const VertexTriangles& sharing);

/// The number of each triangle's connected piece. Pieces are numbered as they are met, section by
/// section; the first triangle of a section always uses up a number.
std::vector<unsigned int> labelGroups(const std::vector<Mesh::Corners>& triangles,
                                      const std::vector<unsigned int>& sections,
                                      const VertexTriangles& around);

}  // namespace UXS
