#include "vexa/mesh/Mesh.h"

#include <gtest/gtest.h>

#include "tests/mesh/mesh_fixtures.h"
#include "vexa/support/clock.h"

using namespace UXS;
using namespace vexa::tests;

TEST(Mesh, ANewOneIsEmptyAndDatedNow) {
  const double before = get_time();
  Mesh mesh;
  EXPECT_GE(mesh.GetDate(), before);
  EXPECT_LE(mesh.GetDate(), get_time());
  EXPECT_FALSE(mesh.HasUVCoords() || mesh.GetStaticMesh() || mesh.GetMainMesh() != nullptr);
  EXPECT_EQ(mesh.GetSectionsCount(), 0u);
  EXPECT_TRUE(same(mesh.GetAABB(), {}) && same(mesh.GetMaterialAABB(12), {}));
  mesh.SetMainMesh(&mesh);
  mesh.SetStaticMesh(true);
  const Mesh sharing = mesh;
  EXPECT_TRUE(sharing.GetMainMesh() == &mesh && sharing.GetStaticMesh()) << "data is shared";
}

// Sections of one and two triangles; corners counter-clockwise as seen from above look up.
TEST(Mesh, SectionsReadTheTrianglesBehindThem) {
  Mesh mesh;
  build(mesh, kSquare, {{0, 1, 2}, {0, 2, 3}}, 9);
  {
    Mesh::Editor editor(mesh, true);
    editor.SetTriangleUVCoords(1, {{}, {}, {0, 0.5f}});
    editor.AddTriangle({3, 2, 1}, 4);
    editor.SetTriangleSmoothNormals(2, {{1, 0, 0}, {0, 1, 0}, {}});
  }
  ASSERT_EQ(mesh.GetSectionsCount(), 2u);
  EXPECT_EQ(mesh.GetSectionMaterialID(1), 9u);
  EXPECT_EQ(mesh.GetSectionTrianglesCount(0), 1u);
  EXPECT_EQ(mesh.GetSectionTrianglesCount(1), 2u);
  EXPECT_EQ(mesh.GetTriangleIDFromSectionTriangleID(1, 1), 2u);
  EXPECT_EQ(mesh.GetSectionTriangleCoords(1, 1).z, kSquare[3]);
  EXPECT_EQ(mesh.GetSectionTriangleNormal(0, 0), Mesh::Position(0, 0, -1));
  EXPECT_EQ(mesh.GetSectionTriangleSmoothNormals(1, 0).y, Mesh::Position(0, 0, 1));
  EXPECT_EQ(mesh.GetSectionTriangleUVCoords(1, 1).z.y, 0.5f);
  // Corner normals are mixed and scaled; up to 1e-8 the squared length counts as none.
  EXPECT_TRUE(same(mesh.GetSectionSmoothNormal(0, 0, {1, 0, 0}), {1, 0, 0}));
  EXPECT_TRUE(same(mesh.GetSmoothNormal(0, {1e-4f, 0, 0}), {}));
  EXPECT_EQ(mesh.GetSmoothNormal(0, {1.01e-4f, 0, 0}), Mesh::Position(1, 0, 0));
  const float factor = 1 / std::sqrt(0.1f * 0.1f + 0.7f * 0.7f);
  EXPECT_TRUE(same(mesh.GetSmoothNormal(0, {0.1f, 0.7f, 9}), {0.1f * factor, 0.7f * factor, 0}));
}

TEST(Mesh, CoplanarTakesOppositeNormalsAsOne) {
  EXPECT_TRUE(Mesh::Coplanar({0, 0, 1}, {0, 0, -1}));
  EXPECT_FALSE(Mesh::Coplanar({0, 0, 1}, {0, 0.01f, 0.99995f}));
}
