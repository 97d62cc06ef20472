#include "vexa/animation/CKeyFrameTool.h"

#include <cstring>

#include "vexa/animation/civil_time_internal.h"
#include "vexa/math/conversion.h"

using Norvel::Vexa::wrapAdd;
using Norvel::Vexa::wrapSub;

namespace UxZel {

// Both compare bytes, not numbers: 0.0 and -0.0 differ, a NaN equals itself, and bytes that the
// value type leaves unused count.
bool CKeyFrameTool::AreKeyFrameDifferents(const IZelKeyFrame& a, const IZelKeyFrame& b) {
  return std::memcmp(a.GetValue(), b.GetValue(), sizeof(IZelKeyFrame::uValue)) != 0;
}

bool CKeyFrameTool::AreValueDifferents(const IZelKeyFrame::uValue& a,
                                       const IZelKeyFrame::uValue& b) {
  return std::memcmp(&a, &b, sizeof(IZelKeyFrame::uValue)) == 0;
}

void CKeyFrameTool::GetTime(const IZelKeyFrame::uValue& value, IZelTime* outTime) {
  Norvel::Vexa::CivilTime time;
  if (!Norvel::Vexa::civilTimeOf(value.mDate, time)) return;
  // The order of these calls is fixed: a host sees them one by one.
  outTime->setDay(time.mDay);
  outTime->setHour(time.mHour);
  outTime->setMinute(time.mMinute);
  outTime->setMonth(time.mMonth + 1);
  outTime->setYear(wrapAdd(time.mYear, 1900));
}

IZelKeyFrame::uValue CKeyFrameTool::ComputeValue(const IZelTime& when) {
  Norvel::Vexa::CivilTime time;
  time.mMinute = when.getMinute();
  time.mHour = when.getHour();
  time.mDay = when.getDay();
  time.mMonth = wrapSub(when.getMonth(), 1);
  time.mYear = wrapSub(when.getYear(), 1900);
  IZelKeyFrame::uValue value{};
  value.mDate = Norvel::Vexa::secondsOf(time);
  return value;
}

}  // namespace UxZel
