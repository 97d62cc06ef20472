#pragma once

#include <vector>

#include "vexa/mesh/MeshImpl.h"

// The order of triangles that a commit makes.
namespace UXS {

// The arrays with an entry per triangle as they are to become. What needs no change is shared with
// the mesh.
struct TriangleArrays {
  SharedVector<Mesh::Corners> mTriangles;
  SharedVector<unsigned int> mMaterialIDs;
  SharedVector<Mesh::CornerUVs> mUVCoords;
  bool mHasNewNormals = false;  // the mesh's normals become these, else they stay
  std::vector<Mesh::CornerPositions> mSmoothNormals;
};

// All of one length; uv and normals, which a mesh may lack, stay empty.
TriangleArrays fittedTriangles(const Mesh::Impl& mesh);
// Besides, without uv and normals that are all zero.
TriangleArrays trimmedTriangles(const Mesh::Impl& mesh);
// Besides, in order of the materials; triangles of one material keep their order.
TriangleArrays sortedTriangles(const Mesh::Impl& mesh);

// The triangles where a new material begins.
std::vector<unsigned int> findSections(const std::vector<unsigned int>& materials);

}  // namespace UXS
