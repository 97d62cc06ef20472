#include <algorithm>
#include <array>
#include <cassert>
#include <cstdint>
#include <utility>

#include "vexa/mesh/MeshImpl.h"
#include "vexa/mesh/mesh_geometry_internal.h"
#include "vexa/mesh/mesh_topology_internal.h"

namespace UXS {

namespace {

/// The first and the last of the triangles that share an edge.
struct sSharing {
  bool mAny;
  unsigned int mFirst, mLast;
};

/// The triangles around one vertex with the two vertices that each has beside it, in a form that is
/// quick to search: as they are when they are few, sorted when they are many.
class Neighbours {
 public:
  void gather(unsigned int vertex, const std::vector<Mesh::Corners>& triangles,
              VertexTriangles::Range sharing);
  /// The triangles that have the vertex and b.
  sSharing sharing(unsigned int b) const;

 private:
  static constexpr std::size_t kFew = 32;
  struct sFew {
    unsigned int mTriangle, mNext, mPrevious;
  };

  sSharing searchFew(unsigned int b) const;
  sSharing searchSorted(unsigned int b) const;

  unsigned int mVertex = 0;
  VertexTriangles::Range mSharing{};
  std::array<sFew, kFew> mFew{};
  std::vector<std::uint64_t> mSorted;  // a vertex, then a triangle that has it
};

void Neighbours::gather(unsigned int vertex, const std::vector<Mesh::Corners>& triangles,
                        VertexTriangles::Range sharing) {
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

sSharing Neighbours::sharing(unsigned int b) const {
  if (mSharing.size() == 0) return {};
  // An edge between equal corners belongs to all triangles of the vertex.
  if (b == mVertex) return {true, *mSharing.begin(), mSharing.end()[-1]};
  return mSharing.size() <= kFew ? searchFew(b) : searchSorted(b);
}

sSharing Neighbours::searchFew(unsigned int b) const {
  sSharing found{};
  for (std::size_t i = 0; i < mSharing.size(); ++i) {
    if (mFew[i].mNext != b && mFew[i].mPrevious != b) continue;
    found = {true, found.mAny ? found.mFirst : mFew[i].mTriangle, mFew[i].mTriangle};
  }
  return found;
}

sSharing Neighbours::searchSorted(unsigned int b) const {
  const auto key = std::uint64_t{b} << 32;
  const auto first = std::lower_bound(mSorted.begin(), mSorted.end(), key);
  const auto end = std::upper_bound(first, mSorted.end(), key | 0xFFFFFFFF);
  if (first == end) return {};
  return {true, static_cast<unsigned int>(*first), static_cast<unsigned int>(end[-1])};
}

/// The edge is never drawn.
constexpr unsigned int kNever = 0xFFFFFFFE;

/// What the edge of a triangle depends on: the last neighbour if that comes after it, nothing, or
/// it is not drawn.
unsigned int fateOf(unsigned int triangle, const sSharing& sharing) {
  if (sharing.mAny && sharing.mLast > triangle) return sharing.mLast;
  const bool isAlone = !sharing.mAny || (sharing.mFirst == triangle && sharing.mLast == triangle);
  return isAlone ? kNoNeighbour : kNever;
}

/// The fates of the three edges of each triangle.
std::vector<Mesh::Corners> edgeFates(const std::vector<Mesh::Corners>& triangles,
                                     const VertexTriangles& around,
                                     const VertexTriangles& sharing) {
  std::vector<Mesh::Corners> fates(triangles.size());
  Neighbours neighbours;
  for (unsigned int a = 0; a < around.size(); ++a) {
    neighbours.gather(a, triangles, sharing[a]);
    for (const unsigned int t : around[a]) {
      const Mesh::Corners& c = triangles[t];
      if (c.x == a) fates[t].x = fateOf(t, neighbours.sharing(c.y));
      if (c.y == a) fates[t].y = fateOf(t, neighbours.sharing(c.z));
      if (c.z == a) fates[t].z = fateOf(t, neighbours.sharing(c.x));
    }
  }
  return fates;
}

/// Labels pieces one after the other. A vertex is left for good once its triangles are labelled,
/// and a triangle is labelled when it enters the work list: each is visited once.
class GroupLabels {
 public:
  GroupLabels(const std::vector<Mesh::Corners>& triangles, const VertexTriangles& around)
      : mTriangles(triangles),
        mAround(around),
        mLabels(triangles.size(), Mesh::Impl::kNoGroup),
        mIsVertexDone(around.size(), false) {}

  bool has(unsigned int triangle) const { return mLabels[triangle] != Mesh::Impl::kNoGroup; }

  void flood(unsigned int seed, unsigned int label) {
    mWork.clear();
    add(seed, label);
    for (std::size_t i = 0; i < mWork.size(); ++i) {
      const Mesh::Corners& c = mTriangles[mWork[i]];
      for (const unsigned int vertex : {c.x, c.y, c.z}) {
        if (mIsVertexDone[vertex]) continue;
        mIsVertexDone[vertex] = true;
        for (const unsigned int t : mAround[vertex]) add(t, label);
      }
    }
  }

  std::vector<unsigned int> take() { return std::move(mLabels); }

 private:
  void add(unsigned int triangle, unsigned int label) {
    if (has(triangle)) return;
    mLabels[triangle] = label;
    mWork.push_back(triangle);
  }

  const std::vector<Mesh::Corners>& mTriangles;
  const VertexTriangles& mAround;
  std::vector<unsigned int> mLabels;
  std::vector<bool> mIsVertexDone;
  std::vector<unsigned int> mWork;
};

}  // namespace

std::vector<sEdgeCandidate> findEdgeCandidates(const std::vector<Mesh::Corners>& triangles,
                                               const VertexTriangles& around,
                                               const VertexTriangles& sharing) {
  const std::vector<Mesh::Corners> fates = edgeFates(triangles, around, sharing);
  std::vector<sEdgeCandidate> candidates;
  for (unsigned int t = 0; t < triangles.size(); ++t) {
    const auto& [a, b, c] = triangles[t];
    if (fates[t].x != kNever) candidates.push_back({a, b, t, fates[t].x});
    if (fates[t].y != kNever) candidates.push_back({b, c, t, fates[t].y});
    if (fates[t].z != kNever) candidates.push_back({c, a, t, fates[t].z});
  }
  return candidates;
}

std::vector<unsigned int> labelGroups(const std::vector<Mesh::Corners>& triangles,
                                      const std::vector<unsigned int>& sections,
                                      const VertexTriangles& around) {
  GroupLabels labels(triangles, around);
  unsigned int label = 0;
  for (std::size_t s = 0; s < sections.size(); ++s) {
    const std::size_t end = s + 1 < sections.size() ? sections[s + 1] : triangles.size();
    for (unsigned int t = sections[s]; t < end; ++t) {
      if (t == sections[s] || !labels.has(t)) labels.flood(t, label++);
    }
  }
  return labels.take();
}

}  // namespace UXS
