#include "vexa/framecollector/XCFrameCollector.h"

#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <random>
#include <set>

#include "models/LiteralFrameCollector.h"
#include "tests/helpers/compare.h"
#include "tests/helpers/vtable_slot.h"
#include "vexa/mesh/MeshEditor.h"
#include "vexa/mesh/uxs_autoptr.h"
#include "vexa/support/XStPushReporter.h"

namespace Norvel::Vexa {
namespace {

using vexa::tests::LiteralFrameCollector;
using vexa::tests::sameBits;
using vexa::tests::sameOrNaN;
using vexa::tests::slotOf;
using vexa::tests::whatOf;
using Matrix = UXS::uxs_generic_mat4<float>;
using Point = Oru::TVector3D<float>;

constexpr UxZel::CZelUUID kNone{}, kSome{{1, 2, 3, 4}};

struct Messages : XIReporter {
  void ReportMsg(EMsgType type, const char* text) override {
    EXPECT_EQ(type, kMsgWarning);
    ++mCount;
    mTexts.insert(text);
  }
  int mCount = 0;
  std::set<std::string> mTexts;
};

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

// How the nodes of a random rig differ in their frames.
enum class Rig { kEqual, kEqualUnderIdentity, kUnequal, kFaulty };

// Random numbers, of which some are odd where `isHostile`.
class Dice {
 public:
  Dice(unsigned seed, bool isHostile) : mRandom(seed), mIsHostile(isHostile) {}

  unsigned below(unsigned n) { return unsigned(mRandom() % n); }
  float real() {
    const float kOdd[] = {0, -0.0f, INFINITY, NAN, 3e38f, 1e-45f, -1e-40f};
    if (mIsHostile && below(40) == 0) return kOdd[below(7)];
    return float(int(below(2000)) - 1000) / 300.0f;
  }
  Matrix matrix() {
    Matrix m;
    for (float& e : m.e) e = real();
    return m;
  }

 private:
  std::mt19937 mRandom;
  bool mIsHostile;
};

// Fills a collector at random. In a faulty rig some nodes lack takes or frames, and some links name
// no node.
void fill(XIFrameCollector& ioCollector, Rig rig, std::size_t vertices, unsigned seed) {
  Dice dice(seed, seed % 3 == 0);
  if (rig != Rig::kEqualUnderIdentity) ioCollector.SetGlobalTransformation(dice.matrix());
  const bool isFaulty = rig == Rig::kFaulty;
  const unsigned nodes = 1 + dice.below(4);
  if (!isFaulty) ioCollector.CreateTake();
  for (unsigned n = 0; n < nodes; ++n) {
    if (isFaulty) ioCollector.CreateTake();
    const int node = int(ioCollector.AddTransformation(dice.matrix(), 0, -1));
    for (unsigned i = rig == Rig::kEqual ? 3 : 1 + dice.below(7); i > 1; --i) {
      const unsigned take = isFaulty ? dice.below(n + 1) : 0;
      if (rig != Rig::kEqualUnderIdentity || i < 4) {
        ioCollector.AddTransformation(dice.matrix(), take, node);
      }
    }
  }
  for (unsigned v = 0; v < vertices; ++v) {
    for (unsigned i = dice.below(7); i > 0; --i) {
      const int node = int(isFaulty ? dice.below(nodes + 2) : 1 + dice.below(nodes)) - 1;
      ioCollector.AddLink(node, kNone, v, double(dice.real()) / 3);
    }
  }
}

bool sameNumbers(const Point& a, const Point& b) {
  return sameOrNaN(a.x, b.x) && sameOrNaN(a.y, b.y) && sameOrNaN(a.z, b.z);
}

// Positions 0 and 1 are the destructors.
TEST(XIFrameCollector, OperationsHaveTheirPositions) {
  using I = XIFrameCollector;
  Point (I::*byAddress)(const Point*, unsigned, unsigned) const = &I::TransformPoint;
  Point (I::*byIndex)(unsigned, unsigned, unsigned) const = &I::TransformPoint;
  const std::vector<std::ptrdiff_t> slots{slotOf(&I::AddTransformation),
                                          slotOf(&I::SetGlobalTransformation),
                                          slotOf(&I::GetGlobalTransformation),
                                          slotOf(&I::GetTransformation),
                                          slotOf(&I::AddLink),
                                          slotOf(&I::GetVertexTransformation),
                                          slotOf(byAddress),
                                          slotOf(byIndex),
                                          slotOf(&I::GetCurrentDefinition),
                                          slotOf(&I::GetSize),
                                          slotOf(&I::CreateTake)};
  EXPECT_EQ(slots, (std::vector<std::ptrdiff_t>{2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
}

// The literal form answers twice where the library answers three times and reports what it skips.
TEST(XCFrameCollector, EqualsTheLiteralFormToTheBit) {
  Messages messages;
  const XStPushReporter scope(&messages, false);
  for (unsigned seed = 0; seed < 120; ++seed) {
    Dice dice(seed, seed % 5 == 0);
    std::vector<Point> points(seed % 10 == 9 ? 300 : seed % 23);
    for (Point& p : points) p = {dice.real(), dice.real(), dice.real()};
    const auto mesh = meshOf(points);
    const std::vector<Point>& rest = mesh->GetVerticesArray();
    XCFrameCollector collector(mesh.get());
    LiteralFrameCollector literal(rest);
    fill(collector, Rig(seed % 4), rest.size(), seed);
    fill(literal, Rig(seed % 4), rest.size(), seed);
    messages.mCount = 0;
    for (unsigned frame = 0; frame < 5; ++frame) {
      for (unsigned take = 0; take < 5; ++take) {
        const auto& deformed =
            collector.GetCurrentDefinition(take, frame, kNone)->GetVerticesArray();
        ASSERT_EQ(deformed.size(), rest.size());
        for (std::size_t v = 0; v < rest.size(); ++v) {
          const Point expected = literal.TransformPoint(&rest[v], take, frame);
          ASSERT_TRUE(sameNumbers(deformed[v], expected)) << seed << ' ' << v;
          ASSERT_TRUE(sameNumbers(collector.TransformPoint(&rest[v], take, frame), expected));
          double sum = 7, expectedSum = 7;
          const Matrix m = literal.GetVertexTransformation(&rest[v], take, frame, expectedSum);
          const Matrix n = collector.GetVertexTransformation(&rest[v], take, frame, sum);
          for (int k = 0; k < 16; ++k) ASSERT_TRUE(sameOrNaN(m.e[k], n.e[k]));
          ASSERT_TRUE(sameOrNaN(sum, expectedSum));
        }
      }
    }
    EXPECT_EQ(2 * messages.mCount, 3 * literal.skipped());
  }
  const std::string who = "XCFrameCollector::FillMatrix : ", how = " (assertion failed)";
  EXPECT_EQ(messages.mTexts,
            (std::set<std::string>{
                who + "XCFrameCollector::GetTransformation : bad node index" + how,
                who + "XCTransformationNode::GetTransformationsNbr : bad take index" + how,
                who + "XCTransformationNode::GetTransformation : bad transformation index" + how}));
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
