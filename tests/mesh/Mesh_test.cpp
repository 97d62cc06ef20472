#include "vexa/mesh/Mesh.h"

#include <gtest/gtest.h>

#include "tests/helpers/compare.h"
#include "tests/helpers/vtable_slot.h"
#include "tests/mesh/mesh_fixtures.h"
#include "vexa/mesh/uxs_autoptr.h"
#include "vexa/tools/clock.h"

using namespace UXS;
using namespace vexa::tests;

TEST(Mesh, SlotsAreThoseOfTheReference) {
  EXPECT_EQ(slotOf(&Mesh::increment), 0);
  EXPECT_EQ(slotOf(&Mesh::decrement), 1);
  EXPECT_EQ(slotOf(&Mesh::Editor::increment), 0);
  EXPECT_EQ(slotOf(&Mesh::LightWeightEditor::decrement), 1);
}

TEST(Mesh, ANewOneIsEmptyAndDatedNow) {
  const double before = get_time();
  Mesh mesh;
  EXPECT_GE(mesh.GetDate(), before);
  EXPECT_LE(mesh.GetDate(), get_time());
  EXPECT_FALSE(mesh.HasUVCoords());
  EXPECT_EQ(mesh.GetSectionsCount(), 0u);
  EXPECT_TRUE(same(mesh.GetAABB(), {}));
  EXPECT_TRUE(same(mesh.GetMaterialAABB(12), {}));
  EXPECT_EQ(mesh.GetMainMesh(), nullptr);
  EXPECT_FALSE(mesh.GetStaticMesh());
  mesh.SetMainMesh(&mesh);
  mesh.SetStaticMesh(true);
  const Mesh sharing = mesh;
  EXPECT_EQ(sharing.GetMainMesh(), &mesh) << "a copy of the object shares the data";
  EXPECT_TRUE(sharing.GetStaticMesh());
}

TEST(Mesh, TheLastAutoptrDeletesIt) {
  auto* const mesh = new Mesh;
  mesh->increment();
  const uxs_autoptr<Mesh> owner(mesh);
  EXPECT_EQ(mesh->GetReferenceCount(), 1);
}

TEST(Mesh, FaceNormals) {
  Mesh mesh;
  build(mesh, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {2, 0, 0}, {0, 0, 4}},
        {{{0, 1, 2}, 0}, {{0, 2, 1}, 0}, {{0, 1, 3}, 0}, {{1, 2, 4}, 0}});
  EXPECT_TRUE(same(mesh.GetTriangleNormal(0), {0, 0, 1}));
  EXPECT_EQ(mesh.GetTriangleNormal(1), Position(0, 0, -1));
  EXPECT_TRUE(same(mesh.GetTriangleNormal(2), Position::ZeroVector)) << "collinear corners";
  EXPECT_TRUE(same(mesh.GetTriangleNormal(3), faceNormal(mesh.GetVerticesArray(), {1, 2, 4})));
}

// Sections of one and three triangles, read by section and by triangle.
TEST(Mesh, SectionsReadTheTrianglesBehindThem) {
  Mesh mesh;
  build(mesh, kSquare, {{{0, 1, 2}, 9}, {{0, 2, 3}, 9}, {{3, 2, 1}, 4}, {{0, 1, 3}, 9}});
  ASSERT_EQ(mesh.GetSectionsCount(), 2u);
  EXPECT_EQ(mesh.GetSectionMaterialID(0), 4u);
  EXPECT_EQ(mesh.GetSectionMaterialID(1), 9u);
  EXPECT_EQ(mesh.GetSectionTrianglesCount(0), 1u);
  EXPECT_EQ(mesh.GetSectionTrianglesCount(1), 3u);
  EXPECT_EQ(mesh.GetTriangleIDFromSectionTriangleID(1, 1), 2u);
  EXPECT_EQ(mesh.GetTrianglesArray()[2], Corners(0, 2, 3));
  EXPECT_EQ(mesh.GetSectionTriangleCoords(1, 1).z, kSquare[3]);
  EXPECT_EQ(mesh.GetSectionTriangleNormal(0, 0), Position(0, 0, -1));
  EXPECT_EQ(mesh.GetSectionTriangleSmoothNormals(0, 0).y, Position(0, 0, -1));
  EXPECT_EQ(mesh.GetSectionSmoothNormal(1, 2, {1, 0, 0}), Position(0, 0, 1));
  {
    Mesh::Editor editor(mesh, true);
    editor.SetTriangleUVCoords(2, {{}, {}, {0, 0.5f}});
  }
  EXPECT_EQ(mesh.GetSectionTriangleUVCoords(1, 1).z.y, 0.5f);
}

TEST(Mesh, SmoothNormalsAreMixedAndScaled) {
  Mesh mesh;
  build(mesh, kSquare, {{{0, 1, 2}, 0}});
  {
    Mesh::LightWeightEditor editor(mesh, true);
    editor.SetTriangleSmoothNormals(0, {{1, 0, 0}, {0, 1, 0}, {0, 0.6f, 0.8f}});
  }
  EXPECT_TRUE(same(mesh.GetSmoothNormal(0, {1, 0, 0}), {1, 0, 0}));
  EXPECT_TRUE(same(mesh.GetSmoothNormal(0, {0, 0, 0}), Position::ZeroVector));
  EXPECT_TRUE(same(mesh.GetSmoothNormal(0, {1e-4f, 0, 0}), Position::ZeroVector)) << "1e-8";
  EXPECT_EQ(mesh.GetSmoothNormal(0, {1.01e-4f, 0, 0}), Position(1, 0, 0));
  const float half = 0.25f * 0.25f + 0.25f * 0.25f;
  const float factor = 1 / std::sqrt(half);
  EXPECT_TRUE(
      same(mesh.GetSmoothNormal(0, {0.25f, 0.25f, 0}), {0.25f * factor, 0.25f * factor, 0}));
}

TEST(Mesh, CoplanarTakesOppositeNormalsAsOne) {
  EXPECT_TRUE(Mesh::Coplanar({0, 0, 1}, {0, 0, -1}));
  EXPECT_FALSE(Mesh::Coplanar({0, 0, 1}, {0, 0.01f, 0.99995f}));
  EXPECT_FALSE(Mesh::Coplanar({0, 0, 1}, {1, 0, 0}));
}
