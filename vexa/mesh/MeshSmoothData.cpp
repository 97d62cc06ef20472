#include "vexa/mesh/MeshSmoothData.h"

#include <cmath>

#include "vexa/mesh/MeshImpl.h"
#include "vexa/mesh/mesh_geometry_internal.h"

namespace UXS {

namespace {

// The angle between two edges: acos(a.b * (1 / sqrt(|b|^2 |a|^2))), each operation rounded.
float angleBetween(const Oru::TVector3D<float>& a, const Oru::TVector3D<float>& b,
                   float squaredLengths) {
  const float root = std::sqrt(squaredLengths);
  return std::acos(dotXYZ(a, b) * (1 / root));
}

}  // namespace

//        2            The angle at 0 lies between 01 and 02, that at 1 between 10 and 12. The third
//       / \ .         is what they leave of pi, which saves an arc cosine.
//      0---1
void MeshSmoothData::Data::Initialize(const Mesh::Impl& mesh, unsigned int triangle) {
  const Mesh::Corners& c = entry(mesh.mTriangles, triangle);
  const Mesh::Position& p0 = entry(mesh.mVertices, c.x);
  const Mesh::Position& p1 = entry(mesh.mVertices, c.y);
  const Mesh::Position& p2 = entry(mesh.mVertices, c.z);
  const Mesh::Position e01 = p1 - p0, e02 = p2 - p0, e12 = p2 - p1;
  mNormal = mesh.ProcessTriangleNormal(triangle);
  mAngles[0] = angleBetween(e01, e02, dotXYZ(e02, e02) * dotXYZ(e01, e01));
  mAngles[1] = angleBetween(-e01, e12, dotXYZ(e12, e12) * dotXYZ(e01, e01));
  mAngles[2] = 3.1415927f - mAngles[0] - mAngles[1];  // order: exact floats
}

MeshSmoothData::MeshSmoothData(const Mesh::Impl& mesh) : mData(mesh.mTriangles.size()) {
  for (unsigned int t = 0; t < mData.size(); ++t) mData[t].Initialize(mesh, t);
}

MeshSmoothData::MeshSmoothData(const Mesh::Impl& mesh, const std::vector<unsigned int>& triangles)
    : mData(mesh.mTriangles.size()) {
  for (const unsigned int t : triangles) entry(mData, t).Initialize(mesh, t);
}

}  // namespace UXS
