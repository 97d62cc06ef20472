#include "vexa/mesh/Mesh.h"

#include <cmath>

#include "vexa/mesh/MeshImpl.h"
#include "vexa/mesh/mesh_geometry_internal.h"

namespace UXS {

Mesh::Mesh() : mImpl(new Impl) {}
Mesh::~Mesh() = default;

// Every getter reads what the last commit derived. An editor that is still open changes the arrays
// that commits read, so positions and triangles may be newer than edges and normals.
const std::vector<Mesh::Position>& Mesh::GetVerticesArray() const { return mImpl->mVertices; }
const std::vector<Mesh::Corners>& Mesh::GetTrianglesArray() const { return mImpl->mTriangles; }
const std::vector<Oru::TVector2D<unsigned int>>& Mesh::GetEdgesArray() const {
  return mImpl->mEdges;
}
double Mesh::GetDate() const { return mImpl->mDate; }
const Oru::TBox3D<float>& Mesh::GetAABB() const { return mImpl->mAABB; }
Oru::TBox3D<float> Mesh::GetMaterialAABB(unsigned int material) const {
  return mImpl->mMaterialAABBs[material];
}

Mesh::CornerPositions Mesh::GetTriangleCoords(unsigned int triangle) const {
  const Corners& c = entry(mImpl->mTriangles, triangle);
  const auto& vertices = mImpl->mVertices;
  return {entry(vertices, c.x), entry(vertices, c.y), entry(vertices, c.z)};
}

Mesh::Position Mesh::GetTriangleNormal(unsigned int triangle) const {
  return mImpl->ProcessTriangleNormal(triangle);
}

const Mesh::CornerPositions& Mesh::GetTriangleSmoothNormals(unsigned int triangle) const {
  return entry(mImpl->mSmoothNormals, triangle);
}

Mesh::Position Mesh::GetSmoothNormal(unsigned int triangle, const Position& weights) const {
  const CornerPositions& normals = GetTriangleSmoothNormals(triangle);
  const Position n =
      normals.x * weights.x + normals.y * weights.y + normals.z * weights.z;  // order: exact floats
  // Corner normals that cancel leave only rounding, which has no direction.
  const float squaredLength = dotXYZ(n, n);
  return squaredLength > 1e-8f ? scaledToUnit(n, squaredLength) : Position::ZeroVector;
}

bool Mesh::HasUVCoords() const { return !mImpl->mUVCoords.empty(); }
const Mesh::CornerUVs& Mesh::GetTriangleUVCoords(unsigned int triangle) const {
  return entry(mImpl->mUVCoords, triangle);
}
unsigned int Mesh::GetTriangleMaterialID(unsigned int triangle) const {
  return entry(mImpl->mMaterialIDs, triangle);
}
unsigned int Mesh::GetTriangleGroupID(unsigned int triangle) const {
  return entry(mImpl->mGroupIDs, triangle);
}

// A section is a run of triangles of one material, so a triangle of it is its start plus k.
unsigned int Mesh::GetSectionsCount() const { return unsigned(mImpl->mSections.size()); }
unsigned int Mesh::GetSectionMaterialID(unsigned int section) const {
  return mImpl->GetSectionMaterialID(section);
}
unsigned int Mesh::GetSectionTrianglesCount(unsigned int section) const {
  return mImpl->GetSectionTrianglesCount(section);
}
unsigned int Mesh::GetTriangleIDFromSectionTriangleID(unsigned int section, unsigned int k) const {
  return mImpl->GetTriangleIDFromSectionTriangleID(section, k);
}
Mesh::CornerPositions Mesh::GetSectionTriangleCoords(unsigned int section, unsigned int k) const {
  return GetTriangleCoords(GetTriangleIDFromSectionTriangleID(section, k));
}
Mesh::Position Mesh::GetSectionTriangleNormal(unsigned int section, unsigned int k) const {
  return GetTriangleNormal(GetTriangleIDFromSectionTriangleID(section, k));
}
const Mesh::CornerPositions& Mesh::GetSectionTriangleSmoothNormals(unsigned int section,
                                                                   unsigned int k) const {
  return GetTriangleSmoothNormals(GetTriangleIDFromSectionTriangleID(section, k));
}
Mesh::Position Mesh::GetSectionSmoothNormal(unsigned int section, unsigned int k,
                                            const Position& weights) const {
  return GetSmoothNormal(GetTriangleIDFromSectionTriangleID(section, k), weights);
}
const Mesh::CornerUVs& Mesh::GetSectionTriangleUVCoords(unsigned int section,
                                                        unsigned int k) const {
  return GetTriangleUVCoords(GetTriangleIDFromSectionTriangleID(section, k));
}

const Mesh* Mesh::GetMainMesh() const { return mImpl->mMainMesh; }
void Mesh::SetMainMesh(const Mesh* mesh) { mImpl->mMainMesh = mesh; }
bool Mesh::GetStaticMesh() const { return mImpl->mIsStatic; }
void Mesh::SetStaticMesh(bool isStatic) { mImpl->mIsStatic = isStatic; }

bool Mesh::Coplanar(const Position& a, const Position& b) {
  return 1 - std::fabs(dotXYZ(a, b)) < 1e-5f;
}

}  // namespace UXS
