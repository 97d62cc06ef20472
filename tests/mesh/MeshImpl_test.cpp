#include "vexa/mesh/MeshImpl.h"

#include <ctime>
#include <gtest/gtest.h>

#include "tests/helpers/compare.h"
#include "tests/mesh/mesh_fixtures.h"
#include "vexa/mesh/MeshSmoothData.h"
#include "vexa/mesh/MeshSmoothList.h"

using namespace UXS;
using namespace vexa::tests;

namespace {

constexpr float kDegree = 0.017453292f;

/// Triangles 0 in the plane z = 0 and 1.. turned about the x axis, all with the edge 0-1.
void fillFan(Mesh::Impl& outMesh, const std::vector<float>& degrees) {
  outMesh.mVertices = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
  outMesh.mTriangles = {{0, 1, 2}};
  for (const float d : degrees) {
    outMesh.mVertices.push_back({0, std::cos(d * kDegree), std::sin(d * kDegree)});
    outMesh.mTriangles.push_back({0, 1, static_cast<unsigned int>(outMesh.mVertices.size() - 1)});
  }
  outMesh.mMaterialIDs.resize(outMesh.mTriangles.size());
}

Position normalAt(const Mesh::Impl& mesh, unsigned int t, unsigned int corner, float angle) {
  return mesh.ProcessTriangleSmoothNormal(t, corner, angle, MeshSmoothData(mesh),
                                          MeshSmoothList(mesh));
}

/// The angle about the x axis of a normal; that of triangle 0 is 0.
float degreesOf(const Position& n) { return std::atan2(-n.y, n.z) / kDegree; }

}  // namespace

TEST(MeshProcessing, AnEmptyMeshHasNothingDerived) {
  Mesh::Impl mesh;
  mesh.mVertices = kSquare;
  mesh.Process();
  EXPECT_TRUE(mesh.mSections.empty());
  EXPECT_TRUE(same(mesh.mAABB, {}));
  EXPECT_EQ(mesh.mMaterialAABBs.count(), 0u);
}

TEST(MeshProcessing, TrianglesAreSortedByMaterialAndKeepTheirOrderWithin) {
  Mesh::Impl mesh;
  mesh.mVertices = kSquare;
  mesh.mTriangles = {{0, 1, 2}, {1, 2, 3}, {2, 3, 0}, {3, 0, 1}};
  mesh.mMaterialIDs = {7, 3, 7, 3};
  mesh.mUVCoords.resize(4);
  mesh.mUVCoords[2].x.x = 0.5f;
  mesh.Process();
  EXPECT_EQ(mesh.mMaterialIDs, (std::vector<unsigned int>{3, 3, 7, 7}));
  EXPECT_EQ(mesh.mSections, (std::vector<unsigned int>{0, 2}));
  EXPECT_TRUE(same(mesh.mTriangles, {{1, 2, 3}, {3, 0, 1}, {0, 1, 2}, {2, 3, 0}}));
  ASSERT_EQ(mesh.mUVCoords.size(), 4u) << "one value keeps the uv of all";
  EXPECT_EQ(mesh.mUVCoords[3].x.x, 0.5f);
}

TEST(MeshProcessing, AttributesThatAreAllZeroAreDropped) {
  Mesh::Impl mesh;
  mesh.mVertices = kSquare;
  mesh.mTriangles = {{0, 1, 2}, {0, 2, 3}};
  mesh.mUVCoords.resize(2);
  mesh.mSmoothNormals.resize(2);
  mesh.mUVCoords[1].z.y = -0.0f;
  mesh.ProcessTrianglesSort();
  EXPECT_TRUE(mesh.mUVCoords.empty());
  EXPECT_TRUE(mesh.mSmoothNormals.empty());
  mesh.mUVCoords.resize(2);
  mesh.mUVCoords[1].z.y = NAN;
  mesh.ProcessTrianglesSort();
  EXPECT_EQ(mesh.mUVCoords.size(), 2u) << "NaN is a value";
}

// 20 degrees away counts, 40 does not, 190 counts reversed; the weight is the angle at vertex 1.
TEST(MeshProcessing, SmoothNormalsWeighTheFacesWithinTheAngle) {
  Mesh::Impl mesh;
  fillFan(mesh, {20});
  EXPECT_NEAR(degreesOf(normalAt(mesh, 0, 0, 30)), 10, 1e-3);
  fillFan(mesh, {40});
  EXPECT_NEAR(degreesOf(normalAt(mesh, 0, 0, 30)), 0, 1e-3);
  fillFan(mesh, {190});
  EXPECT_NEAR(degreesOf(normalAt(mesh, 0, 0, 30)), 5, 1e-3);
  EXPECT_TRUE(same(normalAt(mesh, 0, 0, 0), {0, 0, 1}));
  EXPECT_TRUE(same(normalAt(mesh, 0, 0, NAN), {})) << "no face is within no angle";
  // A longer neighbour: 45 degrees at vertex 1 of triangle 0, 71.565 at its own: weights 1 : 1.59.
  fillFan(mesh, {20});
  mesh.mVertices[3] = mesh.mVertices[3] * 3.0f;
  const float w0 = std::atan(1.0f), w1 = std::atan(3.0f);
  const float expected = std::atan2(w1 * std::sin(20 * kDegree), w0 + w1 * std::cos(20 * kDegree));
  EXPECT_NEAR(degreesOf(normalAt(mesh, 0, 1, 30)), expected / kDegree, 1e-3);
}

