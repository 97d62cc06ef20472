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

// Both zeros are the least x: the one of the later corner counts, not that of the later vertex.
TEST(Mesh, ABoxGoesByTheOrderOfCorners) {
  Mesh mesh;
  {
    Mesh::Editor editor(mesh, false);
    for (const auto& p : {Mesh::Position(-0.0f, 1, 1), Mesh::Position(0, 2, 1), {1, 1, 2}}) {
      editor.AddVertex(p);
    }
    editor.AddTriangle({1, 0, 2}, 7);
  }
  EXPECT_TRUE(same(mesh.GetMaterialAABB(7), {{-0.0f, 1, 1}, {1, 2, 2}, true}));
}
