#pragma once

#include <cmath>
#include <limits>
#include <vector>

#include "vexa/mesh/Mesh.h"

/// The plain forms of what the mesh derives, step by step as described, whatever they cost.
namespace vexa::tests {

using Position = UXS::Mesh::Position;
using Corners = UXS::Mesh::Corners;
using Edge = Oru::TVector2D<unsigned int>;
using Triangles = std::vector<Corners>;
using Lists = std::vector<std::vector<unsigned int>>;

inline Position faceNormal(const std::vector<Position>& vertices, const Corners& c) {
  const Position a = vertices[c.z] - vertices[c.y], b = vertices[c.x] - vertices[c.y];
  const Position n{a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
  const float squared = n.x * n.x + n.y * n.y + n.z * n.z;
  if (squared > 0 && squared == 1) return n;
  if (!(squared > 0)) return {};
  const float root = std::sqrt(squared);
  const float factor = 1 / root;
  return {n.x * factor, n.y * factor, n.z * factor};
}

inline Lists listTriangles(std::size_t vertices, const Triangles& triangles) {
  Lists lists(vertices);
  for (unsigned int t = 0; t < triangles.size(); ++t) {
    for (const unsigned int v : {triangles[t].x, triangles[t].y, triangles[t].z}) {
      lists[v].push_back(t);
    }
  }
  return lists;
}

inline bool hasVertex(const Corners& c, unsigned int v) { return c.x == v || c.y == v || c.z == v; }

inline bool isDrawn(unsigned int t, const Edge& edge, const Triangles& triangles,
                    const std::vector<Position>& normals, const Lists& lists) {
  bool seen = false, crease = false;
  for (const unsigned int u : lists[edge.x]) {
    if (u == t || !hasVertex(triangles[u], edge.x) || !hasVertex(triangles[u], edge.y)) continue;
    if (t < u) {
      const Position &n = normals[t], &m = normals[u];
      crease = 1 - std::fabs(n.z * m.z + n.y * m.y + n.x * m.x) >= 1e-5f;
    } else if (!seen) {
      crease = false;
    }
    seen = true;
  }
  return !seen || crease;
}

inline std::vector<Edge> walkEdges(const Triangles& triangles, const std::vector<Position>& normals,
                                   const Lists& lists) {
  std::vector<Edge> edges;
  for (unsigned int t = 0; t < triangles.size(); ++t) {
    const Corners& c = triangles[t];
    for (const Edge& edge : {Edge{c.x, c.y}, Edge{c.y, c.z}, Edge{c.z, c.x}}) {
      if (isDrawn(t, edge, triangles, normals, lists)) edges.push_back(edge);
    }
  }
  return edges;
}

inline std::vector<unsigned int> walkGroups(const Triangles& triangles,
                                            const std::vector<unsigned int>& sections,
                                            const Lists& lists) {
  constexpr unsigned int kNone = 0xFFFFFFFF;
  std::vector<unsigned int> groups(triangles.size(), kNone);
  unsigned int label = 0;
  for (std::size_t s = 0; s < sections.size(); ++s) {
    const std::size_t end = s + 1 < sections.size() ? sections[s + 1] : triangles.size();
    for (unsigned int seed = sections[s]; seed < end; ++seed) {
      if (seed != sections[s] && groups[seed] != kNone) continue;
      std::vector<unsigned int> work{seed};
      for (std::size_t i = 0; i < work.size(); ++i) {
        const unsigned int u = work[i];
        if (groups[u] != kNone) continue;
        groups[u] = label;
        for (const unsigned int v : {triangles[u].x, triangles[u].y, triangles[u].z}) {
          for (const unsigned int w : lists[v]) {
            if (groups[w] == kNone) work.push_back(w);
          }
        }
      }
      ++label;
    }
  }
  return groups;
}

}  // namespace vexa::tests
