#include <gtest/gtest.h>

#include "tests/mesh/mesh_fixtures.h"
#include "vexa/mesh/mesh_frame_internal.h"

using namespace UXS;
using namespace vexa::tests;

// Every form that this machine has against the plain one: any number of triangles, of positions
// that are calm or hostile; vertices that are used once or, like the last, often.
TEST(MeshFrame, AllFormsGiveTheSameBits) {
  const mesh_frame::Forms plain = mesh_frame::formsFor(1);
  for (unsigned int seed = 0; seed < 600; ++seed) {
    Dice dice(seed);
    std::vector<Mesh::Corners> triangles;
    std::vector<Mesh::Position> positions;
    const unsigned int vertices = 3 + dice(40), kind = dice(3);
    for (unsigned int v = 0; v < vertices; ++v) {
      const auto calm = [&] { return static_cast<float>(dice(999)) * 0.37f - 100; };
      // A strip with folds around 0.26 degrees, where the last bit of a product decides.
      const float up = static_cast<float>(dice(999)) * 1e-5f, along = static_cast<float>(v) * 0.7f;
      positions.push_back(kind == 0   ? Mesh::Position{along, static_cast<float>(v % 2), up}
                          : kind == 1 ? Mesh::Position{calm(), calm(), 1e-25f * calm()}
                                      : dice.position());
    }
    for (unsigned int t = seed % 70; t > 0; --t) {
      const unsigned int a = dice(vertices);
      triangles.emplace_back(a, (a + 1) % vertices, dice(4) ? (a + 2) % vertices : dice(vertices));
    }
    const FrameTopology topology(triangles, vertices);
    std::vector<Mesh::CornerPositions> normals(triangles.size()), expected(triangles.size());
    std::vector<Edge> edges, expectedEdges;
    mesh_frame::fillFaceNormals(positions, topology, expected, plain);
    mesh_frame::fillEdges(expected, topology.mEdges, expectedEdges, plain);
    for (const std::size_t lanes : {8u, 16u}) {
      const mesh_frame::Forms form = mesh_frame::formsFor(lanes);
      mesh_frame::fillFaceNormals(positions, topology, normals, form);
      mesh_frame::fillEdges(normals, topology.mEdges, edges, form);
      ASSERT_TRUE(same(normals, expected)) << form.mLanes << " lanes, seed " << seed;
      ASSERT_TRUE(same(edges, expectedEdges)) << form.mLanes << " lanes, seed " << seed;
    }
  }
}
