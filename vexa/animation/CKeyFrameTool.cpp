#include "vexa/animation/CKeyFrameTool.h"

#include <cstring>

#include "vexa/animation/civil_time_internal.h"
#include "vexa/math/conversion.h"

using Norvel::Vexa::wrapAdd;
using Norvel::Vexa::wrapSub;

namespace UxZel {

bool CKeyFrameTool::AreKeyFrameDifferents(const IZelKeyFrame& inA, const IZelKeyFrame& inB) {
  return std::memcmp(inA.GetValue(), inB.GetValue(), sizeof(IZelKeyFrame::uValue)) != 0;
}

bool CKeyFrameTool::AreValueDifferents(const IZelKeyFrame::uValue& inA,
                                       const IZelKeyFrame::uValue& inB) {
  return std::memcmp(&inA, &inB, sizeof(IZelKeyFrame::uValue)) == 0;
}

void CKeyFrameTool::GetTime(const IZelKeyFrame::uValue& inValue, IZelTime* outTime) {
  Norvel::Vexa::CivilTime time;
  if (!Norvel::Vexa::civilTimeOf(inValue.mDate, time)) return;
  outTime->setDay(time.mDay);
  outTime->setHour(time.mHour);
  outTime->setMinute(time.mMinute);
  outTime->setMonth(time.mMonth + 1);
  outTime->setYear(wrapAdd(time.mYear, 1900));
}

IZelKeyFrame::uValue CKeyFrameTool::ComputeValue(const IZelTime& inTime) {
  Norvel::Vexa::CivilTime time;
  time.mMinute = inTime.getMinute();
  time.mHour = inTime.getHour();
  time.mDay = inTime.getDay();
  time.mMonth = wrapSub(inTime.getMonth(), 1);
  time.mYear = wrapSub(inTime.getYear(), 1900);
  IZelKeyFrame::uValue value{};
  value.mDate = Norvel::Vexa::secondsOf(time);
  return value;
}

}  // namespace UxZel
