// The operations of the editor that smooth and turn corner normals.
#include <algorithm>
#include <cstddef>
#include <numeric>

#include "vexa/mesh/MeshEditor.h"
#include "vexa/mesh/MeshImpl.h"
#include "vexa/mesh/MeshSmoothData.h"
#include "vexa/mesh/MeshSmoothList.h"
#include "vexa/mesh/mesh_geometry_internal.h"

namespace UXS {

namespace {

using Indices = std::vector<unsigned int>;

// A triangle that is listed twice must not weigh twice.
Indices withoutRepeats(const Indices& triangles, std::size_t count) {
  std::vector<bool> isListed(count);
  Indices once;
  for (const unsigned int t : triangles) {
    if (!isListed[t]) once.push_back(t);
    isListed[t] = true;
  }
  return once;
}

Indices trianglesOf(const Mesh::Impl& mesh, unsigned int material) {
  Indices triangles;
  const std::size_t count = std::min(mesh.mMaterialIDs.size(), mesh.mTriangles.size());
  for (unsigned int t = 0; t < count; ++t) {
    if (mesh.mMaterialIDs[t] == material) triangles.push_back(t);
  }
  return triangles;
}

// The normals of the mesh, one per triangle. Where there are none yet, or zeros only, a commit
// would fill in the face normals; they are filled in here, so that the commit keeps what is set.
std::vector<Mesh::CornerPositions> normalsOf(const Mesh::Impl& mesh) {
  std::vector<Mesh::CornerPositions> normals = mesh.mSmoothNormals;
  const bool isUnset = std::all_of(normals.begin(), normals.end(),
                                   [](const auto& n) { return n == Mesh::CornerPositions(); });
  normals.resize(mesh.mTriangles.size());
  for (unsigned int t = 0; isUnset && t < normals.size(); ++t) {
    const Mesh::Position n = mesh.ProcessTriangleNormal(t);
    normals[t] = {n, n, n};
  }
  return normals;
}

constexpr unsigned int kUnused = 0xFFFFFFFF;

// Smooths among the listed triangles. They are made a mesh of their own, so that the cost does not
// depend on how large the whole mesh is. ioNumbers has an entry for each vertex, kUnused before and
// after.
void smooth(const Mesh::Impl& mesh, const Indices& triangles, float angle, Indices& ioNumbers,
            std::vector<Mesh::CornerPositions>& ioNormals) {
  Mesh::Impl part;
  Indices used;
  const auto numberOf = [&](unsigned int vertex) {
    unsigned int& number = entry(ioNumbers, vertex);
    if (number == kUnused) {
      number = unsigned(used.size());
      used.push_back(vertex);
      part.mVertices.push_back(mesh.mVertices[vertex]);
    }
    return number;
  };
  for (const unsigned int t : triangles) {
    const auto& [a, b, c] = mesh.mTriangles[t];
    part.mTriangles.push_back({numberOf(a), numberOf(b), numberOf(c)});
  }
  for (const unsigned int vertex : used) ioNumbers[vertex] = kUnused;
  const MeshSmoothData data(part);
  const MeshSmoothList list(part);
  for (unsigned int i = 0; i < triangles.size(); ++i) {
    const auto at = [&](unsigned int corner) {
      return part.ProcessTriangleSmoothNormal(i, corner, angle, data, list);
    };
    ioNormals[triangles[i]] = {at(0), at(1), at(2)};
  }
}

// A normal that looks away from its face is reversed; a NaN stays.
Mesh::Position towards(const Mesh::Position& face, const Mesh::Position& normal) {
  return dotXYZ(face, normal) < 0 ? -normal : normal;
}

}  // namespace

void Mesh::EditorBase::ReorientTriangleSmoothNormals(const std::vector<unsigned int>& triangles) {
  Impl& mesh = data();
  for (const unsigned int t : triangles) {
    if (t >= mesh.mSmoothNormals.size()) continue;  // it has no normals yet
    const Position face = mesh.ProcessTriangleNormal(t);
    CornerPositions& n = mesh.mSmoothNormals[t];
    n = {towards(face, n.x), towards(face, n.y), towards(face, n.z)};
  }
}

void Mesh::EditorBase::ReorientTriangleSmoothNormals(unsigned int material) {
  ReorientTriangleSmoothNormals(trianglesOf(data(), material));
}

void Mesh::EditorBase::SmoothTriangleNormals(const std::vector<unsigned int>& triangles,
                                             float angle) {
  std::vector<CornerPositions> normals = normalsOf(data());
  Indices numbers(data().mVertices.size(), kUnused);
  smooth(data(), withoutRepeats(triangles, normals.size()), angle, numbers, normals);
  data().mSmoothNormals.swap(normals);  // last, so that a lack of memory changes nothing
}

void Mesh::EditorBase::SmoothTriangleNormals(unsigned int material, float angle) {
  SmoothTriangleNormals(trianglesOf(data(), material), angle);
}

// One angle per section; a section smooths among its own triangles only.
void Mesh::EditorBase::SmoothTriangleNormals(const std::vector<float>& angles) {
  std::vector<CornerPositions> normals = normalsOf(data());
  Indices numbers(data().mVertices.size(), kUnused);
  const auto& sections = data().mSections;
  for (std::size_t s = 0; s < std::min(angles.size(), sections.size()); ++s) {
    // Triangles may have been removed since the sections were made.
    const std::size_t end = s + 1 < sections.size() ? sections[s + 1] : normals.size();
    const std::size_t first = std::min<std::size_t>(sections[s], normals.size());
    Indices triangles(std::max(first, std::min(end, normals.size())) - first);
    std::iota(triangles.begin(), triangles.end(), sections[s]);
    smooth(data(), triangles, angles[s], numbers, normals);
  }
  data().mSmoothNormals.swap(normals);
}

}  // namespace UXS
