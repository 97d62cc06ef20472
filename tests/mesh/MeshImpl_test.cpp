#include "vexa/mesh/MeshImpl.h"

#include <ctime>
#include <gtest/gtest.h>

#include "models/mesh_walks.h"
#include "tests/mesh/mesh_fixtures.h"
#include "vexa/mesh/MeshSmoothData.h"
#include "vexa/mesh/MeshSmoothList.h"

using namespace UXS;
using namespace vexa::tests;

namespace {

constexpr float kDegree = 0.017453292f;

/// Triangle 0 in the plane z = 0, triangle 1 turned about the edge 0-1 that they share.
void fillFold(Mesh::Impl& outMesh, float degrees) {
  const float y = std::cos(degrees * kDegree), z = std::sin(degrees * kDegree);
  outMesh.mVertices = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, y, z}};
  outMesh.mTriangles = {{0, 1, 2}, {0, 1, 3}};
}

}  // namespace

// Lists in any order and of any of the triangles, corners that repeat, edges of many triangles.
TEST(MeshProcessing, EdgesAndGroupsFollowTheListsAsTheyAre) {
  for (unsigned int seed = 0; seed < 300; ++seed) {
    Dice dice(seed);
    Mesh::Impl mesh;
    std::vector<Corners> triangles;
    for (int v = 0; v < 8; ++v) mesh.mVertices.push_back(dice.position());
    for (int t = 0; t < 12; ++t) triangles.emplace_back(dice(8), dice(8), dice(8));
    mesh.mTriangles = triangles;
    mesh.mSections = std::vector<unsigned int>{0, 5, 6};
    Walks walks(mesh.mVertices, triangles);
    walks.mLists.assign(8, {});
    std::vector<unsigned int> listed;
    for (unsigned int i = dice(15); i > 0; --i) {
      listed.push_back(dice(12));
      const auto& [a, b, c] = triangles[listed.back()];
      for (const unsigned int v : {a, b, c}) walks.mLists[v].push_back(listed.back());
    }
    mesh.ProcessEdges(MeshSmoothData(mesh), MeshSmoothList(mesh, listed));
    ASSERT_EQ(mesh.mEdges.size(), walks.edges().size()) << seed;
    ASSERT_TRUE(same(mesh.mEdges, walks.edges())) << seed;
    mesh.ProcessGroupID(MeshSmoothList(mesh, listed));
    ASSERT_TRUE(same(mesh.mGroupIDs, walks.groups({0, 5, 6}))) << seed;
  }
  Mesh::Impl fold;
  fillFold(fold, 90);
  fold.ProcessEdges(MeshSmoothData(fold), MeshSmoothList(fold, {1, 0}));
  EXPECT_EQ(fold.mEdges.size(), 5u);
}

TEST(MeshProcessing, TablesCanBeMadeOfAFewTriangles) {
  Mesh::Impl mesh;
  fillFold(mesh, 90);
  mesh.mTriangles.push_back({3, 3, 0});
  EXPECT_TRUE(same(MeshSmoothData(mesh, {1})[0].mNormal, {}));
  EXPECT_TRUE(std::isnan(MeshSmoothData(mesh, {2, 1})[2].mAngles[2])) << "an edge of no length";
  EXPECT_TRUE(MeshSmoothList(mesh, {2, 1})[2].empty());
  const MeshSmoothList list(mesh, {2, 1});
  EXPECT_EQ(std::vector<unsigned int>(list[3].begin(), list[3].end()),
            (std::vector<unsigned int>{2, 2, 1}));
}

// Folds of 0.256 degrees, where the last bit of the product decides.
TEST(MeshProcessing, CreasesAreDecidedToTheBit) {
  Dice dice(1);
  for (int i = 0; i < 3000; ++i) {
    Mesh::Impl mesh;
    fillFold(mesh, 0.25f + static_cast<float>(dice(1000)) * 1.2e-5f);
    const Position axis{static_cast<float>(dice(9)) + 1, static_cast<float>(dice(9)), 5};
    for (Position& p : mesh.mVertices) {
      p = {p.x * axis.x + p.z, p.y * axis.x + p.x * axis.y, p.z * axis.x + p.y};
    }
    mesh.ProcessLightWeight();
    ASSERT_TRUE(same(mesh.mEdges, Walks(mesh.mVertices, mesh.mTriangles).edges())) << i;
  }
}

TEST(MeshProcessing, AReachedSectionStillUsesUpALabel) {
  Mesh::Impl mesh;
  mesh.mVertices.resize(9);
  mesh.mTriangles = {{0, 1, 2}, {3, 4, 5}, {2, 6, 7}, {8, 8, 8}};
  mesh.mMaterialIDs = {1, 1, 2, 3};
  mesh.Process();
  EXPECT_EQ(mesh.mGroupIDs, (std::vector<unsigned int>{0, 1, 0, 3}));
}

TEST(MeshProcessing, AFanAroundOneVertexTakesLinearTime) {
  constexpr unsigned int kCount = 100000;
  Mesh::Impl mesh;
  mesh.mVertices.resize(kCount + 2);
  for (unsigned int v = 1; v < kCount + 2; ++v) mesh.mVertices[v] = {static_cast<float>(v), 1, 0};
  for (unsigned int t = 0; t < kCount; ++t) {
    mesh.mTriangles.push_back({0, t + 1, t + 2});
    mesh.mMaterialIDs.push_back(kCount - 1 - t % 1100);  // as many materials
  }
  const std::clock_t start = std::clock();
  mesh.Process();
  EXPECT_LT(static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC, 5) << "0.03 s when quick";
  EXPECT_EQ(mesh.mEdges.size(), kCount + 2);
  EXPECT_EQ(mesh.mSections.size(), 1100u);
  EXPECT_EQ(mesh.mMaterialAABBs.count(), 1100u);
  EXPECT_EQ(mesh.mGroupIDs.back(), 0u);
}
