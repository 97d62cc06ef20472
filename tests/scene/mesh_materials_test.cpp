#include "scene/mesh_materials.h"

#include <gtest/gtest.h>

#include "formats/write_file.h"

namespace vexa::scene {
namespace {

// Two triangles: one of a stated material, one of a material that nobody states.
formats::MovingMesh twoTriangles(const std::string& file) {
  formats::MovingMesh mesh;
  mesh.mFile = file;
  mesh.mTriangles = {{0, 1, 2}, {0, 1, 2}};
  mesh.mMaterials = {1, 0};
  return mesh;
}

TEST(MeshMaterials, TrianglesHaveTheColourOfTheirMaterial) {
  const std::string folder = testing::TempDir(), file = folder + "colours.obj";
  formats::writeFile(folder + "colours.mtl", "newmtl skin\nKd 0.5 0.25 1\n");
  formats::writeFile(file,
                     "mtllib colours.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl other\nf 1 2 3\n"
                     "usemtl skin\nf 1 2 3\n");
  std::vector<formats::MovingMesh> meshes{twoTriangles(file), twoTriangles("")};
  addColors(meshes);
  ASSERT_EQ(meshes[0].mColors.size(), 2u);
  EXPECT_EQ(meshes[0].mColors[0].x, 0.5f);
  EXPECT_EQ(meshes[0].mColors[0].y, 0.25f);
  EXPECT_EQ(meshes[0].mColors[1].x, 0.7f);
  EXPECT_TRUE(meshes[1].mColors.empty());
}

TEST(MeshMaterials, WithoutMaterialsOrFilesThereIsNoColour) {
  const std::string file = testing::TempDir() + "plain.obj";
  formats::writeFile(file, "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
  std::vector<formats::MovingMesh> meshes{twoTriangles(file), twoTriangles("/nowhere/x.obj")};
  addColors(meshes);
  EXPECT_TRUE(meshes[0].mColors.empty());
  EXPECT_TRUE(meshes[1].mColors.empty());
}

}  // namespace
}  // namespace vexa::scene
