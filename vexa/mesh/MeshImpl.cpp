#include "vexa/mesh/MeshImpl.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <new>
#include <numeric>

#include "vexa/mesh/MeshSmoothData.h"
#include "vexa/mesh/MeshSmoothList.h"
#include "vexa/mesh/mesh_geometry_internal.h"
#include "vexa/mesh/mesh_topology_internal.h"
#include "vexa/support/clock.h"

namespace UXS {

namespace {

using Position = Mesh::Position;

/// Zeros of either sign; a NaN is not zero.
template <class T>
bool isAllZero(const std::vector<T>& values) {
  return std::all_of(values.begin(), values.end(), [](const T& value) { return value == T(); });
}

/// The positions of the keys in ascending order, equal ones as they stand: a radix sort, from the
/// lowest byte to the highest that any key has.
std::vector<unsigned int> ascendingOrder(const std::vector<unsigned int>& keys) {
  std::vector<unsigned int> order(keys.size()), next(keys.size());
  std::iota(order.begin(), order.end(), 0U);
  const unsigned int highest = *std::max_element(keys.begin(), keys.end());
  for (unsigned int shift = 0; shift < 32 && highest >> shift != 0; shift += 8) {
    std::array<std::size_t, 257> starts{};
    const auto digit = [&](unsigned int i) { return keys[i] >> shift & 0xFF; };
    for (const unsigned int i : order) ++starts[digit(i) + 1];
    std::partial_sum(starts.begin(), starts.end(), starts.begin());
    for (const unsigned int i : order) next[starts[digit(i)]++] = i;
    order.swap(next);
  }
  return order;
}

/// Entry k becomes the one that stood at order[k].
template <class T>
void reorder(std::vector<T>& ioValues, const std::vector<unsigned int>& order) {
  if (ioValues.empty()) return;
  std::vector<T> sorted;
  sorted.reserve(order.size());
  for (const unsigned int i : order) sorted.push_back(ioValues[i]);
  ioValues.swap(sorted);
}

/// The angle of a triangle at a vertex. A vertex at several corners counts as corner 1 before 2
/// before 0.
float angleAt(unsigned int vertex, const Mesh::Corners& corners, const MeshSmoothData::Data& data) {
  if (corners.y == vertex) return data.mAngles[1];
  if (corners.z == vertex) return data.mAngles[2];
  return data.mAngles[0];
}

bool hasCorner(const Mesh::Corners& c, unsigned int vertex) {
  return c.x == vertex || c.y == vertex || c.z == vertex;
}

// Whether two faces lie in different planes; opposite normals belong to one plane.
bool isCrease(const Position& a, const Position& b) { return 1 - std::fabs(dotZYX(a, b)) >= 1e-5f; }

/// A NaN never lowers the minimum, and as a maximum it gives way to the next point.
void extend(float& ioMin, float& ioMax, float p) {
  ioMin = p <= ioMin ? p : ioMin;
  ioMax = p <= ioMax ? ioMax : p;
}

void extend(Oru::TBox3D<float>& ioBox, const Position& p) {
  if (!ioBox.mIsValid) {
    ioBox = {p, p, true};
    return;
  }
  extend(ioBox.mMin.x, ioBox.mMax.x, p.x);
  extend(ioBox.mMin.y, ioBox.mMax.y, p.y);
  extend(ioBox.mMin.z, ioBox.mMax.z, p.z);
}

}  // namespace

Mesh::Impl::Impl() : mDate(get_time()) {}

unsigned int Mesh::Impl::GetSectionMaterialID(unsigned int section) const {
  return entry(mMaterialIDs, entry(mSections, section));
}

unsigned int Mesh::Impl::GetSectionTrianglesCount(unsigned int section) const {
  const std::size_t end =
      std::size_t{section} + 1 < mSections.size() ? mSections[section + 1] : mTriangles.size();
  return static_cast<unsigned int>(end) - entry(mSections, section);
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

void Mesh::Impl::Process() {
  ProcessTrianglesSort();
  ProcessSections();
  const MeshSmoothData data = MeshSmoothData::OfNormals(*this);
  const VertexTriangles around(mTriangles, mVertices.size());
  fillFlatNormals(data);
  ProcessAABB();
  fillEdges(data, around, around);
  mGroupIDs = labelGroups(mTriangles, mSections, around);
}

void Mesh::Impl::ProcessLightWeight() {
  FitTriangleArrays();
  const MeshSmoothData data = MeshSmoothData::OfNormals(*this);
  const VertexTriangles around(mTriangles, mVertices.size());
  fillFlatNormals(data);
  fillEdges(data, around, around);
  mGroupIDs.resize(mTriangles.size(), kNoGroup);
}

void Mesh::Impl::FitTriangleArrays() {
  const std::size_t count = mTriangles.size();
  mMaterialIDs.resize(count);
  if (!mUVCoords.empty()) mUVCoords.resize(count);
  if (!mSmoothNormals.empty()) mSmoothNormals.resize(count);
}

void Mesh::Impl::ProcessTrianglesSort() {
  FitTriangleArrays();
  if (isAllZero(mUVCoords)) mUVCoords.clear();
  if (isAllZero(mSmoothNormals)) mSmoothNormals.clear();

  if (std::is_sorted(mMaterialIDs.begin(), mMaterialIDs.end())) return;
  const std::vector<unsigned int> order = ascendingOrder(mMaterialIDs);
  reorder(mTriangles, order);
  reorder(mMaterialIDs, order);
  reorder(mUVCoords, order);
  reorder(mSmoothNormals, order);
}

void Mesh::Impl::ProcessSections() {
  mSections.clear();
  mSections.reserve(200);
  for (std::size_t i = 0; i < mMaterialIDs.size(); ++i) {
    if (i == 0 || mMaterialIDs[i] != mMaterialIDs[i - 1]) {
      mSections.push_back(static_cast<unsigned int>(i));
    }
  }
}

void Mesh::Impl::ProcessTrianglesNormals(const MeshSmoothData& data, const MeshSmoothList& list,
                                         float angle) {
  if (angle <= 0) return fillFlatNormals(data);
  if (!mSmoothNormals.empty()) return;
  mSmoothNormals.reserve(mTriangles.size());
  for (unsigned int t = 0; t < mTriangles.size(); ++t) {
    const auto at = [&](unsigned int corner) {
      return ProcessTriangleSmoothNormal(t, corner, angle, data, list);
    };
    mSmoothNormals.emplace_back(at(0), at(1), at(2));
  }
}

void Mesh::Impl::fillFlatNormals(const MeshSmoothData& data) {
  if (!mSmoothNormals.empty()) return;
  mSmoothNormals.reserve(mTriangles.size());
  for (std::size_t t = 0; t < mTriangles.size(); ++t) {
    const Position& n = data[t].mNormal;
    mSmoothNormals.emplace_back(n, n, n);
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
  mAABB = {};
  mMaterialAABBs.clear();
  for (unsigned int s = 0; s < mSections.size(); ++s) {
    auto* const cell = mMaterialAABBs.link_cell(GetSectionMaterialID(s), nullptr);
    if (cell == nullptr) throw std::bad_alloc();
    const unsigned int begin = mSections[s], end = begin + GetSectionTrianglesCount(s);
    for (unsigned int t = begin; t < end; ++t) {
      const Corners& c = entry(mTriangles, t);
      for (const unsigned int vertex : {c.x, c.y, c.z}) {
        extend(cell->value, entry(mVertices, vertex));
        extend(mAABB, entry(mVertices, vertex));
      }
    }
  }
}

// A later triangle decides whether an edge is drawn; an earlier one has decided already.
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

void Mesh::Impl::fillEdges(const MeshSmoothData& data, const VertexTriangles& around,
                           const VertexTriangles& sharing) {
  mEdges.clear();
  for (const sEdgeCandidate& edge : findEdgeCandidates(mTriangles, around, sharing)) {
    if (edge.mNeighbour == kNoNeighbour ||
        isCrease(data[edge.mTriangle].mNormal, data[edge.mNeighbour].mNormal)) {
      mEdges.emplace_back(edge.mFrom, edge.mTo);
    }
  }
}

void Mesh::Impl::ProcessGroupID(const MeshSmoothList& list) {
  mGroupIDs = labelGroups(mTriangles, mSections, VertexTriangles(list));
}

}  // namespace UXS
