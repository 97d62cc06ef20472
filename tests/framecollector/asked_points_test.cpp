// Points that are asked for one after another have the bits of the literal form.
#include <algorithm>
#include <gtest/gtest.h>
#include <random>

#include "models/LiteralFrameCollector.h"
#include "tests/helpers/compare.h"
#include "tests/helpers/recording_reporter.h"
#include "vexa/framecollector/XCFrameCollector.h"
#include "vexa/mesh/MeshEditor.h"
#include "vexa/mesh/uxs_autoptr.h"
#include "vexa/support/XStPushReporter.h"

namespace Norvel::Vexa {
namespace {

using Point = Oru::TVector3D<float>;
using Matrix = UXS::uxs_generic_mat4<float>;

// A collector beside the literal one; whatever is added goes to both.
class AskedPoints : public testing::Test {
 protected:
  AskedPoints() {
    mMesh->increment();
    {
      UXS::Mesh::Editor editor(*mMesh, false);
      for (int v = 0; v < 300; ++v) editor.AddVertex({real(), real(), real()});
    }
    for (const Point& vertex : mMesh->GetVerticesArray()) mOrder.push_back(&vertex);
    both([](XIFrameCollector& c) { c.CreateTake(); });
    for (int node = 0; node < 5; ++node) addFrames(-1, 3);
    for (unsigned v = 0; v < 290; ++v) {
      for (int i = 0; i < 4; ++i) addLink(int(mRandom() % 5), v);
    }
  }
  float real() { return float(mRandom() % 2001) / 1000 - 1; }
  template <class Call>
  void both(Call call) {
    call(mCollector);
    call(mLiteral);
  }
  // Appends frames to a node, or to a new one for -1; returns its index.
  int addFrames(int node, int count) {
    for (; count > 0; --count) {
      Matrix matrix;
      for (float& e : matrix.e) e = real();
      both([&](XIFrameCollector& c) { c.AddTransformation(matrix, 0, node); });
      if (node < 0) node = mNodes++;
    }
    return node;
  }
  void addLink(int node, unsigned vertex) {
    const double weight = double(real());
    both([&](XIFrameCollector& c) { c.AddLink(node, {}, vertex, weight); });
  }
  void layOut() { mCollector.GetCurrentDefinition(0, ++mOtherFrame, {}); }
  void expectSame(unsigned take, unsigned frame) {
    mReporter.lines.clear();
    const int skipped = mLiteral.skipped();
    std::reverse(mOrder.begin(), mOrder.end());  // so that it starts where the last pass ended
    for (const Point* const vertex : mOrder) {
      const Point a = mCollector.TransformPoint(vertex, take, frame);
      const Point b = mLiteral.TransformPoint(vertex, take, frame);
      using vexa::tests::sameOrNaN;
      ASSERT_TRUE(sameOrNaN(a.x, b.x) && sameOrNaN(a.y, b.y) && sameOrNaN(a.z, b.z))
          << (vertex - mMesh->GetVerticesArray().data());
    }
    EXPECT_EQ(int(mReporter.lines.size()), mLiteral.skipped() - skipped);
  }

  vexa::tests::RecordingReporter mReporter;
  const XStPushReporter mScope{&mReporter, false};
  std::minstd_rand mRandom{1};
  UXS::uxs_autoptr<UXS::Mesh> mMesh{new UXS::Mesh};
  XCFrameCollector mCollector{mMesh.get()};
  vexa::tests::LiteralFrameCollector mLiteral{mMesh->GetVerticesArray()};
  std::vector<const Point*> mOrder;
  int mNodes = 0;
  unsigned mOtherFrame = 100;
};

TEST_F(AskedPoints, WhateverChangesInBetween) {
  for (const bool laidOut : {false, true, true}) {
    if (laidOut) layOut();
    for (const unsigned frame : {1u, 2u, 7u, 1u}) expectSame(0, frame);
    expectSame(1, 1);  // a take that no node has
    expectSame(0, 1);
    const Matrix global{{real(), 1, 0.5f, 0, 3}};
    both([&](XIFrameCollector& c) { c.SetGlobalTransformation(global); });
    expectSame(0, 1);
    addLink(2, 150);
    expectSame(0, 1);
    layOut();
    expectSame(0, 1);
    addLink(mNodes, 151);  // to a node that comes later
    layOut();
    expectSame(0, 1);
    const int late = addFrames(-1, 1);  // fewer frames than the others
    layOut();
    expectSame(0, 1);
    expectSame(0, 0);
    addFrames(late, 1);
    expectSame(0, 0);
    expectSame(0, 1);
  }
}

// The rest mesh must not be edited; who does so all the same gets the point of the vertex as it is.
TEST_F(AskedPoints, ThePositionOfAVertexIsReadAtEachCall) {
  layOut();
  expectSame(0, 1);
  expectSame(0, 1);
  const_cast<Point&>(mMesh->GetVerticesArray()[280]).x += 1;
  expectSame(0, 1);
}

}  // namespace
}  // namespace Norvel::Vexa
