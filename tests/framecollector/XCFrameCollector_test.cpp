#include "vexa/framecollector/XCFrameCollector.h"

#include <cmath>
#include <functional>
#include <gtest/gtest.h>

#include "tests/helpers/compare.h"
#include "vexa/mesh/MeshEditor.h"
#include "vexa/mesh/uxs_autoptr.h"

namespace Norvel::Vexa {
namespace {

using vexa::tests::sameBits;
using vexa::tests::whatOf;
using Matrix = UXS::uxs_generic_mat4<float>;
using Point = Oru::TVector3D<float>;

constexpr UxZel::CZelUUID kNone{}, kSome{{1, 2, 3, 4}};

// A mesh with one reference, on which a collector stands.
UXS::uxs_autoptr<UXS::Mesh> meshOf(const std::vector<Point>& inPoints) {
  UXS::uxs_autoptr<UXS::Mesh> mesh(new UXS::Mesh);
  mesh->increment();
  UXS::Mesh::Editor editor(*mesh, false);
  for (const Point& p : inPoints) editor.AddVertex(p);
  return mesh;
}

Matrix translation(float x, float y, float z) {
  return {{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, x, y, z, 1}};
}

TEST(XCFrameCollector, KnowsVerticesByTheirAddressOnly) {
  const auto mesh = meshOf({{1, 1, 1}, {1, 1, 1}});
  XCFrameCollector collector(mesh.get());
  collector.CreateTake();
  collector.AddLink(int(collector.AddTransformation({}, 0, -1)), kNone, 0, 1);
  const Point* vertex = mesh->GetVerticesArray().data();
  double sum = 7;  // stays: no vertex is at the second coordinate of one, nor at the end
  for (const Point* other : {reinterpret_cast<const Point*>(&vertex->y), vertex + 1, vertex + 2}) {
    collector.GetVertexTransformation(other, 0, 0, sum);
    EXPECT_EQ(sum, 7);
  }
  EXPECT_EQ(collector.TransformPoint(0u, 0u, 0u), Point());
}

TEST(XCFrameCollector, ADefinitionIsKeptUntilItsFrameChanges) {
  const auto mesh = meshOf({{1, 2, 3}});
  XCFrameCollector collector(mesh.get());
  UXS::Mesh* first = collector.GetCurrentDefinition(0, 0, kNone);
  EXPECT_EQ(collector.GetCurrentDefinition(0, 0, kNone), first);
  EXPECT_NE(collector.GetCurrentDefinition(0, 0, kSome), first);
  first->increment();
  const UXS::uxs_autoptr<UXS::Mesh> mine(first);
  EXPECT_EQ(first->GetReferenceCount(), 2);
  EXPECT_NE(collector.GetCurrentDefinition(0, 1, kNone), first);
  EXPECT_EQ(first->GetReferenceCount(), 1);
  EXPECT_EQ(mesh->GetReferenceCount(), 1);
}

TEST(XCFrameCollector, AWeightThatIsInfiniteAsAFloatMeetsTheZerosOfTheGlobalMatrix) {
  const auto mesh = meshOf({{1, 2, 3}});
  XCFrameCollector collector(mesh.get());
  collector.CreateTake();
  Matrix tiny;
  for (float& element : tiny.e) element = 1e-10f;
  const int node = int(collector.AddTransformation(tiny, 0, -1));
  for (const double weight : {7e38, -3e38, -3e38}) collector.AddLink(node, kNone, 0, weight);
  EXPECT_TRUE(std::isnan(collector.TransformPoint(mesh->GetVerticesArray().data(), 0, 0).x));
  EXPECT_TRUE(std::isnan(collector.GetCurrentDefinition(0, 0, kNone)->GetVerticesArray()[0].x));
}

// It must not be edited; the vertices that are left must not be written past their end.
TEST(XCFrameCollector, RefusesAMeshAtRestThatHasLostVertices) {
  const auto mesh = meshOf(std::vector<Point>(300)), smaller = meshOf({{1, 2, 3}});
  XCFrameCollector collector(mesh.get());
  collector.GetCurrentDefinition(0, 0, kNone);
  UXS::Mesh::Editor(*mesh, false).Copy(*smaller, true);
  EXPECT_EQ(whatOf([&] { collector.GetCurrentDefinition(0, 1, kNone); }),
            "XCFrameCollector::GetCurrentDefinition : the mesh at rest has lost vertices"
            " (assertion failed)");
}

TEST(XCFrameCollector, CountsItsSizeAndRefusesWhatIsNotThere) {
  const auto mesh = meshOf({{0, 0, 0}, {1, 1, 1}});
  XCFrameCollector collector(mesh.get());
  EXPECT_EQ(collector.GetSize(), 0u);
  EXPECT_EQ(whatOf([&] { collector.AddTransformation({}, 0, -1); }),
            "XCTransformationNode::AddTransformation : bad take index (assertion failed)");
  EXPECT_EQ(collector.GetSize(), 64u + 32);  // the node is there and knows no take
  collector.CreateTake();
  collector.CreateTake();
  EXPECT_EQ(collector.GetNbrTakes(), 2u);
  EXPECT_STREQ(collector.GetTake(1)->GetName(), "");
  EXPECT_EQ(collector.GetTake(1)->GetFPS(), 0.33);
  collector.GetTake(1)->SetName("walk");
  collector.GetTake(1)->SetFPS(25);
  EXPECT_STREQ(collector.GetTake(1)->GetName(), "walk");
  EXPECT_EQ(collector.GetTake(1)->GetFPS(), 25);
  collector.GetTake(1)->SetName(nullptr);
  EXPECT_STREQ(collector.GetTake(1)->GetName(), "");
  EXPECT_EQ(collector.AddTransformation({}, 1, -1), 1u);
  EXPECT_EQ(collector.GetSize(), 96u + 64 + 32 + 48 * 2);
  collector.AddLink(1, kSome, 0, 0.5);
  collector.AddLink(1, kSome, 0, 0.5);
  EXPECT_EQ(collector.GetSize(), 288u + 72 + 28 + 28);
  const struct {
    std::string mText;
    std::function<void()> mCall;
  } kRefused[] = {
      {"XCFrameCollector::AddTransformation : bad node index",
       [&] { collector.AddTransformation({}, 0, 2); }},
      {"XCFrameCollector::GetTransformation : bad node index",
       [&] { collector.GetTransformation(0, 0, 2); }},
      {"XCFrameCollector::GetTransformation : bad node index",
       [&] { collector.GetTransformation(0, 0, -1); }},
      {"XCTransformationNode::GetTransformation : bad take index",
       [&] { collector.GetTransformation(0, 0, 0); }},
      {"XCTransformationNode::GetTransformation : bad transformation index",
       [&] { collector.GetTransformation(0, 0, 1); }},
      {"XCFrameCollector::AddLink : bad vertex index", [&] { collector.AddLink(0, kNone, 2, 1); }},
      {"XCFrameCollector::GetTake : bad take index", [&] { collector.GetTake(2); }},
  };
  for (const auto& refused : kRefused) {
    EXPECT_EQ(whatOf(refused.mCall), refused.mText + " (assertion failed)");
  }
  EXPECT_EQ(collector.GetSize(), 416u + 64);  // counted before it was refused
}

TEST(XCFrameCollector, TakesMatricesOutOfItsOwnStorage) {
  const auto mesh = meshOf({});
  XCFrameCollector collector(mesh.get());
  collector.CreateTake();
  collector.AddTransformation(translation(1, 2, 3), 0, -1);
  for (int i = 0; i < 100; ++i) {
    collector.AddTransformation(collector.GetTransformation(0, 0, 0), 0, 0);
    const int node = int(collector.AddTransformation(collector.GetTransformation(0, 0, 0), 0, -1));
    ASSERT_TRUE(sameBits(collector.GetTransformation(0, 0, node), translation(1, 2, 3)));
    ASSERT_TRUE(sameBits(collector.GetTransformation(0, unsigned(node), 0), translation(1, 2, 3)));
  }
}

TEST(XCTransformationNode, CopiesShareNothing) {
  XCTransformationNode node(2);
  node.AddTransformation(translation(1, 2, 3), 1);
  XCTransformationNode copy(node);
  copy.AddTransformation({}, 1);
  EXPECT_TRUE(sameBits(copy.GetTransformation(1, 0), translation(1, 2, 3)));
  EXPECT_EQ(node.GetTransformationsNbr(1), 1u);
  node = copy;
  EXPECT_EQ(node.GetTransformationsNbr(1), 2u);
}

}  // namespace
}  // namespace Norvel::Vexa
