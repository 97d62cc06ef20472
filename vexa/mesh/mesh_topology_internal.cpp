#include "vexa/mesh/mesh_topology_internal.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstdint>
#include <numeric>
#include <stdexcept>

#include "vexa/mesh/mesh_geometry_internal.h"

namespace UXS {

namespace {

// The first and the last of the triangles that share an edge; there is at least one.
struct Sharing {
  unsigned int mFirst, mLast;
};

// The triangles around one vertex with the two other vertices of each, searched for one of those:
// one by one when they are few, by bisection when they are many, so that a fan stays linear.
class Neighbours {
 public:
  void gather(unsigned int vertex, const std::vector<Mesh::Corners>& triangles,
              VertexTriangleAdjacency::Range sharing);
  // The triangles that have the vertex and b, which is beside the vertex in one of them.
  Sharing sharing(unsigned int b) const;

 private:
  // A closed mesh has six triangles around a vertex; up to here a walk beats sorting.
  static constexpr std::size_t kFew = 32;
  struct Spoke {
    unsigned int mTriangle, mNext, mPrevious;
  };

  Sharing searchFew(unsigned int b) const;
  Sharing searchSorted(unsigned int b) const;

  unsigned int mVertex = 0;
  VertexTriangleAdjacency::Range mSharing{};
  std::array<Spoke, kFew> mFew{};
  std::vector<std::uint64_t> mSorted;  // a vertex, then a triangle that has it
};

void Neighbours::gather(unsigned int vertex, const std::vector<Mesh::Corners>& triangles,
                        VertexTriangleAdjacency::Range sharing) {
  assert(std::is_sorted(sharing.begin(), sharing.end()));
  mVertex = vertex;
  mSharing = sharing;
  mSorted.clear();
  std::size_t i = 0;
  for (const unsigned int t : sharing) {
    const Mesh::Corners& c = entry(triangles, t);
    const unsigned int next = c.x == vertex ? c.y : c.y == vertex ? c.z : c.x;
    const unsigned int previous = c.x == vertex ? c.z : c.y == vertex ? c.x : c.y;
    if (sharing.size() <= kFew) {
      mFew[i++] = {t, next, previous};
    } else {
      mSorted.push_back(std::uint64_t{next} << 32 | t);
      mSorted.push_back(std::uint64_t{previous} << 32 | t);
    }
  }
  std::sort(mSorted.begin(), mSorted.end());
}

Sharing Neighbours::sharing(unsigned int b) const {
  // An edge between equal corners belongs to all triangles of the vertex.
  if (b == mVertex) return {*mSharing.begin(), mSharing.end()[-1]};
  return mSharing.size() <= kFew ? searchFew(b) : searchSorted(b);
}

Sharing Neighbours::searchFew(unsigned int b) const {
  const auto has = [b](const Spoke& s) { return s.mNext == b || s.mPrevious == b; };
  std::size_t first = 0, last = mSharing.size() - 1;
  while (!has(mFew[first])) ++first;
  while (!has(mFew[last])) --last;
  return {mFew[first].mTriangle, mFew[last].mTriangle};
}

Sharing Neighbours::searchSorted(unsigned int b) const {
  const auto key = std::uint64_t{b} << 32;
  const auto first = std::lower_bound(mSorted.begin(), mSorted.end(), key);
  const auto end = std::upper_bound(first, mSorted.end(), key | 0xFFFFFFFF);
  return {std::uint32_t(*first), std::uint32_t(end[-1])};
}

// What becomes of an edge of a triangle: the last triangle that shares it decides if it comes
// later; a boundary edge is drawn; else an earlier triangle has decided, and this one never draws.
constexpr unsigned int kBoundary = 0xFFFFFFFF, kNever = 0xFFFFFFFE;

unsigned int fateOf(unsigned int triangle, const Sharing& sharing) {
  if (sharing.mLast > triangle) return sharing.mLast;
  return sharing.mFirst == triangle ? kBoundary : kNever;
}

// The fates of the three edges of each triangle, vertex by vertex: all edges that leave a vertex
// are found among the triangles around it, so the whole takes time in proportion to the triangles.
std::vector<Mesh::Corners> edgeFates(const std::vector<Mesh::Corners>& triangles,
                                     const VertexTriangleAdjacency& adjacency) {
  std::vector<Mesh::Corners> fates(triangles.size());
  Neighbours neighbours;
  for (unsigned int a = 0; a < adjacency.size(); ++a) {
    neighbours.gather(a, triangles, adjacency[a]);
    for (const unsigned int t : adjacency[a]) {
      const Mesh::Corners& c = triangles[t];
      if (c.x == a) fates[t].x = fateOf(t, neighbours.sharing(c.y));
      if (c.y == a) fates[t].y = fateOf(t, neighbours.sharing(c.z));
      if (c.z == a) fates[t].z = fateOf(t, neighbours.sharing(c.x));
    }
  }
  return fates;
}

// Disjoint sets of vertices. Invariant: following mParent from a vertex ends at its set's
// representative, which is its own parent.
class DisjointSets {
 public:
  explicit DisjointSets(std::size_t vertices) : mParent(vertices) {
    std::iota(mParent.begin(), mParent.end(), 0U);
  }
  unsigned int representative(unsigned int v) {
    while (entry(mParent, v) != v) v = mParent[v] = mParent[mParent[v]];  // halves the way
    return v;
  }
  // The lower index represents both, so that neighbours find it at once.
  void unite(unsigned int a, unsigned int b) {
    a = representative(a), b = representative(b);
    if (a < b) mParent[b] = a;
    if (b < a) mParent[a] = b;
  }

