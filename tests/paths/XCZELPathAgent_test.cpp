#include "vexa/paths/XCZELPathAgent.h"

#include <gtest/gtest.h>

#include "refhost/Path.h"
#include "tests/helpers/compare.h"
#include "tests/helpers/vtable_slot.h"

namespace {

using namespace vexa;
using Norvel::Vexa::XCZELPathAgent;
using tests::whatOf;
using V3 = UXS::uxs_generic_vec3<float>;
using Agent = Norvel::Vexa::XTPathAgent<V3, V3, float>;

TEST(PathAgent, WhatIsSetIsStoredRelativeToThePassagePoint) {
  refhost::Path path;
  const refhost::BezierPoint& point = path.mPoints.add();
  XCZELPathAgent agent(&path);
  agent.setPassagePointPositionAt(0, {10, 20, 0.1f});
  agent.setBeforeControlPointAt(0, {9, 18, 0});
  agent.setAfterControlPointAt(0, {11, 22, 0});
  EXPECT_EQ(point.mBefore.y, -2);
  EXPECT_EQ(point.mAfter.z, -double(0.1f));
  EXPECT_EQ(agent.getBeforeControlPointAt(0), V3(9, 18, 0));
  agent.setToBeforeCtrlPtAt(0, {-5, 0, 0});
  agent.setToAfterCtrlPtAt(0, {5, 0, 0});
  EXPECT_EQ(agent.getBeforeControlPointAt(0), V3(5, 20, 0.1f));
  EXPECT_EQ(agent.getAfterControlPointAt(0), V3(15, 20, 0.1f));
  agent.setTangentLockedAt(0, true);
  EXPECT_TRUE(point.mTangentLocked);
  agent.setPathClosed(true);
  EXPECT_TRUE(path.mClosed);
}

TEST(PathAgent, AddsAndRemovesPointsOfAPathButNotOfAList) {
  refhost::Path path;
  path.mPoints.add().mPassage = {1, 0, 0};
  XCZELPathAgent agent(&path);
  EXPECT_TRUE(agent.addNewPointAt(0));
  EXPECT_EQ(agent.getPassagePointPositionAt(1).x, 1);
  EXPECT_TRUE(agent.removePointAt(1));
  EXPECT_EQ(agent.getPassagePointPositionAt(0).x, 0);

  XCZELPathAgent listAgent(&path.mPoints);
  const char* text = " XCZELPathAgent::addNewPointAt - mPath is not initialized";
  EXPECT_EQ(whatOf([&] { listAgent.addNewPointAt(0); }), text);
  EXPECT_EQ(whatOf([&] { listAgent.removePointAt(0); }), text);  // required: the same text
  EXPECT_EQ(whatOf([&] { listAgent.setPathClosed(true); }),
            "XCZELPathAgent::setPathClosed - mPath is not initialized");
  EXPECT_EQ(
      whatOf([&] { XCZELPathAgent(static_cast<UxZel::IZel3DPath*>(nullptr)).removePointAt(0); }),
      "XC3DPath::removePointAt - can not get path's BezierPointsMgr");
}

TEST(PathAgent, VirtualOperationsStandInOrder) {
  EXPECT_TRUE(tests::standInOrderFrom(
      0, &Agent::PointsMgrExist, &Agent::getNbBezierPoints, &Agent::addNewPointAt,
      &Agent::removePointAt, &Agent::getPassagePointPositionAt, &Agent::setPassagePointPositionAt,
      &Agent::getBeforeControlPointAt, &Agent::setBeforeControlPointAt,
      &Agent::getAfterControlPointAt, &Agent::setAfterControlPointAt, &Agent::getToBeforeCtrlPtAt,
      &Agent::setToBeforeCtrlPtAt, &Agent::getToAfterCtrlPtAt, &Agent::setToAfterCtrlPtAt,
      &Agent::getAfterControlPointWeightAt, &Agent::getBeforeControlPointWeightAt,
      &Agent::getTangentLockedAt, &Agent::setTangentLockedAt, &Agent::getPathClosed,
      &Agent::setPathClosed, &Agent::BlockSynchronization, &Agent::UnBlockSynchronization));
}

}  // namespace
