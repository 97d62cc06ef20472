#pragma once

#include <vector>

#include "tests/golden/Recorder.h"

namespace vexa::tests {

/// A mesh before it is built, drawn from numbers.
struct DrawnMesh {
  std::vector<UXS::Mesh::Position> mVertices;
  std::vector<UXS::Mesh::Corners> mTriangles;
  std::vector<unsigned int> mMaterials;
};

inline float drawCoordinate(Numbers& n, bool isHostile) {
  if (isHostile && n.oneIn(12)) return n.edge<float>();
  return n.oneIn(3) ? n.plain<float>() : float(n.between(-1, 1));
}

inline unsigned int drawMaterial(Numbers& n) {
  constexpr unsigned int kMaterials[] = {0, 1, 2, 7, 256, 300, 70000, 0x01000000, 0xFFFFFFFF};
  return n.oneIn(2) ? n.below(3) : n.oneOf(kMaterials);
}

/// A height field of w by h squares, bent along some of its lines: neighbours that lie in one
/// plane, and neighbours that nearly do.
inline void appendGrid(Numbers& n, DrawnMesh& out, unsigned int w, unsigned int h) {
  const auto base = static_cast<unsigned int>(out.mVertices.size());
  constexpr float kBends[] = {0, 0, 1, 0.5f, 0.0045f, 0.0044f, 0.004472f, 0.00775f, 0.0077f};
  std::vector<float> heights(w + 1);
  for (unsigned int i = 1; i <= w; ++i) heights[i] = heights[i - 1] + n.oneOf(kBends);
  for (unsigned int y = 0; y <= h; ++y) {
    const float ridge = n.oneIn(4) ? n.plain<float>() : 0;
    for (unsigned int x = 0; x <= w; ++x) {
      out.mVertices.emplace_back(float(x), float(y), heights[x] + ridge);
    }
  }
  for (unsigned int y = 0; y < h; ++y) {
    for (unsigned int x = 0; x < w; ++x) {
      const unsigned int a = base + y * (w + 1) + x, b = a + 1, c = b + w + 1, d = a + w + 1;
      out.mTriangles.push_back({a, b, c});
      if (!n.oneIn(12)) out.mTriangles.push_back({a, c, d});
    }
  }
}

/// Triangles around one vertex, more than 32 of them now and then.
inline void appendFan(Numbers& n, DrawnMesh& out) {
  const auto centre = static_cast<unsigned int>(out.mVertices.size());
  const unsigned int count = n.oneIn(3) ? n.below(12) + 34 : n.below(12) + 1;
  for (unsigned int i = 0; i <= count + 1; ++i) {
    out.mVertices.push_back(
        n.triple<UXS::Mesh::Position>([&] { return drawCoordinate(n, false); }));
  }
  for (unsigned int i = 0; i < count; ++i) {
    out.mTriangles.push_back({centre, centre + 1 + i, centre + 2 + i});
  }
}

/// Any triangles of any vertices, also with a corner twice.
inline void appendSoup(Numbers& n, DrawnMesh& out, bool isHostile) {
  const auto base = static_cast<unsigned int>(out.mVertices.size());
  const unsigned int vertices = n.below(20) + 1;
  for (unsigned int i = 0; i < vertices; ++i) {
    out.mVertices.push_back(
        n.triple<UXS::Mesh::Position>([&] { return drawCoordinate(n, isHostile); }));
  }
  for (unsigned int i = n.below(30); i > 0; --i) {
    out.mTriangles.push_back(
        n.triple<UXS::Mesh::Corners>([&] { return base + n.below(vertices); }));
  }
}

/// One in sixteen is large: several hundred vertices.
inline DrawnMesh drawMesh(Numbers& n) {
  DrawnMesh mesh;
  const bool isLarge = n.oneIn(16), isHostile = n.oneIn(4);
  if (isLarge) {
    const unsigned int w = n.below(10) + 12, h = n.below(10) + 16;
    appendGrid(n, mesh, w, h);
  }
  for (unsigned int parts = isLarge ? n.below(3) : n.below(3) + 1; parts > 0; --parts) {
    const std::uint32_t kind = n.below(3);
    if (kind == 0) appendSoup(n, mesh, isHostile);
    if (kind == 1) appendFan(n, mesh);
    if (kind == 2) {
      const unsigned int w = n.below(4) + 1, h = n.below(4) + 1;
      appendGrid(n, mesh, w, h);
    }
  }
  const bool isOne = n.oneIn(4), isBanded = n.oneIn(3);
  unsigned int material = drawMaterial(n);
  for (std::size_t t = 0; t < mesh.mTriangles.size(); ++t) {
    if (!isOne && (!isBanded || n.oneIn(9))) material = drawMaterial(n);
    mesh.mMaterials.push_back(material);
  }
  return mesh;
}

inline void add(const DrawnMesh& from, UXS::Mesh::EditorBase& to) {
  to.SetVerticesCount(unsigned(from.mVertices.size()));
  to.SetTrianglesCount(unsigned(from.mTriangles.size()));
  for (const auto& vertex : from.mVertices) to.AddVertex(vertex);
  for (std::size_t t = 0; t < from.mTriangles.size(); ++t) {
    to.AddTriangle(from.mTriangles[t], from.mMaterials[t]);
  }
}

inline void inMesh(Recorder& r, const DrawnMesh& mesh) {
  r.in("vertices", mesh.mVertices.size()).in("triangles", mesh.mTriangles.size());
  for (std::size_t i = 0; i < mesh.mVertices.size() && i < 8; ++i) r.in("v", mesh.mVertices[i]);
  for (std::size_t t = 0; t < mesh.mTriangles.size() && t < 8; ++t) {
    r.in("t", mesh.mTriangles[t]).in("m", mesh.mMaterials[t]);
  }
}

inline UXS::uxs_autoptr<UXS::Mesh> newMesh() {
  auto* const mesh = new UXS::Mesh;
  mesh->increment();
  return UXS::uxs_autoptr<UXS::Mesh>(mesh);
}

// After triangles were removed, until a full commit, the last sections may begin past the end.
inline bool isEmptySection(const UXS::Mesh& mesh, unsigned int section) {
  return mesh.GetTriangleIDFromSectionTriangleID(section, 0) >= mesh.GetTrianglesArray().size();
}

inline void outSections(Recorder& r, const UXS::Mesh& mesh) {
  r.out(mesh.GetVerticesArray(), mesh.GetTrianglesArray(), mesh.GetSectionsCount());
  for (unsigned int s = 0; s < mesh.GetSectionsCount(); ++s) {
    if (!isEmptySection(mesh, s)) r.out(mesh.GetSectionMaterialID(s));
    r.out(mesh.GetSectionTrianglesCount(s));
    r.out(mesh.GetTriangleIDFromSectionTriangleID(s, 0));
  }
  for (unsigned int t = 0; t < mesh.GetTrianglesArray().size(); ++t) {
    r.out(mesh.GetTriangleMaterialID(t));
  }
}

inline void outNormals(Recorder& r, const UXS::Mesh& mesh) {
  r.out(mesh.HasUVCoords());
  for (unsigned int t = 0; t < mesh.GetTrianglesArray().size(); ++t) {
    r.out(mesh.GetTriangleSmoothNormals(t), mesh.GetTriangleNormal(t));
    r.out(mesh.GetTriangleCoords(t), mesh.GetSmoothNormal(t, {0.5f, 0.25f, -0.75f}));
    if (mesh.HasUVCoords()) r.out(mesh.GetTriangleUVCoords(t));
  }
}

// The same through the sections.
inline void outSectionNormals(Recorder& r, const UXS::Mesh& mesh) {
  for (unsigned int s = 0; s < mesh.GetSectionsCount(); ++s) {
    for (unsigned int k = 0; k < mesh.GetSectionTrianglesCount(s); ++k) {
      r.out(mesh.GetSectionTriangleCoords(s, k), mesh.GetSectionTriangleNormal(s, k));
      r.out(mesh.GetSectionTriangleSmoothNormals(s, k));
      r.out(mesh.GetSectionSmoothNormal(s, k, {0.5f, 0.25f, -0.75f}));
      if (mesh.HasUVCoords()) r.out(mesh.GetSectionTriangleUVCoords(s, k));
    }
  }
}

inline void outGroups(Recorder& r, const UXS::Mesh& mesh) {
  for (unsigned int t = 0; t < mesh.GetTrianglesArray().size(); ++t) {
    r.out(mesh.GetTriangleGroupID(t));
  }
}

inline void outBoxes(Recorder& r, const UXS::Mesh& mesh) {
  r.out(mesh.GetAABB());
  for (unsigned int s = 0; s < mesh.GetSectionsCount(); ++s) {
    if (isEmptySection(mesh, s)) continue;
    r.out(mesh.GetMaterialAABB(mesh.GetSectionMaterialID(s)));
  }
  r.out(mesh.GetMaterialAABB(12345));
}

inline void outMesh(Recorder& r, const UXS::Mesh& mesh) {
  outSections(r, mesh);
  outNormals(r, mesh);
  r.out(mesh.GetEdgesArray());
  outGroups(r, mesh);
  outBoxes(r, mesh);
}

}  // namespace vexa::tests