 private:
  std::vector<unsigned int> mParent;
};

}  // namespace

VertexTriangleAdjacency::VertexTriangleAdjacency(const std::vector<Mesh::Corners>& triangles,
                                                 std::size_t vertices)
    : mTriangles(3 * triangles.size()), mOffsets(vertices + 2) {
  // Counting sort. Counts are stored two slots ahead, so after the prefix sum mOffsets[v + 1] is
  // where v starts; filling moves it to where v + 1 starts.
  for (const Mesh::Corners& c : triangles) {
    for (const unsigned int v : {c.x, c.y, c.z}) ++entry(mOffsets, std::size_t{v} + 2);
  }
  for (std::size_t v = 2; v < mOffsets.size(); ++v) mOffsets[v] += mOffsets[v - 1];
  for (unsigned int t = 0; t < triangles.size(); ++t) {
    const Mesh::Corners& c = triangles[t];
    for (const unsigned int v : {c.x, c.y, c.z}) mTriangles[mOffsets[std::size_t{v} + 1]++] = t;
  }
  mOffsets.pop_back();
}

EdgeCandidates findEdgeCandidates(const std::vector<Mesh::Corners>& triangles,
                                  const VertexTriangleAdjacency& adjacency) {
  const std::vector<Mesh::Corners> fates = edgeFates(triangles, adjacency);
  EdgeCandidates candidates;
  candidates.mEdges.reserve(triangles.size() * 3 / 2);  // as many as a closed mesh has
  candidates.mFaces.reserve(triangles.size() * 3 / 2);
  candidates.mIsBoundary.reserve(triangles.size() / 5);  // 3 / 2 bits each, rounded up
  const auto add = [&](unsigned int t, unsigned int a, unsigned int b, unsigned int fate) {
    if (fate == kNever) return;
    const std::size_t i = candidates.mEdges.size();
    const bool isBoundary = fate == kBoundary;
    candidates.mEdges.emplace_back(a, b);
    candidates.mFaces.push_back({9 * t, isBoundary ? 0 : 9 * fate});
    if (i % 8 == 0) candidates.mIsBoundary.push_back(0);
    if (isBoundary) candidates.mIsBoundary.back() |= static_cast<unsigned char>(1U << i % 8);
  };
  for (unsigned int t = 0; t < triangles.size(); ++t) {
    const auto& [a, b, c] = triangles[t];
    add(t, a, b, fates[t].x);
    add(t, b, c, fates[t].y);
    add(t, c, a, fates[t].z);
  }
  return candidates;
}

FrameTopology::FrameTopology(const std::vector<Mesh::Corners>& triangles, std::size_t vertices) {
  // A triangle has nine floats of corner normals, and offsets in floats are 32 bits.
  constexpr std::size_t kMost = 0xFFFFFFFF / 9;
  if (vertices > kMost || triangles.size() >= kMost) throw std::length_error("Mesh : too large");
  mEdges = findEdgeCandidates(triangles, VertexTriangleAdjacency(triangles, vertices));
  mOffsets.reserve(triangles.size());
  for (const auto& [a, b, c] : triangles) mOffsets.emplace_back(3 * a, 3 * b, 3 * c);
  unsigned int highest = 0;
  for (unsigned int t = 0; t < triangles.size(); ++t) {
    const auto& [a, b, c] = triangles[t];
    const unsigned int own = std::max({a, b, c});
    if (own > highest) mAtHighestVertex.clear();
    if (own >= highest) mAtHighestVertex.push_back(t);
    highest = std::max(own, highest);
  }
}

// Triangles are connected through their vertices, across sections as well. The numbers are given in
// a second walk, in the order of the triangles, so that they do not depend on how the sets were
// united.
std::vector<unsigned int> labelComponents(const std::vector<Mesh::Corners>& triangles,
                                          const std::vector<unsigned int>& sections,
                                          std::size_t vertices) {
  DisjointSets sets(vertices);
  for (const auto& [a, b, c] : triangles) sets.unite(a, b), sets.unite(a, c);
  std::vector<unsigned int> labels(triangles.size());
  std::vector<unsigned int> labelOfSet(vertices, kNever);
  unsigned int next = 0;
  for (std::size_t s = 0; s < sections.size(); ++s) {
    const std::size_t end = s + 1 < sections.size() ? sections[s + 1] : triangles.size();
    for (unsigned int t = sections[s]; t < end; ++t) {
      unsigned int& label = labelOfSet[sets.representative(triangles[t].x)];
      const bool isNew = label == kNever;
      if (isNew) label = next;
      // Required behaviour: the first triangle of a section uses up a number.
      if (isNew || t == sections[s]) ++next;
      labels[t] = label;
    }
  }
  return labels;
}

}  // namespace UXS
