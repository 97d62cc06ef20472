#include "vexa/animation/CKeyFrameTool.h"

#include <cstring>

#include "vexa/animation/civil_time_internal.h"
#include "vexa/math/conversion.h"

using Norvel::Vexa::wrapAdd;
using Norvel::Vexa::wrapSub;

namespace UxZel {

namespace {

// Bytes, not numbers: 0.0 and -0.0 differ, a NaN equals itself, and bytes that the value type
// leaves unused count.
bool sameBytes(const IZelKeyFrame::uValue& a, const IZelKeyFrame::uValue& b) {
  static_assert(sizeof(a.mBytes) == sizeof(a), "the whole value");
  return std::memcmp(a.mBytes, b.mBytes, sizeof(a.mBytes)) == 0;
}

}  // namespace

bool CKeyFrameTool::AreKeyFrameDifferents(const IZelKeyFrame& a, const IZelKeyFrame& b) {
  return !sameBytes(*a.GetValue(), *b.GetValue());
}

bool CKeyFrameTool::AreValueDifferents(const IZelKeyFrame::uValue& a,
                                       const IZelKeyFrame::uValue& b) {
  return sameBytes(a, b);  // required behaviour: against the name
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
