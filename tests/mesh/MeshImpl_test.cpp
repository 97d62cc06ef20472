#include "vexa/mesh/MeshImpl.h"

#include <ctime>
#include <gtest/gtest.h>

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

TEST(MeshProcessing, EdgesFollowTheOrderOfTheLists) {
  Mesh::Impl fold;
  fillFold(fold, 90);
  fold.ProcessEdges(MeshSmoothData(fold), MeshSmoothList(fold, {1, 0}));
  EXPECT_EQ(fold.mEdges.size(), 5u);
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
