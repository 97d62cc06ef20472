#include "vexa/mesh/MeshImpl.h"

#include <cmath>
#include <new>
#include <utility>

#include "vexa/mesh/MeshSmoothData.h"
#include "vexa/mesh/MeshSmoothList.h"
#include "vexa/mesh/MeshTopology_internal.h"
#include "vexa/mesh/mesh_extent_internal.h"
#include "vexa/mesh/mesh_geometry_internal.h"
#include "vexa/mesh/mesh_sorting_internal.h"
#include "vexa/support/clock.h"

namespace UXS {

namespace {

using Position = Mesh::Position;

// The angle of a triangle at a vertex. A vertex at several corners counts as corner 1 before 2
// before 0.
float angleAt(unsigned int vertex, const Mesh::Corners& corners, const MeshSmoothData::Data& data) {
  if (corners.y == vertex) return data.mAngles[1];
  if (corners.z == vertex) return data.mAngles[2];
  return data.mAngles[0];
}

bool hasCorner(const Mesh::Corners& c, unsigned int vertex) {
  return c.x == vertex || c.y == vertex || c.z == vertex;
}

// Whether two faces lie in different planes: 1e-5 is an angle of about a quarter of a degree.
// Opposite normals belong to one plane.
bool isCrease(const Position& a, const Position& b) { return 1 - std::fabs(dotZYX(a, b)) >= 1e-5f; }

}  // namespace

Mesh::Impl::Impl() : mDate(get_time()) {}

// The arrays go to the next copy.
Mesh::Impl::~Impl() {
  if (!mFrameMemory || !mTopology) return;
  mFrameMemory->mVertices.swap(mVertices);
  mFrameMemory->mSmoothNormals.swap(mSmoothNormals);
  mFrameMemory->mEdges.swap(mEdges);
  mTopology->mFrameMemory.keep(std::move(mFrameMemory));
}

unsigned int Mesh::Impl::GetSectionMaterialID(unsigned int section) const {
  // After triangles were removed, a section may begin past the last until a full commit.
  const unsigned int first = entry(mSections, section);
  return first < mMaterialIDs.size() ? mMaterialIDs[first] : 0;
}

unsigned int Mesh::Impl::GetSectionTrianglesCount(unsigned int section) const {
  const std::size_t end =
      std::size_t{section} + 1 < mSections.size() ? mSections[section + 1] : mTriangles.size();
  return unsigned(end) - entry(mSections, section);
}

unsigned int Mesh::Impl::GetTriangleIDFromSectionTriangleID(unsigned int section,
                                                            unsigned int k) const {
  return entry(mSections, section) + k;
}

Position Mesh::Impl::ProcessTriangleNormal(unsigned int triangle) const {
  const Corners& c = entry(mTriangles, triangle);
  const Position& p0 = entry(mVertices, c.x);
  const Position& p1 = entry(mVertices, c.y);
  const Position& p2 = entry(mVertices, c.z);
  const Position n = cross(p2 - p1, p0 - p1);
  const float squaredLength = dotXYZ(n, n);
  return squaredLength > 0 ? scaledToUnit(n, squaredLength) : Position::ZeroVector;
}

void Mesh::Impl::FitTriangleArrays() { adopt(fittedTriangles(*this)); }

void Mesh::Impl::ProcessTrianglesSort() { adopt(sortedTriangles(*this)); }

void Mesh::Impl::ProcessSections() { mSections = findSections(mMaterialIDs); }

void Mesh::Impl::ProcessTrianglesNormals(const MeshSmoothData& data, const MeshSmoothList& list,
                                         float angle) {
  if (!mSmoothNormals.empty()) return;
  mSmoothNormals.reserve(mTriangles.size());
  for (unsigned int t = 0; t < mTriangles.size(); ++t) {
    const auto at = [&](unsigned int corner) {
      return angle <= 0 ? data[t].mNormal
                        : ProcessTriangleSmoothNormal(t, corner, angle, data, list);
    };
    mSmoothNormals.emplace_back(at(0), at(1), at(2));
  }
}

Position Mesh::Impl::ProcessTriangleSmoothNormal(unsigned int triangle, unsigned int corner,
                                                 float angle, const MeshSmoothData& data,
                                                 const MeshSmoothList& list) const {
  assert(corner < 3);
  const Position& normal = data[triangle].mNormal;
  const float c = std::cos(angle * 0.017453292f);
  if (c >= 1) return normal;

  const Corners& corners = entry(mTriangles, triangle);
  const unsigned int vertex = corner == 0 ? corners.x : corner == 1 ? corners.y : corners.z;
  Position sum;
  for (const unsigned int u : list[vertex]) {
    const Position& other = data[u].mNormal;
    const float weight = angleAt(vertex, entry(mTriangles, u), data[u]);
    const float d = dotZYX(normal, other);
    if (d >= c) {
      sum = sum + other * weight;
    } else if (d <= -c) {
      sum = sum - other * weight;
    }
  }
  const float squaredLength = dotZYX(sum, sum);
  return squaredLength <= 0 ? Position::ZeroVector : scaledToUnit(sum, squaredLength);
}

void Mesh::Impl::ProcessAABB() {
  MeshExtent extent;
  extent.mSections.resize(mSections.size());
  if (!mMaterialAABBs.reserve(unsigned(mSections.size()))) throw std::bad_alloc();
  measureCorners(mVertices, mTriangles, mSections, extent);
  storeBoxes(extent);
}

// The cells must have room.
void Mesh::Impl::storeBoxes(const MeshExtent& extent) {
  mAABB = extent.mAll;
  mMaterialAABBs.clear();
  for (unsigned int s = 0; s < mSections.size(); ++s) {
    mMaterialAABBs.link_cell(GetSectionMaterialID(s), &extent.mSections[s]);
  }
}

// Each edge once: a later triangle that shares it decides whether it is drawn, and where there are
// only earlier ones, one of them has decided already.
//
//   B  |  A = triangle t, walking its edges a -> b. Of the triangles around a, those that have b,
//      b  too, share the edge. None: a boundary edge, drawn. The last of those after t: drawn when
//      |  the planes differ. Only some before t: not drawn here.
//      a
void Mesh::Impl::ProcessEdges(const MeshSmoothData& data, const MeshSmoothList& list) {
  const auto isDrawn = [&](unsigned int t, unsigned int a, unsigned int b) {
    bool isShared = false, isDrawnByOther = false;
    for (const unsigned int u : list[a]) {
      if (u == t || !hasCorner(entry(mTriangles, u), b)) continue;
      if (t < u) isDrawnByOther = isCrease(data[t].mNormal, data[u].mNormal);
      isShared = true;
    }
    return !isShared || isDrawnByOther;
  };
  std::vector<Oru::TVector2D<unsigned int>> edges;
  for (unsigned int t = 0; t < mTriangles.size(); ++t) {
    const auto& [a, b, c] = mTriangles[t];
    if (isDrawn(t, a, b)) edges.emplace_back(a, b);
    if (isDrawn(t, b, c)) edges.emplace_back(b, c);
    if (isDrawn(t, c, a)) edges.emplace_back(c, a);
  }
  mEdges.swap(edges);
}

// A vertex is left for good once its triangles are labelled, and a triangle is labelled when it
// enters the work list, so that each is visited once.
void Mesh::Impl::ProcessGroupID(const MeshSmoothList& list) {
  std::vector<unsigned int> labels(mTriangles.size(), kNoGroup), work;
  std::vector<bool> isVertexDone(list.size(), false);
  unsigned int label = 0;
  const auto add = [&](unsigned int t) {
    if (labels[t] != kNoGroup) return;
    labels[t] = label;
    work.push_back(t);
  };
  const auto flood = [&](unsigned int seed) {
    work.clear();
    add(seed);
    // NOLINTNEXTLINE(modernize-loop-convert): add() makes the list longer meanwhile.
    for (std::size_t i = 0; i < work.size(); ++i) {
      const auto& [a, b, c] = mTriangles[work[i]];
      for (const unsigned int vertex : {a, b, c}) {
        if (isVertexDone[vertex]) continue;
        isVertexDone[vertex] = true;
        for (const unsigned int t : list[vertex]) add(t);
      }
    }
    ++label;
  };
  for (unsigned int s = 0; s < mSections.size(); ++s) {
    const unsigned int first = mSections[s], end = first + GetSectionTrianglesCount(s);
    flood(first);
    for (unsigned int t = first; t < end; ++t) {
      if (labels[t] == kNoGroup) flood(t);
    }
  }
  mGroupIDs = std::move(labels);
}

}  // namespace UXS
