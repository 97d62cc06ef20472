#pragma once

#include <cstddef>
#include <vector>

#include "vexa/mesh/Mesh.h"
#include "vexa/mesh/MeshSmoothList.h"

namespace UXS {

/// The triangles around each vertex, in one array: what MeshSmoothList says, without a list of its
/// own for each vertex.
class VertexTriangles {
 public:
  struct Range {
    const unsigned int* mBegin;
    const unsigned int* mEnd;
    const unsigned int* begin() const { return mBegin; }
    const unsigned int* end() const { return mEnd; }
    std::size_t size() const { return static_cast<std::size_t>(mEnd - mBegin); }
  };

  /// Of every triangle, in ascending order.
  VertexTriangles(const std::vector<Mesh::Corners>& triangles, std::size_t vertices);
  explicit VertexTriangles(const MeshSmoothList& list);

  /// The number of vertices.
  std::size_t size() const { return mOffsets.size() - 1; }
  Range operator[](std::size_t vertex) const {
    return {mTriangles.data() + mOffsets[vertex], mTriangles.data() + mOffsets[vertex + 1]};
  }

 private:
  std::vector<unsigned int> mTriangles;
  std::vector<std::size_t> mOffsets;  // where the triangles of each vertex begin, and the end
};

}  // namespace UXS