TEST(MeshProcessing, NormalsAreSmoothedForAnAngleAndKeptWhenThere) {
  Mesh::Impl mesh;
  fillFan(mesh, {20});
  const MeshSmoothData data(mesh);
  const MeshSmoothList list(mesh);
  mesh.ProcessTrianglesNormals(data, list, 30);
  EXPECT_NEAR(degreesOf(mesh.mSmoothNormals[1].x), 10, 1e-3);
  EXPECT_NEAR(degreesOf(mesh.mSmoothNormals[1].z), 20, 1e-3) << "a vertex of its own";
  mesh.ProcessTrianglesNormals(data, list, 0);
  EXPECT_NEAR(degreesOf(mesh.mSmoothNormals[1].x), 10, 1e-3);
}

TEST(MeshProcessing, BoxesHoldTheCornersOfTheirTriangles) {
  Mesh::Impl mesh;
  mesh.mVertices = {{1, 5, -2}, {3, -1, 0}, {100, 100, 100}, {-4, 2, 8}};
  mesh.mTriangles = {{0, 1, 0}, {3, 3, 3}};
  mesh.mMaterialIDs = {5, 6};
  mesh.Process();
  EXPECT_TRUE(same(mesh.mMaterialAABBs[5], {{1, -1, -2}, {3, 5, 0}, true}));
  EXPECT_TRUE(same(mesh.mMaterialAABBs[6], {{-4, 2, 8}, {-4, 2, 8}, true}));
  EXPECT_TRUE(same(mesh.mAABB, {{-4, -1, -2}, {3, 5, 8}, true}));
  mesh.mVertices[1].y = NAN;
  mesh.ProcessAABB();
  EXPECT_TRUE(same(mesh.mMaterialAABBs[5], {{1, 5, -2}, {3, 5, 0}, true}));
}

TEST(MeshProcessing, ASquareHasFourEdgesAndFoldedFive) {
  Mesh::Impl mesh;
  mesh.mVertices = kSquare;
  mesh.mTriangles = {{0, 1, 2}, {0, 2, 3}};
  mesh.Process();
  EXPECT_TRUE(same(mesh.mEdges, {{0, 1}, {1, 2}, {2, 3}, {3, 0}}));
  mesh.mVertices[3].z = 0.5f;
  mesh.ProcessLightWeight();
  EXPECT_TRUE(same(mesh.mEdges, {{0, 1}, {1, 2}, {2, 0}, {2, 3}, {3, 0}}));
}

TEST(MeshProcessing, AReachedSectionStillUsesUpALabel) {
  Mesh::Impl mesh;
  mesh.mVertices.resize(9);
  mesh.mTriangles = {{0, 1, 2}, {3, 4, 5}, {2, 6, 7}, {8, 8, 8}};
  mesh.mMaterialIDs = {1, 1, 2, 3};
  mesh.Process();
  EXPECT_EQ(mesh.mGroupIDs, (std::vector<unsigned int>{0, 1, 0, 3}));
}

// Few vertices, so that edges belong to many triangles and corners repeat.
TEST(MeshProcessing, EdgesAndGroupsAreThoseOfTheLiteralWalk) {
  for (unsigned int seed = 0; seed < 400; ++seed) {
    Dice dice(seed);
    Mesh::Impl mesh;
    const unsigned int vertices = 3 + dice(30), triangles = dice(60), materials = 1 + dice(5);
    for (unsigned int v = 0; v < vertices; ++v) mesh.mVertices.push_back(dice.position(true));
    for (unsigned int t = 0; t < triangles; ++t) {
      mesh.mTriangles.push_back(dice.corners(vertices));
      mesh.mMaterialIDs.push_back(dice(materials));
    }
    mesh.Process();
    std::vector<Position> normals;
    for (const Corners& c : mesh.mTriangles) normals.push_back(faceNormal(mesh.mVertices, c));
    const Lists lists = listTriangles(vertices, mesh.mTriangles);
    ASSERT_TRUE(same(mesh.mEdges, walkEdges(mesh.mTriangles, normals, lists))) << seed;
    ASSERT_EQ(mesh.mGroupIDs, walkGroups(mesh.mTriangles, mesh.mSections, lists)) << seed;
  }
}

TEST(MeshProcessing, AFanAroundOneVertexTakesLinearTime) {
  constexpr unsigned int kCount = 100000;
  Mesh::Impl mesh;
  mesh.mVertices.resize(kCount + 2);
  for (unsigned int v = 1; v < kCount + 2; ++v) mesh.mVertices[v] = {static_cast<float>(v), 1, 0};
  for (unsigned int t = 0; t < kCount; ++t) mesh.mTriangles.push_back({0, t + 1, t + 2});
  const std::clock_t start = std::clock();
  mesh.Process();
  EXPECT_LT(static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC, 5) << "0.1 s when quick";
  EXPECT_EQ(mesh.mEdges.size(), kCount + 2);
  EXPECT_EQ(mesh.mGroupIDs.back(), 0u);
}

TEST(MeshProcessing, ManyMaterialsEachHaveASectionAndABox) {
  Mesh::Impl mesh;
  mesh.mVertices.resize(1100);
  for (unsigned int t = 0; t < 1100; ++t) {
    mesh.mVertices[t] = {static_cast<float>(t), 0, 0};
    mesh.mTriangles.push_back({t, t, t});
    mesh.mMaterialIDs.push_back(1099 - t);
  }
  mesh.Process();
  ASSERT_EQ(mesh.mSections.size(), 1100u);
  EXPECT_EQ(mesh.mMaterialAABBs.count(), 1100u);
  EXPECT_EQ(mesh.mMaterialAABBs[1099].mMax.x, 0);
  EXPECT_EQ(mesh.mMaterialAABBs[0].mMin.x, 1099);
}
