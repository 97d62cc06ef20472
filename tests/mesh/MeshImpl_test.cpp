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

TEST(MeshProcessing, SmoothNormalsAreThoseOfTheWalk) {
  for (unsigned int seed = 0; seed < 100; ++seed) {
    Dice dice(seed);
    Mesh::Impl mesh;
    for (int v = 0; v < 8; ++v) mesh.mVertices.push_back(dice.position());
    for (int t = 0; t < 20; ++t) mesh.mTriangles.push_back({dice(8), dice(8), dice(8)});
    const float angle = static_cast<float>(dice(4)) * 50 - 5;
    const MeshSmoothData data(mesh);
    const MeshSmoothList list(mesh);
    mesh.ProcessTrianglesNormals(data, list, angle);
    const Walks walks(mesh.mVertices, mesh.mTriangles);
    for (unsigned int t = 0; t < 20; ++t) {
      const Position expected = walks.smoothNormal(t, mesh.mTriangles[t].z, angle);
      ASSERT_TRUE(same(mesh.mSmoothNormals[t].z, angle <= 0 ? walks.mNormals[t] : expected));
      const Position own = mesh.ProcessTriangleSmoothNormal(t, 2, 0, data, list);
      ASSERT_TRUE(same(own, walks.mNormals[t]));
    }
  }
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
