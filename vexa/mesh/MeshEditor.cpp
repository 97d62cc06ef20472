#include "vexa/mesh/MeshEditor.h"

#include <algorithm>
#include <cstddef>
#include <new>

#include "vexa/mesh/MeshImpl.h"
#include "vexa/mesh/VertexFinder_internal.h"
#include "vexa/mesh/mesh_geometry_internal.h"
#include "vexa/support/clock.h"

namespace UXS {

namespace {

using PositionTable = uxs_hashtable<Oru::TVector3D<float>, unsigned int>;

// The elements of an array for writing. A shared one is copied first when copies of the mesh have
// it.
template <class T>
std::vector<T>& writable(std::vector<T>& values) {
  return values;
}
template <class T>
std::vector<T>& writable(SharedVector<T>& values) {
  return values.edit();
}

template <class Values, class T>
void append(Values& ioValues, std::size_t triangle, const T& value) {
  auto& values = writable(ioValues);
  values.resize(triangle);  // zeros for the triangles before, if they had no value
  values.push_back(value);
}

template <class Values, class T>
void overwrite(Values& ioValues, std::size_t triangles, unsigned int i, const T& value) {
  auto& values = writable(ioValues);
  values.resize(triangles);
  entry(values, i) = value;
}

template <class Values>
void erase(Values& ioValues, unsigned int i) {
  if (i >= ioValues.size()) return;
  auto& values = writable(ioValues);
  values.erase(values.begin() + std::ptrdiff_t(i));
}

}  // namespace

Mesh::EditorBase::EditorBase(Mesh& mesh, bool keepDate) : mMesh(&mesh), mKeepDate(keepDate) {}

Mesh::EditorBase::~EditorBase() {
  if (isOpen()) dateMesh();
}

void Mesh::EditorBase::dateMesh() {
  if (!mKeepDate) data().mDate = get_time();
}

void Mesh::EditorBase::SetVerticesCount(unsigned int n) { data().mVertices.reserve(n); }

// Reserves for three vertices a triangle, which is what a mesh without shared vertices needs.
void Mesh::EditorBase::SetTrianglesCount(unsigned int n) {
  data().mVertices.reserve(std::size_t{3} * n);
  data().mTriangles.edit().reserve(n);
  data().mSmoothNormals.reserve(n);
  data().mUVCoords.edit().reserve(n);
  data().mMaterialIDs.edit().reserve(n);
}

unsigned int Mesh::EditorBase::AddVertex(const Position& position) {
  data().mVertices.push_back(position);
  return unsigned(data().mVertices.size() - 1);
}

// The corners come last: when memory runs out before, the arrays per triangle are longer than the
// triangles, and the next commit cuts them.
unsigned int Mesh::EditorBase::AddTriangle(const Corners& corners, unsigned int material) {
  const std::size_t triangle = data().mTriangles.size();
  append(data().mMaterialIDs, triangle, material);
  append(data().mUVCoords, triangle, CornerUVs());
  append(data().mSmoothNormals, triangle, CornerPositions());
  data().mTriangles.push_back(corners);
  return unsigned(triangle);
}

void Mesh::EditorBase::SetVertex(unsigned int vertex, const Position& position) {
  entry(data().mVertices, vertex) = position;
}

void Mesh::EditorBase::SetTriangleMaterialID(unsigned int triangle, unsigned int material) {
  overwrite(data().mMaterialIDs, data().mTriangles.size(), triangle, material);
}

void Mesh::EditorBase::SetTriangleUVCoords(unsigned int triangle, const CornerUVs& uv) {
  overwrite(data().mUVCoords, data().mTriangles.size(), triangle, uv);
}

void Mesh::EditorBase::SetTriangleSmoothNormals(unsigned int triangle,
                                                const CornerPositions& normals) {
  overwrite(data().mSmoothNormals, data().mTriangles.size(), triangle, normals);
}

void Mesh::EditorBase::RemoveTriangle(unsigned int triangle) {
  erase(data().mTriangles, triangle);
  erase(data().mMaterialIDs, triangle);
  erase(data().mUVCoords, triangle);
  erase(data().mSmoothNormals, triangle);
}

void Mesh::EditorBase::RemoveAllTriangles() {
  data().mTriangles.clear();
  data().mMaterialIDs.clear();
  data().mUVCoords.clear();
  data().mSmoothNormals.clear();
}

void Mesh::EditorBase::Copy(const Mesh& source, bool skipNormals) {
  if (source.mImpl != mMesh->mImpl) data().Copy(*source.mImpl, skipNormals);
}

Mesh::Position* Mesh::EditorBase::CopyWithoutPositions(const Mesh& source) {
  if (source.mImpl != mMesh->mImpl) data().CopyWithoutPositions(*source.mImpl);
  return data().mVertices.data();
}

void Mesh::EditorBase::MergeTriangleVertices(const std::vector<unsigned int>& triangles) try {
  VertexFinder finder(data().mVertices, 3 * triangles.size());
  std::vector<Corners>& all = data().mTriangles.edit();
  for (const unsigned int t : triangles) finder.merge(entry(all, t));
  finder.finish();
} catch (const std::bad_alloc&) {  // what is left keeps its vertices
}

void Mesh::EditorBase::MergeTriangleVertices(unsigned int material) try {
  Impl& mesh = data();
  std::vector<Corners>& all = mesh.mTriangles.edit();
  const std::size_t count = all.size();
  for (std::size_t s = 0; s < mesh.mSections.size(); ++s) {
    const unsigned int begin = mesh.mSections[s];
    if (begin >= count || entry(mesh.mMaterialIDs, begin) != material) continue;
    // Triangles may have been removed since the sections were made.
    const std::size_t end =
        s + 1 < mesh.mSections.size() ? std::min<std::size_t>(mesh.mSections[s + 1], count) : count;
    VertexFinder finder(mesh.mVertices, 3 * (end - begin));
    for (std::size_t t = begin; t < end; ++t) finder.merge(all[t]);
    finder.finish();
  }
} catch (const std::bad_alloc&) {
}

// What the three ways to end an editor do:
//
//   destructor   derives, dates; memory that runs out ends the program, as nothing may be thrown
//   Commit()     derives, dates and closes; memory that runs out throws, and the mesh is as it was
//   Abandon()    closes
Mesh::Editor::~Editor() {
  if (isOpen()) data().Process();
}

void Mesh::Editor::Commit() try {
  data().Process();
  dateMesh();
  Abandon();
} catch (...) {
  Abandon();
  throw;
}

Mesh::LightWeightEditor::~LightWeightEditor() {
  if (isOpen()) data().ProcessLightWeight();
}

// One triangle, with the table that hosts know; whole meshes are merged by VertexFinder.
void InternalMergeTriangleVertices(unsigned int triangle, Mesh::Impl& mesh, PositionTable& table) {
  Mesh::Corners& corners = entry(mesh.mTriangles.edit(), triangle);
  for (unsigned int* const corner : {&corners.x, &corners.y, &corners.z}) {
    const Mesh::Position& position = entry(mesh.mVertices, *corner);
    try {
      if (const unsigned int* const stored = table.find(position)) {
        *corner = *stored;
      } else {
        table.link_cell(position, corner);
      }
    } catch (...) {  // the corner keeps its vertex
    }
  }
}

}  // namespace UXS
