#include "vexa/paths/XCZELPathAgent.h"

#include <gtest/gtest.h>

#include "refhost/Path.h"
#include "tests/helpers/compare.h"
#include "tests/helpers/vtable_slot.h"

namespace {

using namespace vexa;
using Norvel::Vexa::XCZELPathAgent;
using tests::slotOf;
using tests::whatOf;
using V3 = UXS::uxs_generic_vec3<float>;

TEST(PathAgent, WhatIsSetIsStoredRelativeToThePassagePoint) {
  refhost::Path path;
  const refhost::BezierPoint& point = path.mPoints.add();
  XCZELPathAgent agent(&path);
  agent.setPassagePointPositionAt(0, {10, 20, 0.1f});
  EXPECT_EQ(point.mPassage.z, double(0.1f));
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
  agent.BlockSynchronization();
  agent.UnBlockSynchronization();
  EXPECT_EQ(agent.getPassagePointPositionAt(0), V3(10, 20, 0.1f));
}

TEST(PathAgent, AddsAndRemovesPointsOfAPathButNotOfAList) {
  refhost::Path path;
  path.mPoints.add().mPassage = {1, 0, 0};
  XCZELPathAgent agent(&path);
  EXPECT_TRUE(agent.addNewPointAt(0));
  EXPECT_EQ(agent.getNbBezierPoints(), 2u);
  EXPECT_EQ(agent.getPassagePointPositionAt(1).x, 1);
  EXPECT_TRUE(agent.removePointAt(1));
  EXPECT_EQ(agent.getPassagePointPositionAt(0).x, 0);

  XCZELPathAgent listAgent(&path.mPoints);
  const char* text = " XCZELPathAgent::addNewPointAt - mPath is not initialized";
  EXPECT_EQ(whatOf([&] { listAgent.addNewPointAt(0); }), text);
  EXPECT_EQ(whatOf([&] { listAgent.removePointAt(0); }), text);  // required: the same text
  EXPECT_EQ(whatOf([&] { listAgent.setPathClosed(true); }),
            "XCZELPathAgent::setPathClosed - mPath is not initialized");
  EXPECT_EQ(agent.getNbBezierPoints(), 1u);
  path.mHasPointList = false;
  EXPECT_EQ(whatOf([&] { XCZELPathAgent(&path).removePointAt(0); }),
            "XC3DPath::removePointAt - can not get path's BezierPointsMgr");
}

TEST(PathAgent, VirtualOperationsStandInOrder) {
  using Agent = Norvel::Vexa::XTPathAgent<V3, V3, float>;
  const std::ptrdiff_t slots[] = {slotOf(&Agent::PointsMgrExist),
                                  slotOf(&Agent::getNbBezierPoints),
                                  slotOf(&Agent::addNewPointAt),
                                  slotOf(&Agent::removePointAt),
                                  slotOf(&Agent::getPassagePointPositionAt),
                                  slotOf(&Agent::setPassagePointPositionAt),
                                  slotOf(&Agent::getBeforeControlPointAt),
                                  slotOf(&Agent::setBeforeControlPointAt),
                                  slotOf(&Agent::getAfterControlPointAt),
                                  slotOf(&Agent::setAfterControlPointAt),
                                  slotOf(&Agent::getToBeforeCtrlPtAt),
                                  slotOf(&Agent::setToBeforeCtrlPtAt),
                                  slotOf(&Agent::getToAfterCtrlPtAt),
                                  slotOf(&Agent::setToAfterCtrlPtAt),
                                  slotOf(&Agent::getAfterControlPointWeightAt),
                                  slotOf(&Agent::getBeforeControlPointWeightAt),
                                  slotOf(&Agent::getTangentLockedAt),
                                  slotOf(&Agent::setTangentLockedAt),
                                  slotOf(&Agent::getPathClosed),
                                  slotOf(&Agent::setPathClosed),
                                  slotOf(&Agent::BlockSynchronization),
                                  slotOf(&Agent::UnBlockSynchronization)};
  std::ptrdiff_t expected = 0;
  for (const std::ptrdiff_t slot : slots) EXPECT_EQ(slot, expected++);
}

}  // namespace
