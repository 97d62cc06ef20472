#include <algorithm>
#include <cassert>
#include <cstdint>

#include "vexa/mesh/MeshImpl.h"
#include "vexa/mesh/mesh_geometry_internal.h"
#include "vexa/mesh/mesh_topology_internal.h"

namespace UXS {

namespace {

/// Finds the triangles that share two vertices by a search among the neighbours of one of them, so
/// that a vertex of many triangles costs no more than its share.
class EdgeTable {
 public:
  struct sSharing {
    bool mAny;
    unsigned int mFirst, mLast;  // the lowest and the highest triangle
  };

  EdgeTable(const std::vector<Mesh::Corners>& triangles, const MeshSmoothList& list);

  sSharing trianglesAt(unsigned int a, unsigned int b) const;

 private:
  static std::uint64_t keyOf(unsigned int neighbour, unsigned int triangle) {
    return std::uint64_t{neighbour} << 32 | triangle;
  }
  static unsigned int triangleOf(std::uint64_t key) { return static_cast<unsigned int>(key); }

  const MeshSmoothList& mList;
  std::vector<std::uint64_t> mKeys;   // per vertex the neighbours with their triangles, rising
  std::vector<std::size_t> mOffsets;  // where each vertex begins, and the end
};

EdgeTable::EdgeTable(const std::vector<Mesh::Corners>& triangles, const MeshSmoothList& list)
    : mList(list) {
  mKeys.reserve(6 * triangles.size());
  mOffsets.reserve(list.size() + 1);
  mOffsets.push_back(0);
  for (unsigned int a = 0; a < list.size(); ++a) {
    assert(std::is_sorted(list[a].begin(), list[a].end()));
    for (const unsigned int t : list[a]) {
      const Mesh::Corners& c = entry(triangles, t);
      for (const unsigned int b : {c.x, c.y, c.z}) {
        if (b != a) mKeys.push_back(keyOf(b, t));
      }
    }
    std::sort(mKeys.begin() + static_cast<std::ptrdiff_t>(mOffsets.back()), mKeys.end());
    mOffsets.push_back(mKeys.size());
  }
}

EdgeTable::sSharing EdgeTable::trianglesAt(unsigned int a, unsigned int b) const {
  if (a == b) {  // an edge between equal corners belongs to all triangles of the vertex
    const auto& all = mList[a];
    return all.empty() ? sSharing{} : sSharing{true, all[0], all[all.size() - 1]};
  }
  const auto begin = mKeys.begin() + static_cast<std::ptrdiff_t>(mOffsets[a]);
  const auto end = mKeys.begin() + static_cast<std::ptrdiff_t>(mOffsets[a + 1]);
  const auto first = std::lower_bound(begin, end, keyOf(b, 0));
  const auto last = std::upper_bound(first, end, keyOf(b, 0xFFFFFFFF));
  return first == last ? sSharing{} : sSharing{true, triangleOf(*first), triangleOf(last[-1])};
}

/// Labels pieces one after the other. A vertex is left for good once its triangles are labelled,
/// and a triangle is labelled when it enters the work list: each is visited once.
class GroupLabels {
 public:
  GroupLabels(const std::vector<Mesh::Corners>& triangles, const MeshSmoothList& list)
      : mTriangles(triangles),
        mList(list),
        mLabels(triangles.size(), Mesh::Impl::kNoGroup),
        mIsVertexDone(list.size(), false) {}

  bool has(unsigned int triangle) const { return mLabels[triangle] != Mesh::Impl::kNoGroup; }

  void flood(unsigned int seed, unsigned int label) {
    mWork.clear();
    add(seed, label);
    for (std::size_t i = 0; i < mWork.size(); ++i) {
      const Mesh::Corners& c = mTriangles[mWork[i]];
      for (const unsigned int vertex : {c.x, c.y, c.z}) {
        if (mIsVertexDone[vertex]) continue;
        mIsVertexDone[vertex] = true;
        for (const unsigned int t : mList[vertex]) add(t, label);
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
  const MeshSmoothList& mList;
  std::vector<unsigned int> mLabels;
  std::vector<bool> mIsVertexDone;
  std::vector<unsigned int> mWork;
};

}  // namespace

std::vector<sEdgeCandidate> findEdgeCandidates(const std::vector<Mesh::Corners>& triangles,
                                               const MeshSmoothList& list) {
  const EdgeTable table(triangles, list);
  std::vector<sEdgeCandidate> candidates;
  for (unsigned int t = 0; t < triangles.size(); ++t) {
    const Mesh::Corners& c = triangles[t];
    const Oru::TVector2D<unsigned int> edges[] = {{c.x, c.y}, {c.y, c.z}, {c.z, c.x}};
    for (const auto& [a, b] : edges) {
      const EdgeTable::sSharing sharing = table.trianglesAt(a, b);
      if (sharing.mAny && sharing.mLast > t) {
        candidates.push_back({a, b, t, sharing.mLast});
      } else if (!sharing.mAny || (sharing.mFirst == t && sharing.mLast == t)) {
        candidates.push_back({a, b, t, kNoNeighbour});
      }
    }
  }
  return candidates;
}

std::vector<unsigned int> labelGroups(const std::vector<Mesh::Corners>& triangles,
                                      const std::vector<unsigned int>& sections,
                                      const MeshSmoothList& list) {
  GroupLabels labels(triangles, list);
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
