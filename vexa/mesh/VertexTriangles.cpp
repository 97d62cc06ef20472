#include "vexa/mesh/VertexTriangles_internal.h"
#include "vexa/mesh/mesh_geometry_internal.h"

namespace UXS {

VertexTriangles::VertexTriangles(const std::vector<Mesh::Corners>& triangles, std::size_t vertices)
    : mTriangles(3 * triangles.size()), mOffsets(vertices + 2) {
  // Counted two places on, summed, and moved on while filling: each ends where it belongs.
  for (const Mesh::Corners& c : triangles) {
    for (const unsigned int v : {c.x, c.y, c.z}) ++entry(mOffsets, std::size_t{v} + 2);
  }
  for (std::size_t v = 2; v < mOffsets.size(); ++v) mOffsets[v] += mOffsets[v - 1];
  for (unsigned int t = 0; t < triangles.size(); ++t) {
    const Mesh::Corners& c = triangles[t];
    for (const unsigned int v : {c.x, c.y, c.z}) mTriangles[mOffsets[std::size_t{v} + 1]++] = t;
  }
  mOffsets.pop_back();
}

VertexTriangles::VertexTriangles(const MeshSmoothList& list) : mOffsets{0} {
  for (std::size_t v = 0; v < list.size(); ++v) {
    mTriangles.insert(mTriangles.end(), list[v].begin(), list[v].end());
    mOffsets.push_back(mTriangles.size());
  }
}

}  // namespace UXS
