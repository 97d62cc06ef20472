// The order of virtual operations and fields: hosts compiled elsewhere call by position.
#include <cstddef>
#include <gtest/gtest.h>

#include "tests/helpers/vtable_slot.h"
#include "vexa/vexa.h"

using namespace UxZel;
using namespace Norvel::Vexa;
using vexa::tests::slotOf;
using vexa::tests::standInOrderFrom;

namespace {

using Slots = std::vector<std::ptrdiff_t>;
using V3 = UXS::uxs_generic_vec3<float>;

template <class... Members>
Slots slotsOf(Members... members) {
  return {slotOf(members)...};
}

/// A table of functions that note their position, in the place of a host's object.
int lastSlot = -1;
template <int Position>
std::intptr_t note() {
  lastSlot = Position;
  return 0;
}

}  // namespace

// The position that slotOf reads is the one that a call reaches.
TEST(Abi, APositionIsTheEntryOfTheTable) {
  static std::intptr_t (*const kTable[])() = {note<0>, note<1>, note<2>, note<3>,
                                              note<4>, note<5>, note<6>};
  static const void* const kObject = kTable;
  const void* const volatile hidden = &kObject;
  static_cast<const IZelAnimationState*>(hidden)->GetStartOffset();
  EXPECT_EQ(lastSlot, 4);
  EXPECT_EQ(slotOf(&IZelAnimationState::GetStartOffset), 4);
}

TEST(Abi, InterfacesOfTheHost) {
  using Keys = TZelObjectMgr<IZelKeyFrame>;
  EXPECT_EQ(slotsOf(&Keys::GetCount, &Keys::RemoveAt, &Keys::GetAt, &Keys::InsertAt),
            (Slots{8, 9, 13, 14}));
  EXPECT_EQ(slotOf(&IZelIdentity::GetUUID), 2);
  using Key = IZelKeyFrame;
  EXPECT_EQ(slotsOf(&Key::GetValueType, &Key::GetValue, &Key::GetFrame, &Key::GetInterpolationType),
            (Slots{2, 4, 6, 10}));
  using Value = IZelInterpolatedValue;
  EXPECT_EQ(slotsOf(&Value::GetPropertyType, &Value::GetKeyFrames, &Value::IsCyclic,
                    &Value::GetRepeatCount, &Value::GetPathUUID),
            (Slots{2, 4, 8, 10, 12}));
  EXPECT_EQ(slotsOf(&IZelMgr::GetObjectInstances, &IZelMgr::GetSettingsList, &IZelMgr::Get3DPaths),
            (Slots{33, 43, 44}));
  EXPECT_EQ(slotOf(&IZelSettings::GetTimeScale), 16);
  EXPECT_EQ(
      slotsOf(&IZelZelObjectDefinition::GetSizeRecord, &IZelZelObjectDefinition::GetAnimatedObject),
      (Slots{11, 52}));
  EXPECT_EQ(slotsOf(&IZelAnimatedObject::GetAnimationKind, &IZelAnimatedObject::GetTakes,
                    &IZelAnimatedObject::GetAnchorVertex),
            (Slots{0, 4, 6}));
  EXPECT_EQ(slotsOf(&IZelTake::GetFrameCount, &IZelTake::GetFrameRate, &IZelTake::GetElevation),
            (Slots{2, 6, 8}));
  EXPECT_EQ(slotsOf(&IZelPolygon::GetMaterialIndex, &IZelPolygon::GetVertices), (Slots{3, 5}));
  using Time = IZelTime;
  EXPECT_TRUE(standInOrderFrom(0, &Time::getMonth, &Time::setMonth, &Time::getDay, &Time::setDay,
                               &Time::getHour, &Time::setHour, &Time::getMinute, &Time::setMinute,
                               &Time::getYear, &Time::setYear));
}

