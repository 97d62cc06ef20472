#include "vexa/mesh/MeshSmoothList.h"

#include "vexa/mesh/MeshImpl.h"
#include "vexa/mesh/mesh_geometry_internal.h"

namespace UXS {

MeshSmoothList::MeshSmoothList(const Mesh::Impl& mesh) : mLists(mesh.mVertices.size()) {
  for (unsigned int t = 0; t < mesh.mTriangles.size(); ++t) add(mesh, t);
}

MeshSmoothList::MeshSmoothList(const Mesh::Impl& mesh, const std::vector<unsigned int>& triangles)
    : mLists(mesh.mVertices.size()) {
  for (const unsigned int t : triangles) add(mesh, t);
}

// A triangle with one vertex at two corners is in its list twice and weighs twice in its normal.
void MeshSmoothList::add(const Mesh::Impl& mesh, unsigned int triangle) {
  const Mesh::Corners& c = entry(mesh.mTriangles, triangle);
  for (const unsigned int vertex : {c.x, c.y, c.z}) entry(mLists, vertex).push_back(triangle);
}

}  // namespace UXS
