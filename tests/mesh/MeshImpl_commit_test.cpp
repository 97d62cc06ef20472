// Commits at speed against the steps one by one, and without memory.
#include <gtest/gtest.h>

#include "tests/helpers/failing_new.h"
#include "tests/mesh/mesh_fixtures.h"
#include "vexa/mesh/MeshImpl.h"
#include "vexa/mesh/MeshSmoothData.h"
#include "vexa/mesh/MeshSmoothList.h"

using namespace UXS;
using namespace vexa::tests;

namespace {

using Impl = Mesh::Impl;

/// Triangles around neighbouring vertices, of several materials, in bands or mixed.
void fillTriangles(Dice& dice, Impl& outMesh, unsigned int vertices) {
  const unsigned int count = dice(120), spread = 1 + dice(vertices), mixed = dice(2);
  for (unsigned int t = 0; t < count; ++t) {
    const unsigned int first = dice(vertices);
    const auto near = [&] { return (first + dice(spread)) % vertices; };
    outMesh.mTriangles.push_back({near(), near(), first});
    outMesh.mMaterialIDs.push_back(mixed ? dice(4) : t / 30);
    const float u = static_cast<float>(dice(2) * mixed);
    outMesh.mUVCoords.push_back({{u, 0}, {}, {}});
  }
}

/// Positions that are calm, flat with zeros of one sign or of both, or wild.
void fillPositions(Dice& dice, Mesh::Position* out, unsigned int vertices) {
  const unsigned int kind = dice(5);
  for (unsigned int v = 0; v < vertices; ++v) {
    const auto calm = [&] { return (static_cast<float>(dice(999)) - 499.5f) * 0.37f; };
    const float zero = kind == 1 || (kind == 2 && dice(2) == 0) ? -0.0f : 0.0f;
    out[v] = {calm(), calm(), kind == 4 ? calm() : zero};
    if (kind == 3) out[v] = dice.position();
  }
}

void runSteps(Impl& io) {
  io.ProcessTrianglesSort();
  io.ProcessSections();
  const MeshSmoothData data(io);
  const MeshSmoothList list(io);
  io.ProcessTrianglesNormals(data, list, 0);
  io.ProcessAABB();
  io.ProcessEdges(data, list);
  io.ProcessGroupID(list);
}

bool sameBoxes(const Impl& a, const Impl& b) {
  if (!same(a.mAABB, b.mAABB) || a.mMaterialAABBs.count() != b.mMaterialAABBs.count()) return false;
  for (const auto& cell : b.mMaterialAABBs.cells()) {
    const auto* const box = a.mMaterialAABBs.find(cell.key);
    if (box == nullptr || !same(*box, cell.value)) return false;
  }
  return true;
}

bool sameMesh(const Impl& a, const Impl& b) {
  return same(a.mVertices, b.mVertices) && same(a.mTriangles, b.mTriangles.get()) &&
         same(a.mMaterialIDs, b.mMaterialIDs.get()) && same(a.mUVCoords, b.mUVCoords.get()) &&
         same(a.mSmoothNormals, b.mSmoothNormals) && same(a.mSections, b.mSections.get()) &&
         same(a.mEdges, b.mEdges) && same(a.mGroupIDs, b.mGroupIDs.get()) && sameBoxes(a, b);
}

}  // namespace

// The first commit, one after an edit, and copies with positions of their own, made in new memory
// and in that of the copy before.
TEST(MeshCommit, GivesWhatTheStepsGive) {
  for (unsigned int seed = 0; seed < 400; ++seed) {
    Dice dice(seed);
    const unsigned int vertices = 1 + dice(60);
    Impl mesh, expected;
    mesh.mVertices.resize(vertices);
    fillTriangles(dice, mesh, vertices);
    fillPositions(dice, mesh.mVertices.data(), vertices);
    if (dice(3) == 0) mesh.mSmoothNormals.resize(dice(3) * mesh.mTriangles.size() / 2);
    expected.Copy(mesh, false);
    mesh.Process();
    runSteps(expected);
    ASSERT_TRUE(sameMesh(mesh, expected)) << seed;
    for (int frame = 0; frame < 4; ++frame) {
      Impl copy, expectedCopy;
      copy.CopyWithoutPositions(mesh);
      fillPositions(dice, copy.mVertices.data(), vertices);
      expectedCopy.Copy(mesh, true);
      expectedCopy.mVertices = copy.mVertices;
      copy.Process();
      runSteps(expectedCopy);
      ASSERT_TRUE(sameMesh(copy, expectedCopy)) << seed;
    }
    if (!mesh.mTriangles.empty()) mesh.mTriangles.edit().pop_back();
    expected.Copy(mesh, false);
    mesh.Process();
    runSteps(expected);
    ASSERT_TRUE(sameMesh(mesh, expected)) << seed << ", after an edit";
  }
}

TEST(MeshCommit, WithoutMemoryChangesNothing) {
  for (unsigned int seed = 0; seed < 20; ++seed) {
    for (long failing = 0, fired = 1; fired != 0; ++failing) {
      Dice dice(seed);
      Impl rest, mesh, before;
      rest.mVertices.resize(40);
      fillTriangles(dice, rest, 40);
      fillPositions(dice, rest.mVertices.data(), 40);
      rest.Process();
      mesh.Copy(rest, false);
      if (seed % 4 != 0) mesh.Process();
      fillTriangles(dice, mesh, 40);
      before.Copy(mesh, false);
      before.mMaterialIDs = mesh.mMaterialIDs;
      before.mUVCoords = mesh.mUVCoords;
      before.mSections = mesh.mSections;
      before.mGroupIDs = mesh.mGroupIDs;
      before.mEdges = mesh.mEdges;
      before.mSmoothNormals = mesh.mSmoothNormals;
      const auto commit = [&] {
        if (seed % 2 == 0) return mesh.Process();
        if (seed % 5 == 0) return mesh.CopyWithoutPositions(rest);
        mesh.ProcessLightWeight();
      };
      const bool thrown = throwsAt(failing, false, commit);
      fired = gMemory.mFired;
      ASSERT_EQ(thrown, gMemory.mFired);
      if (!thrown) continue;
      ASSERT_TRUE(same(mesh.mTriangles, before.mTriangles.get())) << seed << ": " << failing;
      ASSERT_TRUE(same(mesh.mSmoothNormals, before.mSmoothNormals));
      ASSERT_TRUE(same(mesh.mUVCoords, before.mUVCoords.get()));
      ASSERT_TRUE(same(mesh.mMaterialIDs, before.mMaterialIDs.get()));
      ASSERT_TRUE(same(mesh.mEdges, before.mEdges) && same(mesh.mSections, before.mSections.get()));
      ASSERT_TRUE(same(mesh.mGroupIDs, before.mGroupIDs.get()));
    }
  }
}
