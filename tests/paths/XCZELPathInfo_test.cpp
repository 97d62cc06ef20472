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
using tests::slotOf;
using tests::whatOf;
using V3 = UXS::uxs_generic_vec3<float>;

// At (10, 20, 30); arrives over a leg of length 5 and leaves over one of length 13.
refhost::Path onePoint() {
  refhost::Path path;
  refhost::BezierPoint& point = path.mPoints.add();
  point.mPassage = {10, 20, 30};
  point.mBefore = {-3, -4, 0};
  point.mAfter = {3, 4, 12};
  point.mTangentLocked = true;
  return path;
}

template <class Reader>
void expectThePoint(const Reader& reader) {
  EXPECT_TRUE(reader.PointsMgrExist());
  EXPECT_EQ(reader.getNbBezierPoints(), 1u);
  EXPECT_EQ(reader.getPassagePointPositionAt(0), V3(10, 20, 30));
  EXPECT_EQ(reader.getBeforeControlPointAt(0), V3(7, 16, 30));
  EXPECT_EQ(reader.getAfterControlPointAt(0), V3(13, 24, 42));
  EXPECT_EQ(reader.getToBeforeCtrlPtAt(0), V3(-3, -4, 0));
  EXPECT_EQ(reader.getToAfterCtrlPtAt(0), V3(3, 4, 12));
  EXPECT_EQ(reader.getBeforeControlPointWeightAt(0), 5);
  EXPECT_EQ(reader.getAfterControlPointWeightAt(0), 13);
  EXPECT_TRUE(reader.getTangentLockedAt(0));
  EXPECT_FALSE(reader.getPathClosed());
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

// Calls an operation without a list, then for a point that is not there.
template <class Call>
void expectTexts(const std::string& operation, Call call) {
  refhost::Path path = onePoint();
  path.mHasPointList = false;
  const std::string noList = "XC3DPath::" + operation + " - can not get path's BezierPointsMgr";
  EXPECT_EQ(whatOf([&] { call(path); }), noList);
  path.mHasPointList = true;
  const std::string noPoint =
      "XCZELPathAgent::" + operation + " : can not get BezierPoint (pointer is NULL)";
  EXPECT_EQ(whatOf([&] { call(path); }), noPoint);
}

#define EXPECT_TEXTS(Class, operation, ...) \
  expectTexts(#operation, [](refhost::Path& path) { Class(&path).operation(__VA_ARGS__); })

TEST(PathInfo, ErrorsNameTheOperation) {
  constexpr unsigned int kAbsent = 1, kFar = 0xffffffffu;
  EXPECT_TEXTS(XCZELPathInfo, getPassagePointPositionAt, kAbsent);
  EXPECT_TEXTS(XCZELPathInfo, getBeforeControlPointAt, kFar);
  EXPECT_TEXTS(XCZELPathInfo, getAfterControlPointAt, kAbsent);
  EXPECT_TEXTS(XCZELPathInfo, getToBeforeCtrlPtAt, kFar);
  EXPECT_TEXTS(XCZELPathInfo, getToAfterCtrlPtAt, kAbsent);
  EXPECT_TEXTS(XCZELPathInfo, getAfterControlPointWeightAt, kAbsent);
  EXPECT_TEXTS(XCZELPathInfo, getBeforeControlPointWeightAt, kAbsent);
  EXPECT_TEXTS(XCZELPathInfo, getTangentLockedAt, kAbsent);
  EXPECT_TEXTS(XCZELPathAgent, getTangentLockedAt, kAbsent);
  EXPECT_TEXTS(XCZELPathAgent, setPassagePointPositionAt, kAbsent, V3());
  EXPECT_TEXTS(XCZELPathAgent, setBeforeControlPointAt, kAbsent, V3());
  EXPECT_TEXTS(XCZELPathAgent, setAfterControlPointAt, kAbsent, V3());
  EXPECT_TEXTS(XCZELPathAgent, setToBeforeCtrlPtAt, kAbsent, V3());
  EXPECT_TEXTS(XCZELPathAgent, setToAfterCtrlPtAt, kAbsent, V3());
  EXPECT_TEXTS(XCZELPathAgent, setTangentLockedAt, kAbsent, true);
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
  using Info = Norvel::Vexa::XTPathInfo<V3, V3, float>;
  const std::ptrdiff_t slots[] = {slotOf(&Info::PointsMgrExist),
                                  slotOf(&Info::getNbBezierPoints),
                                  slotOf(&Info::getPassagePointPositionAt),
                                  slotOf(&Info::getBeforeControlPointAt),
                                  slotOf(&Info::getAfterControlPointAt),
                                  slotOf(&Info::getToBeforeCtrlPtAt),
                                  slotOf(&Info::getToAfterCtrlPtAt),
                                  slotOf(&Info::getAfterControlPointWeightAt),
                                  slotOf(&Info::getBeforeControlPointWeightAt),
                                  slotOf(&Info::getTangentLockedAt),
                                  slotOf(&Info::getPathClosed)};
  std::ptrdiff_t expected = 0;
  for (const std::ptrdiff_t slot : slots) EXPECT_EQ(slot, expected++);
}

}  // namespace
