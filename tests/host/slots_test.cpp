// Two independent proofs that each operation stands at its position: the slot number inside the
// pointer to member, and the entry of a hand-made table that a call really reaches.
#include <cstddef>
#include <gtest/gtest.h>

#include "tests/helpers/counterfeit.h"
#include "tests/helpers/vtable_slot.h"
#include "vexa/host/CZelMatrix.h"
#include "vexa/host/IZelInterpolatedValue.h"
#include "vexa/host/IZelMgr.h"
#include "vexa/host/IZelPolygon.h"
#include "vexa/host/IZelTime.h"
#include "vexa/host/IZelZelObjectDefinition.h"

using namespace UxZel;
using vexa::tests::slotOf;
using vexa::tests::slotReached;

namespace {

/// Both proofs for one operation, called with the arguments in parentheses.
#define EXPECT_SLOT(position, Interface, operation, arguments)                             \
  EXPECT_EQ(slotOf(&Interface::operation), position) << #operation;                        \
  EXPECT_EQ(slotReached<Interface>([](Interface& i) { i.operation arguments; }), position) \
      << #operation

using Keys = TZelObjectMgr<IZelKeyFrame>;

}  // namespace

TEST(HostSlots, ListsAndIdentities) {
  EXPECT_SLOT(8, Keys, GetCount, ());
  EXPECT_SLOT(9, Keys, RemoveAt, (0));
  EXPECT_SLOT(13, Keys, GetAt, (0));
  EXPECT_SLOT(14, Keys, InsertAt, (0));
  EXPECT_SLOT(2, IZelIdentity, GetUUID, ());
}

TEST(HostSlots, KeysAndProperties) {
  EXPECT_SLOT(2, IZelKeyFrame, GetValueType, ());
  EXPECT_SLOT(4, IZelKeyFrame, GetValue, ());
  EXPECT_SLOT(6, IZelKeyFrame, GetFrame, ());
  EXPECT_SLOT(10, IZelKeyFrame, GetInterpolationType, ());
  EXPECT_SLOT(2, IZelInterpolatedValue, GetPropertyType, ());
  EXPECT_SLOT(4, IZelInterpolatedValue, GetKeyFrames, ());
  EXPECT_SLOT(8, IZelInterpolatedValue, IsCyclic, ());
  EXPECT_SLOT(10, IZelInterpolatedValue, GetRepeatCount, ());
  EXPECT_SLOT(12, IZelInterpolatedValue, GetPathUUID, ());
}

TEST(HostSlots, SceneAndSettings) {
  EXPECT_SLOT(33, IZelMgr, GetObjectInstances, ());
  EXPECT_SLOT(43, IZelMgr, GetSettingsList, ());
  EXPECT_SLOT(44, IZelMgr, Get3DPaths, ());
  EXPECT_SLOT(16, IZelSettings, GetTimeScale, ());
}

TEST(HostSlots, Paths) {
  EXPECT_SLOT(6, IZel3DPath, GetIdentity, ());
  EXPECT_SLOT(7, IZel3DPath, IsPathClosed, ());
  EXPECT_SLOT(8, IZel3DPath, SetPathClosed, (true));
  using Points = TZelObjectMgr<IZelBezierPoint>;
  EXPECT_EQ(slotOf<const Points* (IZel3DPath::*)() const>(&IZel3DPath::GetBezierPoints), 9);
  EXPECT_EQ(slotOf<Points* (IZel3DPath::*)()>(&IZel3DPath::GetBezierPoints), 10);
  EXPECT_EQ(slotReached<const IZel3DPath>([](const IZel3DPath& p) { p.GetBezierPoints(); }), 9);
  EXPECT_EQ(slotReached<IZel3DPath>([](IZel3DPath& p) { p.GetBezierPoints(); }), 10);

  EXPECT_SLOT(2, IZelBezierPoint, GetPassagePoint, ());
  EXPECT_SLOT(3, IZelBezierPoint, SetPassagePoint, (nullptr));
  EXPECT_SLOT(4, IZelBezierPoint, GetBeforeControlOffset, ());
  EXPECT_SLOT(5, IZelBezierPoint, SetBeforeControlOffset, (nullptr));
  EXPECT_SLOT(6, IZelBezierPoint, GetAfterControlOffset, ());
  EXPECT_SLOT(7, IZelBezierPoint, SetAfterControlOffset, (nullptr));
  EXPECT_SLOT(8, IZelBezierPoint, GetTangentLocked, ());
  EXPECT_SLOT(9, IZelBezierPoint, SetTangentLocked, (true));
}