TEST(Abi, PathsAndInstancesOfTheHost) {
  using Points = TZelObjectMgr<IZelBezierPoint>;
  EXPECT_EQ(
      slotsOf(&IZel3DPath::GetIdentity, &IZel3DPath::IsPathClosed, &IZel3DPath::SetPathClosed,
              static_cast<const Points* (IZel3DPath::*)() const>(&IZel3DPath::GetBezierPoints),
              static_cast<Points* (IZel3DPath::*)()>(&IZel3DPath::GetBezierPoints)),
      (Slots{6, 7, 8, 9, 10}));
  using Point = IZelBezierPoint;
  EXPECT_TRUE(standInOrderFrom(2, &Point::GetPassagePoint, &Point::SetPassagePoint,
                               &Point::GetBeforeControlOffset, &Point::SetBeforeControlOffset,
                               &Point::GetAfterControlOffset, &Point::SetAfterControlOffset,
                               &Point::GetTangentLocked, &Point::SetTangentLocked));
  using Instance = IZelObjectInstance;
  EXPECT_EQ(slotsOf(&Instance::GetIdentity, &Instance::GetClassName, &Instance::GetParentUUID,
                    &Instance::SetAnchor, &Instance::GetScale, &Instance::GetPosition,
                    &Instance::SetPosition, &Instance::GetRotation, &Instance::SetRotation,
                    &Instance::GetAnimationState, &Instance::GetDirection, &Instance::SetDirection,
                    &Instance::GetPlantGroupFlag, &Instance::GetBillboardEnabled),
            (Slots{6, 7, 9, 11, 16, 21, 22, 27, 28, 47, 52, 53, 70, 71}));
  using State = IZelAnimationState;
  EXPECT_EQ(slotsOf(&State::GetCurrentFrame, &State::SetCurrentFrame, &State::GetTakeIndex,
                    &State::GetStartOffset, &State::SetStartOffset, &State::GetFrameOffset),
            (Slots{0, 1, 2, 4, 5, 6}));
}

TEST(Abi, ManagerAndCollector) {
  EXPECT_EQ(slotOf(&Norvel::XIReporter::ReportMsg), 2);
  using Mgr = XIAnimationMgr;
  using Position = Oru::TVector3D<float>;
  using Id = const CZelUUID&;
  Position (Mgr::*byPoint)(const Position*, unsigned, unsigned, Id) const = &Mgr::TransformPoint;
  Position (Mgr::*byIndex)(unsigned, unsigned, unsigned, Id) const = &Mgr::TransformPoint;
  EXPECT_TRUE(standInOrderFrom(0, &Mgr::Delete, &Mgr::InterpolateValue,
                               &Mgr::RegisterAnimatedObject, &Mgr::ManageAnimatedObjectInstance,
                               &Mgr::GetCurrentDefinition, byPoint, byIndex));
  using I = XIFrameCollector;
  Position (I::*atAddress)(const Position*, unsigned, unsigned) const = &I::TransformPoint;
  Position (I::*atIndex)(unsigned, unsigned, unsigned) const = &I::TransformPoint;
  EXPECT_TRUE(standInOrderFrom(2, &I::AddTransformation, &I::SetGlobalTransformation,
                               &I::GetGlobalTransformation, &I::GetTransformation, &I::AddLink,
                               &I::GetVertexTransformation, atAddress, atIndex,
                               &I::GetCurrentDefinition, &I::GetSize, &I::CreateTake));
}

