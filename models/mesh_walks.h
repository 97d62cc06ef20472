#pragma once

#include <cmath>
#include <vector>

#include "vexa/mesh/Mesh.h"

/// The plain forms of what the mesh derives, step by step as described, whatever they cost.
namespace vexa::tests {

using Position = UXS::Mesh::Position;
using Corners = UXS::Mesh::Corners;
using Edge = Oru::TVector2D<unsigned int>;

inline float dotXYZ(const Position& a, const Position& b) {
  return a.x * b.x + a.y * b.y + a.z * b.z;
}
inline float dotZYX(const Position& a, const Position& b) {
  return a.z * b.z + a.y * b.y + a.x * b.x;
}
inline Position times(const Position& a, float s) { return {a.x * s, a.y * s, a.z * s}; }
inline bool hasVertex(const Corners& c, unsigned int v) { return c.x == v || c.y == v || c.z == v; }

// A squared length of exactly 1 needs no root; one that is 0 or NaN gives no direction.
inline Position walkFaceNormal(const Position& p0, const Position& p1, const Position& p2) {
  const Position a = p2 - p1, b = p0 - p1;
  const Position n{a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
  const float squared = dotXYZ(n, n);
  if (squared > 0 && squared == 1) return n;
  const float root = std::sqrt(squared);
  return squared > 0 ? times(n, 1 / root) : Position();
}

/// A mesh with the normals of its faces and the triangles of its vertices.
struct Walks {
  std::vector<Position> mVertices;
  std::vector<Corners> mTriangles;
  std::vector<Position> mNormals;
  std::vector<std::vector<unsigned int>> mLists;

  Walks(const std::vector<Position>& vertices, const std::vector<Corners>& triangles)
      : mVertices(vertices), mTriangles(triangles), mLists(vertices.size()) {
    for (unsigned int t = 0; t < triangles.size(); ++t) {
      const auto& [a, b, c] = triangles[t];
      mNormals.push_back(walkFaceNormal(vertices[a], vertices[b], vertices[c]));
      for (const unsigned int v : {a, b, c}) mLists[v].push_back(t);
    }
  }

  // The last of the later triangles that share the edge decides; an edge of one triangle is drawn.
  // The triangles around a vertex are walked for each edge, in the square of their number.
  bool isDrawn(unsigned int t, const Edge& edge) const {
    bool seen = false, crease = false;
    for (const unsigned int u : mLists[edge.x]) {
      if (u == t || !hasVertex(mTriangles[u], edge.y)) continue;
      if (t < u) {
        crease = 1 - std::fabs(dotZYX(mNormals[t], mNormals[u])) >= 1e-5f;
      } else if (!seen) {
        crease = false;
      }
      seen = true;
    }
    return !seen || crease;
  }

  std::vector<Edge> edges() const {
    std::vector<Edge> all;
    for (unsigned int t = 0; t < mTriangles.size(); ++t) {
      const auto& [a, b, c] = mTriangles[t];
      for (const Edge& edge : {Edge{a, b}, Edge{b, c}, Edge{c, a}}) {
        if (isDrawn(t, edge)) all.push_back(edge);
      }
    }
    return all;
  }

  // A flood fill over shared vertices from each section's first triangle. Required behaviour: that
  // triangle uses up a number even when it has one.
  std::vector<unsigned int> groups(const std::vector<unsigned int>& sections) const {
    constexpr unsigned int kNone = 0xFFFFFFFF;
    std::vector<unsigned int> groups(mTriangles.size(), kNone);
    unsigned int label = 0;
    for (std::size_t s = 0; s < sections.size(); ++s) {
      const std::size_t end = s + 1 < sections.size() ? sections[s + 1] : mTriangles.size();
      for (unsigned int seed = sections[s]; seed < end; ++seed) {
        if (seed != sections[s] && groups[seed] != kNone) continue;
        std::vector<unsigned int> work{seed};
        for (std::size_t i = 0; i < work.size(); ++i) {
          const Corners c = mTriangles[work[i]];
          if (groups[work[i]] != kNone) continue;
          groups[work[i]] = label;
          for (const unsigned int v : {c.x, c.y, c.z}) {
            for (const unsigned int u : mLists[v]) {
              if (groups[u] == kNone) work.push_back(u);
            }
          }
        }
        ++label;
      }
    }
    return groups;
  }

  float angle(const Position& e, const Position& f) const {
    const float root = std::sqrt(dotXYZ(f, f) * dotXYZ(e, e));
    return std::acos(dotXYZ(e, f) * (1 / root));
  }

  // A vertex at two corners counts as the second before the third before the first.
  float angleAt(unsigned int t, unsigned int vertex) const {
    const auto& [a, b, c] = mTriangles[t];
    const Position &p0 = mVertices[a], &p1 = mVertices[b], &p2 = mVertices[c];
    const float angle0 = angle(p1 - p0, p2 - p0), angle1 = angle(p0 - p1, p2 - p1);
    return b == vertex ? angle1 : c == vertex ? 3.1415927f - angle0 - angle1 : angle0;
  }

  // The face normals around the vertex within the angle, weighted by their corner angles; a face
  // that looks the opposite way counts with its normal reversed.
  Position smoothNormal(unsigned int t, unsigned int vertex, float degrees) const {
    const float limit = std::cos(degrees * 0.017453292f);
    if (limit >= 1) return mNormals[t];
    Position sum;
    for (const unsigned int u : mLists[vertex]) {
      const float d = dotZYX(mNormals[t], mNormals[u]), weight = angleAt(u, vertex);
      if (d >= limit) {
        sum = sum + times(mNormals[u], weight);
      } else if (d <= -limit) {
        sum = sum - times(mNormals[u], weight);
      }
    }
    const float squared = dotZYX(sum, sum), root = std::sqrt(squared);
    return squared <= 0 ? Position() : squared == 1 ? sum : times(sum, 1 / root);
  }
};

}  // namespace vexa::tests