TEST(HostSlots, Instances) {
  EXPECT_SLOT(6, IZelObjectInstance, GetIdentity, ());
  EXPECT_SLOT(7, IZelObjectInstance, GetClassName, ());
  EXPECT_SLOT(9, IZelObjectInstance, GetParentUUID, ());
  EXPECT_SLOT(11, IZelObjectInstance, SetAnchor, (nullptr));
  EXPECT_SLOT(16, IZelObjectInstance, GetScale, ());
  EXPECT_SLOT(21, IZelObjectInstance, GetPosition, ());
  EXPECT_SLOT(22, IZelObjectInstance, SetPosition, (nullptr));
  EXPECT_SLOT(27, IZelObjectInstance, GetRotation, ());
  EXPECT_SLOT(28, IZelObjectInstance, SetRotation, (0));
  EXPECT_SLOT(47, IZelObjectInstance, GetAnimationState, ());
  EXPECT_SLOT(52, IZelObjectInstance, GetDirection, ());
  EXPECT_SLOT(53, IZelObjectInstance, SetDirection, (nullptr));
  EXPECT_SLOT(70, IZelObjectInstance, GetPlantGroupFlag, ());
  EXPECT_SLOT(71, IZelObjectInstance, GetBillboardEnabled, ());

  EXPECT_SLOT(0, IZelAnimationState, GetCurrentFrame, ());
  EXPECT_SLOT(1, IZelAnimationState, SetCurrentFrame, (0));
  EXPECT_SLOT(2, IZelAnimationState, GetTakeIndex, ());
  EXPECT_SLOT(4, IZelAnimationState, GetStartOffset, ());
  EXPECT_SLOT(5, IZelAnimationState, SetStartOffset, (0));
  EXPECT_SLOT(6, IZelAnimationState, GetFrameOffset, ());
}

TEST(HostSlots, DefinitionsAndAnimatedObjects) {
  EXPECT_SLOT(11, IZelZelObjectDefinition, GetSizeRecord, ());
  EXPECT_SLOT(52, IZelZelObjectDefinition, GetAnimatedObject, ());
  EXPECT_SLOT(0, IZelAnimatedObject, GetAnimationKind, ());
  EXPECT_SLOT(4, IZelAnimatedObject, GetTakes, ());
  EXPECT_SLOT(6, IZelAnimatedObject, GetAnchorVertex, ());
  EXPECT_SLOT(2, IZelTake, GetFrameCount, ());
  EXPECT_SLOT(6, IZelTake, GetFrameRate, ());
  EXPECT_SLOT(8, IZelTake, GetElevation, ());
  EXPECT_SLOT(3, IZelPolygon, GetMaterialIndex, ());
  EXPECT_SLOT(5, IZelPolygon, GetVertices, ());
}

TEST(HostSlots, Time) {
  EXPECT_SLOT(0, IZelTime, getMonth, ());
  EXPECT_SLOT(1, IZelTime, setMonth, (1));
  EXPECT_SLOT(2, IZelTime, getDay, ());
  EXPECT_SLOT(3, IZelTime, setDay, (1));
  EXPECT_SLOT(4, IZelTime, getHour, ());
  EXPECT_SLOT(5, IZelTime, setHour, (1));
  EXPECT_SLOT(6, IZelTime, getMinute, ());
  EXPECT_SLOT(7, IZelTime, setMinute, (1));
  EXPECT_SLOT(8, IZelTime, getYear, ());
  EXPECT_SLOT(9, IZelTime, setYear, (1));
  EXPECT_EQ(slotReached<IZelTime>([](IZelTime& t) { t.~IZelTime(); }), 10);
}

// Values cross the boundary as bytes.
TEST(HostValues, LayoutAndOrder) {
  static_assert(sizeof(CZelUUID) == 16 && sizeof(CZelPoint) == 24 && sizeof(CZelVector) == 24 &&
                sizeof(CZelMatrix) == 128 && sizeof(IZelKeyFrame::uValue) == 24);
  static_assert(offsetof(sPolygonCorner, mPointIndex) == 0 && offsetof(sPolygonCorner, mU) == 8 &&
                offsetof(sPolygonCorner, mV) == 12 && offsetof(sSizeRecord, mElevation) == 16);
  const CZelUUID low{{0, 9, 9, 9}}, high{{0x80000000u, 0, 0, 0}}, last{{0, 9, 9, 10}};
  EXPECT_TRUE(low < high) << "words are unsigned, the first decides";
  EXPECT_TRUE(low < last && !(last < low) && !(low < low));
  EXPECT_TRUE(isNone(CZelUUID{}) && !isNone(CZelUUID{{0, 0, 0, 1}}));
}
