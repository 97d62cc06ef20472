#include "vexa/mesh/MeshEditor.h"

#include <gtest/gtest.h>

#include "tests/mesh/mesh_fixtures.h"
#include "vexa/mesh/MeshImpl.h"

using namespace UXS;
using namespace vexa::tests;

// What the table's functions throw stays inside; the corners keep their vertices.
TEST(MeshEditor, MergingSwallowsWhatTheTableThrows) {
  Mesh::Impl mesh;
  mesh.mVertices = kSquare;
  mesh.mTriangles = std::vector<Mesh::Corners>{{0, 1, 2}};
  uxs_hashtable<Mesh::Position, unsigned int> table(
      8, [](const Mesh::Position&) -> unsigned int { throw 42; });
  EXPECT_NO_THROW(InternalMergeTriangleVertices(0, mesh, table));
  EXPECT_EQ(mesh.mTriangles[0], Mesh::Corners(0, 1, 2));
}

// A fold of 30 degrees along the edge 0-1, the second face turned over. At vertex 0 the corners
// have 90 and 45 degrees, at vertex 1 45 and 90.
TEST(MeshEditor, SmoothedAndTurnedNormalsOutliveTheCommit) {
  const float s = 0.5f, c = std::sqrt(0.75f);
  const auto square = [](const Mesh::Position& p) { return p.x * p.x + p.y * p.y + p.z * p.z; };
  const auto unit = [&](const Mesh::Position& p) { return p * (1 / std::sqrt(square(p))); };
  const auto isNear = [&](const Mesh::Position& a, const Mesh::Position& b) {
    return square(a - b) < 1e-12f;
  };
  const Mesh::Position up{0, 0, 1}, over{0, s, -c};
  const Mesh::Position first = unit(up * 2.0f - over), second = unit(up - over * 2.0f);
  const std::vector<unsigned int> both{1, 0, 1};
  for (int way = 0; way < 4; ++way) {
    Mesh mesh;
    build(mesh, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, c, s}}, {{0, 1, 2}, {1, 0, 3}}, 5);
    if (way == 3) Mesh::Editor(mesh, false).SmoothTriangleNormals({20.0f, 40.0f});
    {
      Mesh::Editor editor(mesh, false);
      if (way == 0) editor.SmoothTriangleNormals(both, 40);
      if (way == 1) editor.SmoothTriangleNormals(5u, 40);
      if (way == 2) editor.SmoothTriangleNormals({40.0f, 0});
    }
    const auto [n0, n1, n2] = mesh.GetTriangleSmoothNormals(0);
    const auto [m1, m0, m2] = mesh.GetTriangleSmoothNormals(1);
    EXPECT_TRUE(isNear(n0, way == 3 ? up : first) && isNear(n1, way == 3 ? up : second)) << way;
    EXPECT_TRUE(isNear(m0, way == 3 ? over : -first) && isNear(m1, way == 3 ? over : -second));
    EXPECT_TRUE(isNear(n2, up) && isNear(m2, over)) << way;
  }
  Mesh mesh;
  {
    Mesh::Editor editor(mesh, false);
    for (const Mesh::Position& p : kSquare) editor.AddVertex(p);
    editor.AddTriangle({0, 1, 2}, 1);
    editor.AddTriangle({0, 2, 3}, 2);
    editor.SmoothTriangleNormals(std::vector<unsigned int>{0}, 30);
    editor.SetTriangleSmoothNormals(1, {{0, 1, -1}, {0, 0, -2}, {1, 0, 1}});
    editor.ReorientTriangleSmoothNormals(std::vector<unsigned int>{0});
    editor.ReorientTriangleSmoothNormals(2u);
  }
  EXPECT_EQ(mesh.GetTriangleSmoothNormals(0).y, up);
  const auto [a, b, d] = mesh.GetTriangleSmoothNormals(1);
  EXPECT_TRUE(a == Mesh::Position(0, -1, 1) && b == Mesh::Position(0, 0, 2) &&
              d == Mesh::Position(1, 0, 1));
}

TEST(MeshEditor, TheEndDatesTheMeshUnlessToldToKeepTheDate) {
  Mesh mesh;
  const double created = mesh.GetDate();
  while (Mesh().GetDate() == created) {
  }
  { Mesh::Editor(mesh, true).SetTrianglesCount(5); }
  EXPECT_EQ(mesh.GetDate(), created);
  { const Mesh::EditorBase editor(mesh, false); }
  EXPECT_GT(mesh.GetDate(), created);
}
