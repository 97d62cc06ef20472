#include "vexa/mesh/MeshSmoothData.h"

#include <gtest/gtest.h>

#include "tests/helpers/compare.h"
#include "tests/mesh/mesh_fixtures.h"
#include "vexa/mesh/MeshSmoothList.h"

using namespace UXS;
using namespace vexa::tests;

namespace {

/// A right isosceles triangle, one that repeats a vertex, and one more.
void fill(Mesh::Impl& outMesh) {
  outMesh.mVertices = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 5}};
  outMesh.mTriangles = {{0, 1, 2}, {0, 0, 1}, {1, 2, 3}};
}

std::vector<unsigned int> items(const MeshSmoothList::List& list) {
  return {list.begin(), list.end()};
}
using Items = std::vector<unsigned int>;

}  // namespace

TEST(MeshSmoothData, MeasuresTheCornersOfATriangle) {
  Mesh::Impl mesh;
  fill(mesh);
  const MeshSmoothData data(mesh);
  ASSERT_EQ(data.size(), 3u);
  EXPECT_TRUE(same(data[0].mNormal, {0, 0, 1}));
  EXPECT_LE(ulpDistance(data[0].mAngles[0], 1.57079633f), 2);
  EXPECT_LE(ulpDistance(data[0].mAngles[1], 0.78539816f), 2);
  EXPECT_TRUE(same(data[0].mAngles[2], 3.1415927f - data[0].mAngles[0] - data[0].mAngles[1]));
  EXPECT_TRUE(same(data[1].mNormal, {}));
  EXPECT_TRUE(std::isnan(data[1].mAngles[0]) && std::isnan(data[1].mAngles[2]));
}

TEST(MeshSmoothList, ListsATriangleOncePerCorner) {
  Mesh::Impl mesh;
  fill(mesh);
  const MeshSmoothList list(mesh);
  EXPECT_EQ(items(list[0]), (Items{0, 1, 1}));
  EXPECT_EQ(items(list[1]), (Items{0, 1, 2}));
  EXPECT_EQ(items(list[3]), (Items{2}));
}

TEST(MeshSmoothData, AListLimitsBothTables) {
  Mesh::Impl mesh;
  fill(mesh);
  const MeshSmoothData data(mesh, {2, 0});
  EXPECT_TRUE(same(data[0].mNormal, {0, 0, 1}));
  EXPECT_EQ(data[1].mAngles[0], 0.0f);
  const MeshSmoothList list(mesh, {2, 1});
  EXPECT_EQ(items(list[1]), (Items{2, 1}));
  EXPECT_TRUE(items(MeshSmoothList(mesh, {0})[3]).empty());
}
