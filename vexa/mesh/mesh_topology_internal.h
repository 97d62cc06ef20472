#pragma once

#include <cstddef>
#include <vector>

#include "vexa/mesh/Mesh.h"

// What follows from the triangles alone, wherever their vertices are.
//
//        3 ------- 2      Triangles A = (0, 1, 2) and B = (0, 2, 3). The edge 0-2 is shared: A, the
//        | B    /  |      earlier one, draws it when the faces A and B do not lie in one plane. The
//        |   /     |      other four edges are boundary edges and always drawn. Both triangles are
//        | /    A  |      one connected component.
//        0 ------- 1
namespace UXS {

using Edge = Oru::TVector2D<unsigned int>;

// Vertex-triangle adjacency: the triangles around each vertex in one array, in ascending order. A
// triangle stands there once for each corner that has the vertex.
class VertexTriangleAdjacency {
 public:
  struct Range {
    const unsigned int* mBegin;
    const unsigned int* mEnd;
    const unsigned int* begin() const { return mBegin; }
    const unsigned int* end() const { return mEnd; }
    std::size_t size() const { return std::size_t(mEnd - mBegin); }
  };

  VertexTriangleAdjacency(const std::vector<Mesh::Corners>& triangles, std::size_t vertices);

  // The number of vertices.
  std::size_t size() const { return mOffsets.size() - 1; }
  Range operator[](std::size_t vertex) const {
    return {mTriangles.data() + mOffsets[vertex], mTriangles.data() + mOffsets[vertex + 1]};
  }

 private:
  std::vector<unsigned int> mTriangles;
  std::vector<std::size_t> mOffsets;  // where the triangles of each vertex begin, and the end
};

// The directed edges that may be drawn, in the order of their triangles and around each; and for
// each the two triangles whose planes are compared. An edge of several triangles belongs to each
// but the last and is compared with the last.
//
// Invariant: the first two arrays have the same length, and the third a bit for each element, eight
// to an entry. The faces of a boundary edge, which is always drawn, mean nothing.
struct EdgeCandidates {
  struct Faces {
    unsigned int mOwn, mOther;  // in floats, where each triangle has nine of corner normals
  };
  std::vector<Edge> mEdges;
  std::vector<Faces> mFaces;
  std::vector<unsigned char> mIsBoundary;
};

EdgeCandidates findEdgeCandidates(const std::vector<Mesh::Corners>& triangles,
                                  const VertexTriangleAdjacency& adjacency);

// What the normals and edges of a frame are computed from.
struct FrameTopology {
  // Throws std::length_error when there are more vertices or triangles than offsets can name.
  FrameTopology(const std::vector<Mesh::Corners>& triangles, std::size_t vertices);

  std::vector<Mesh::Corners> mOffsets;  // the triangles, in floats: 3 * index
  // The triangles that use the highest vertex index of all, in ascending order: wide code, which
  // reads one float past a position, leaves them to plain code.
  std::vector<unsigned int> mAtHighestVertex;
  EdgeCandidates mEdges;
};

// The number of each triangle's connected component. Components are numbered as they are met,
// section by section; the first triangle of a section always uses up a number.
std::vector<unsigned int> labelComponents(const std::vector<Mesh::Corners>& triangles,
                                          const std::vector<unsigned int>& sections,
                                          std::size_t vertices);

}  // namespace UXS
