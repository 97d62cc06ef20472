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
