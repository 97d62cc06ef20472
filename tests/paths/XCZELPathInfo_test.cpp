#include "vexa/paths/XCZELPathInfo.h"

#include <gtest/gtest.h>
#include <string>

#include "refhost/Path.h"
#include "tests/helpers/compare.h"
#include "tests/helpers/vtable_slot.h"
#include "vexa/paths/XCZELPathAgent.h"

// The info and the agent read alike; where that is so, both are tested here.
namespace {

using namespace vexa;
using Norvel::Vexa::XCZELPathAgent;
using Norvel::Vexa::XCZELPathInfo;
using tests::whatOf;
using V3 = UXS::uxs_generic_vec3<float>;
using Info = Norvel::Vexa::XTPathInfo<V3, V3, float>;

// At (10, 20, 30); arrives over a leg of length 5 and leaves over one of length 13.
refhost::Path onePoint() {
  refhost::BezierPoint point;
  point.mPassage = {10, 20, 30};
  point.mBefore = {-3, -4, 0};
  point.mAfter = {3, 4, 12};
  point.mTangentLocked = true;
  refhost::Path path;
  path.mPoints.add(point);
  return path;
}

template <class Reader>
void expectThePoint(const Reader& reader) {
  EXPECT_EQ(reader.getNbBezierPoints(), 1u);
  EXPECT_EQ(reader.getPassagePointPositionAt(0), V3(10, 20, 30));
  EXPECT_EQ(reader.getBeforeControlPointAt(0), V3(7, 16, 30));
  EXPECT_EQ(reader.getAfterControlPointAt(0), V3(13, 24, 42));
  EXPECT_EQ(reader.getToBeforeCtrlPtAt(0), V3(-3, -4, 0));
  EXPECT_EQ(reader.getToAfterCtrlPtAt(0), V3(3, 4, 12));
  EXPECT_EQ(reader.getBeforeControlPointWeightAt(0), 5);
  EXPECT_EQ(reader.getAfterControlPointWeightAt(0), 13);
  EXPECT_TRUE(reader.getTangentLockedAt(0));
}

TEST(PathInfo, ReadsThePointsAndSoDoesTheAgent) {
  refhost::Path path = onePoint();
  expectThePoint(XCZELPathInfo(&path));
  expectThePoint(XCZELPathAgent(&path));
  expectThePoint(XCZELPathAgent(&path.mPoints));
  path.mClosed = true;
  EXPECT_TRUE(XCZELPathInfo(&path).getPathClosed());
  EXPECT_TRUE(XCZELPathAgent(&path).getPathClosed());
  EXPECT_FALSE(XCZELPathAgent(&path.mPoints).getPathClosed());
  EXPECT_FALSE(XCZELPathInfo(nullptr).getPathClosed());
}

// The offset is added in double: in float it would vanish beside the passage point.
TEST(PathInfo, ControlPointsAreSummedInDouble) {
  refhost::Path path = onePoint();
  refhost::BezierPoint& point = path.mPoints.mElements[0];
  point.mPassage.x = -1e8;
  point.mBefore.x = point.mAfter.x = 1e8 + 0.5;
  EXPECT_EQ(XCZELPathInfo(&path).getBeforeControlPointAt(0).x, 0.5f);
  EXPECT_EQ(XCZELPathInfo(&path).getAfterControlPointAt(0).x, 0.5f);
}

// Calls an operation without a list, then for a point that is not there.
template <class Reader, class Operation, class... Arguments>
void expectTexts(const std::string& name, Operation operation, Arguments... arguments) {
  refhost::Path path = onePoint();
  for (const unsigned int absent : {1u, 0xffffffffu}) {
    const auto call = [&] { (Reader(&path).*operation)(absent, arguments...); };
    path.mHasPointList = false;
    EXPECT_EQ(whatOf(call), "XC3DPath::" + name + " - can not get path's BezierPointsMgr");
    path.mHasPointList = true;
    EXPECT_EQ(whatOf(call),
              "XCZELPathAgent::" + name + " : can not get BezierPoint (pointer is NULL)");
  }
}
#define EXPECT_GETTER_TEXTS(name) expectTexts<XCZELPathInfo>(#name, &XCZELPathInfo::name)
#define EXPECT_SETTER_TEXTS(name, value) \
  expectTexts<XCZELPathAgent>(#name, &XCZELPathAgent::name, value)

TEST(PathInfo, ErrorsNameTheOperation) {
  EXPECT_GETTER_TEXTS(getPassagePointPositionAt);
  EXPECT_GETTER_TEXTS(getBeforeControlPointAt);
  EXPECT_GETTER_TEXTS(getAfterControlPointAt);
  EXPECT_GETTER_TEXTS(getToBeforeCtrlPtAt);
  EXPECT_GETTER_TEXTS(getToAfterCtrlPtAt);
  EXPECT_GETTER_TEXTS(getAfterControlPointWeightAt);
  EXPECT_GETTER_TEXTS(getBeforeControlPointWeightAt);
  EXPECT_GETTER_TEXTS(getTangentLockedAt);
  EXPECT_SETTER_TEXTS(setPassagePointPositionAt, V3());
  EXPECT_SETTER_TEXTS(setBeforeControlPointAt, V3());
  EXPECT_SETTER_TEXTS(setAfterControlPointAt, V3());
  EXPECT_SETTER_TEXTS(setToBeforeCtrlPtAt, V3());
  EXPECT_SETTER_TEXTS(setToAfterCtrlPtAt, V3());
  EXPECT_SETTER_TEXTS(setTangentLockedAt, true);
  EXPECT_EQ(whatOf([] { XCZELPathInfo(nullptr).getNbBezierPoints(); }),
            "XC3DPath::getNbBezierPoints - can not get path's BezierPointsMgr");
}

// A list whose host counts downwards.
struct NegativeList final : UxZel::TZelObjectMgr<UxZel::IZelBezierPoint> {
  int GetCount() const override { return -3; }
  void RemoveAt(unsigned int) override {}
  UxZel::IZelBezierPoint* GetAt(int) const override { return nullptr; }
  void InsertAt(unsigned int) override {}
};

TEST(PathInfo, ANegativeCountIsNone) {
  const NegativeList list;
  EXPECT_EQ(XCZELPathAgent(&list).getNbBezierPoints(), 0u);
}

TEST(PathInfo, VirtualOperationsStandInOrder) {
  EXPECT_TRUE(tests::standInOrderFrom(
      0, &Info::PointsMgrExist, &Info::getNbBezierPoints, &Info::getPassagePointPositionAt,
      &Info::getBeforeControlPointAt, &Info::getAfterControlPointAt, &Info::getToBeforeCtrlPtAt,
      &Info::getToAfterCtrlPtAt, &Info::getAfterControlPointWeightAt,
      &Info::getBeforeControlPointWeightAt, &Info::getTangentLockedAt, &Info::getPathClosed));
}

}  // namespace
