#include "vexa/paths/XCZELPathAgent.h"

#include <gtest/gtest.h>

#include "refhost/Path.h"
#include "tests/helpers/compare.h"

namespace {

using namespace vexa;
using Norvel::Vexa::XCZELPathAgent;
using tests::whatOf;

TEST(PathAgent, WhatIsSetIsStoredRelativeToThePassagePoint) {
  refhost::Path path;
  const refhost::BezierPoint& point = path.mPoints.add();
  XCZELPathAgent agent(&path);
  agent.setPassagePointPositionAt(0, {10, 20, 0.1f});
  agent.setBeforeControlPointAt(0, {9, 18, 0});
  agent.setAfterControlPointAt(0, {11, 22, 0});
  EXPECT_EQ(point.mBefore.y, -2);
  EXPECT_EQ(point.mAfter.z, -double(0.1f));
}

TEST(PathAgent, AddsAndRemovesPointsOfAPathButNotOfAList) {
  refhost::Path path;
  path.mPoints.add().mPassage = {1, 0, 0};
  XCZELPathAgent agent(&path);
  EXPECT_TRUE(agent.addNewPointAt(0));
  EXPECT_TRUE(agent.removePointAt(1));
  EXPECT_EQ(agent.getPassagePointPositionAt(0).x, 0);
  XCZELPathAgent listAgent(&path.mPoints);
  EXPECT_EQ(whatOf([&] { listAgent.removePointAt(0); }),
            " XCZELPathAgent::addNewPointAt - mPath is not initialized")
      << "required: the text of the other operation";
}

// A host has two lists: one to read and one to write.
struct TwoLists final : UxZel::IZel3DPath {
  mutable refhost::List<UxZel::IZelBezierPoint, refhost::BezierPoint> mRead, mWritten;

  const UxZel::IZelIdentity* GetIdentity() const override { return nullptr; }
  bool IsPathClosed() const override { return false; }
  void SetPathClosed(bool) override {}
  const UxZel::TZelObjectMgr<UxZel::IZelBezierPoint>* GetBezierPoints() const override {
    return &mRead;
  }
  UxZel::TZelObjectMgr<UxZel::IZelBezierPoint>* GetBezierPoints() override { return &mWritten; }
};

TEST(PathAgent, EditsTheListThatMayBeWritten) {
  TwoLists path;
  XCZELPathAgent(&path).addNewPointAt(0);
  EXPECT_EQ(path.mRead.GetCount(), 0);
  EXPECT_EQ(path.mWritten.GetCount(), 1);
}

// A list whose host counts downwards.
struct NegativeList final : UxZel::TZelObjectMgr<UxZel::IZelBezierPoint> {
  int GetCount() const override { return -3; }
  void RemoveAt(unsigned int) override {}
  UxZel::IZelBezierPoint* GetAt(int) const override { return nullptr; }
  void InsertAt(unsigned int) override {}
};

TEST(PathAgent, ANegativeCountIsNone) {
  const NegativeList list;
  EXPECT_EQ(XCZELPathAgent(&list).getNbBezierPoints(), 0u);
}

}  // namespace