TEST(Abi, CurvesAndPaths) {
  using Line = XTLinearInterpolation<int, int, int>;
  EXPECT_TRUE(standInOrderFrom(2, &Line::getStartTime, &Line::getEndTime, &Line::setStartTime,
                               &Line::setEndTime, &Line::getStartValue, &Line::getEndValue,
                               &Line::getCoeff, &Line::setStartValue, &Line::setEndValue,
                               &Line::valueAt));
  using Sinus = XTSinusInterpolation<V3, V3, float>;
  EXPECT_TRUE(standInOrderFrom(6, &Sinus::getStartValue, &Sinus::getEndValue, &Sinus::setStartValue,
                               &Sinus::setEndValue, &Sinus::valueAt));
  using Dates = XCDateInterpolation;
  EXPECT_TRUE(standInOrderFrom(2, &Dates::getStartTime, &Dates::getEndTime, &Dates::setStartTime,
                               &Dates::setEndTime, &Dates::getStartValue, &Dates::getEndValue,
                               &Dates::setStartValue, &Dates::setEndValue, &Dates::valueAt));
  using Curve = XTBezierCurve<V3, V3, float>;
  EXPECT_TRUE(standInOrderFrom(
      2, &Curve::getStartValue, &Curve::getEndValue, &Curve::getStartControlPoint,
      &Curve::getEndControlPoint, &Curve::setStartValue, &Curve::setEndValue,
      &Curve::setStartControlPoint, &Curve::setEndControlPoint, &Curve::getLengthAproximation,
      &Curve::getFirstCPLengthProportion, &Curve::getEndCPLengthProportion, &Curve::pointAt,
      &Curve::directionAt, &Curve::subdivideCurve, &Curve::FindDistanceFromCoordinate));
  using Info = XTPathInfo<V3, V3, float>;
  EXPECT_TRUE(standInOrderFrom(
      0, &Info::PointsMgrExist, &Info::getNbBezierPoints, &Info::getPassagePointPositionAt,
      &Info::getBeforeControlPointAt, &Info::getAfterControlPointAt, &Info::getToBeforeCtrlPtAt,
      &Info::getToAfterCtrlPtAt, &Info::getAfterControlPointWeightAt,
      &Info::getBeforeControlPointWeightAt, &Info::getTangentLockedAt, &Info::getPathClosed));
  using Agent = XTPathAgent<V3, V3, float>;
  EXPECT_TRUE(standInOrderFrom(
      0, &Agent::PointsMgrExist, &Agent::getNbBezierPoints, &Agent::addNewPointAt,
      &Agent::removePointAt, &Agent::getPassagePointPositionAt, &Agent::setPassagePointPositionAt,
      &Agent::getBeforeControlPointAt, &Agent::setBeforeControlPointAt,
      &Agent::getAfterControlPointAt, &Agent::setAfterControlPointAt, &Agent::getToBeforeCtrlPtAt,
      &Agent::setToBeforeCtrlPtAt, &Agent::getToAfterCtrlPtAt, &Agent::setToAfterCtrlPtAt,
      &Agent::getAfterControlPointWeightAt, &Agent::getBeforeControlPointWeightAt,
      &Agent::getTangentLockedAt, &Agent::setTangentLockedAt, &Agent::getPathClosed,
      &Agent::setPathClosed, &Agent::BlockSynchronization, &Agent::UnBlockSynchronization));
}

TEST(Abi, LayoutOfValues) {
  static_assert(sizeof(CZelUUID) == 16 && sizeof(CZelPoint) == 24 && sizeof(CZelVector) == 24 &&
                sizeof(CZelMatrix) == 128 && sizeof(IZelKeyFrame::uValue) == 24);
  static_assert(offsetof(sPolygonCorner, mPointIndex) == 0 && offsetof(sPolygonCorner, mU) == 8 &&
                offsetof(sPolygonCorner, mV) == 12 && offsetof(sSizeRecord, mElevation) == 16);
  // Behind the table pointer: times, values, then what is computed from them.
  const double line[] = {1, 3, 5, 9, 2};
  const XTLinearInterpolation<double, double, double> curve(1, 3, 5, 9);
  EXPECT_EQ(std::memcmp(reinterpret_cast<const char*>(&curve) + 8, line, sizeof(line)), 0);
  const struct {
    double times[2];
    int values[2];
    double inverseDuration;
    int difference;
  } square = {{1, 3}, {5, 9}, 0.5, 4};
  const XTSquareInterpolation<int, int, int> jump(1, 3, 5, 9);
  EXPECT_EQ(std::memcmp(reinterpret_cast<const char*>(&jump) + 8, &square, 36), 0);
}
