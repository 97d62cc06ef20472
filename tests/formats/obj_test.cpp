#include "formats/obj.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>

#include "tests/helpers/compare.h"
#include "tests/mesh/mesh_fixtures.h"

using namespace vexa::formats;
using vexa::tests::sameBits;
using vexa::tests::whatOf;

namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();

std::string errorOf(const std::string& text) {
  return whatOf([&] { parseObj(text, "a.obj"); });
}

}  // namespace

TEST(Obj, EveryFloatComesBackAsItWas) {
  ObjModel model;
  vexa::tests::Dice dice(1);
  model.points = {{0.1f, -0.0f, 1e-45f}, {3.4028235e38f, -kInfinity, 1.17549435e-38f}};
  while (model.points.size() < 3000) {
    const std::uint32_t bits[3] = {dice(0xFFFFFFFF), dice(0xFFFFFFFF), dice(0xFFFFFFFF)};
    Oru::TVector3D<float> p;
    std::memcpy(&p, bits, sizeof(bits));
    if (std::isnan(p.x) || std::isnan(p.y) || std::isnan(p.z)) continue;  // their bits are not kept
    model.points.push_back(p);
  }
  model.points.push_back({NAN, 0, 0});
  model.triangles = {{{{{0, 0.1f, 0.7f}, {1, 0, 0}, {2, 0.1f, 0.7f}}}, 4000000000u},
                     {{{{2, -0.0f, 1}, {2, 0, 0}, {2, 0, 0}}}, 3}};
  const ObjModel back = parseObj(formatObj(model), "");
  ASSERT_EQ(back.points.size(), model.points.size());
  for (std::size_t i = 0; i + 1 < model.points.size(); ++i) {
    ASSERT_TRUE(sameBits(back.points[i], model.points[i])) << i;
  }
  EXPECT_TRUE(std::isnan(back.points.back().x));
  ASSERT_EQ(back.triangles.size(), 2u);
  for (unsigned t = 0; t < 2; ++t) EXPECT_TRUE(sameBits(back.triangles[t], model.triangles[t]));
  EXPECT_TRUE(back.materials.empty());
}

TEST(Obj, NamesPolygonsAndRelativeIndices) {
  const ObjModel model = parseObj(
      "# a square and a triangle\r\n"
      "v 0 0 0\r\nv +1 0 0 0.5\r\nv 1 1 0\r\nv 0 1 0\r\n"
      "vt 0.25\r\nvn 0 0 1\r\nmtllib absent.mtl\r\no thing\r\n"
      "f 1 2//1 -2/1/1 4\r\nusemtl oak wood \r\nf -4 -3 -2",
      "");
  EXPECT_EQ(model.points[1].x, 1);
  ASSERT_EQ(model.triangles.size(), 3u);
  EXPECT_EQ(model.triangles[1].corners[0].point, 0u);
  EXPECT_EQ(model.triangles[1].corners[1].point, 2u);
  EXPECT_EQ(model.triangles[1].corners[1].u, 0.25f);
  EXPECT_EQ(model.triangles[2].corners[2].point, 2u);
  EXPECT_EQ(model.materials, (std::vector<std::string>{"", "oak wood"}));
  EXPECT_EQ(model.triangles[2].material, 1u);
  EXPECT_EQ(parseObj(formatObj(model), "").materials, model.materials);
}

TEST(Obj, FaultsAreNamedWithTheirLine) {
  EXPECT_EQ(errorOf("v 0 0 0\n\nv 1 x 0\n"), "a.obj:3: \"x\" is no number");
  EXPECT_EQ(errorOf("v 0 0"), "a.obj:1: expected 3 numbers");
  EXPECT_EQ(errorOf("v 0 0 1e39"), "a.obj:1: \"1e39\" is no number");
  EXPECT_EQ(errorOf("v 0 0 0\r\rf 1 1 2"), "a.obj:3: point 2 of 1");
  EXPECT_EQ(errorOf("v 0 0 0\nf 1 1 0"), "a.obj:2: point 0 of 1");
  EXPECT_EQ(errorOf("v 0 0 0\nf 1/1 1 1"), "a.obj:2: uv 1 of 0");
  EXPECT_EQ(errorOf("v 0 0 0\nf 1 1"), "a.obj:2: a face of 2 corners");
  EXPECT_EQ(whatOf([] { readObj("absent.obj"); }), "absent.obj: No such file or directory");
  EXPECT_EQ(whatOf([] { readObj("."); }), ".: Is a directory");
  ObjModel model;
  model.triangles.resize(1);
  EXPECT_EQ(whatOf([&] { formatObj(model); }), "triangle 0 has point 0 of 0");
}

TEST(Obj, AMeshGoesOutAndComesBack) {
  UXS::Mesh mesh, back;
  vexa::tests::build(mesh, vexa::tests::kSquare, {{0, 1, 2}, {0, 2, 3}}, 8);
  {
    UXS::Mesh::Editor editor(mesh, false);
    editor.SetTriangleUVCoords(1, {{0, 0}, {0.5f, 1}, {1, 0.25f}});
  }
  writeObj("square.obj", objOf(mesh));
  {
    UXS::Mesh::Editor editor(back, false);
    addTo(editor, readObj("square.obj"));
  }
  EXPECT_TRUE(vexa::tests::same(mesh.GetTrianglesArray(), back.GetTrianglesArray()));
  EXPECT_TRUE(vexa::tests::same(mesh.GetVerticesArray(), back.GetVerticesArray()));
  EXPECT_TRUE(vexa::tests::same(mesh.GetTriangleUVCoords(1), back.GetTriangleUVCoords(1)));
  EXPECT_EQ(back.GetSectionMaterialID(0), 8u);
  std::remove("square.obj");
}
