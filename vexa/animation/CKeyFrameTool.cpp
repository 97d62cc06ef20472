#include "vexa/animation/CKeyFrameTool.h"

#include <cstring>
#include <ctime>

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
  const std::time_t seconds = inValue.mDate;
  std::tm fields{};
  if (gmtime_r(&seconds, &fields) == nullptr) return;
  const int hour = fields.tm_hour - fields.tm_isdst;  // the flag is 0 in UTC
  const bool borrow = hour < 0;
  // Required behaviour: the borrowed day does not carry into the month.
  outTime->setDay(borrow ? fields.tm_mday - 1 : fields.tm_mday);
  outTime->setHour(borrow ? hour + 24 : hour);
  outTime->setMinute(fields.tm_min);
  outTime->setMonth(fields.tm_mon + 1);
  outTime->setYear(wrapAdd(fields.tm_year, 1900));
}

IZelKeyFrame::uValue CKeyFrameTool::ComputeValue(const IZelTime& inTime) {
  std::tm fields{};
  fields.tm_min = inTime.getMinute();
  fields.tm_hour = inTime.getHour();
  fields.tm_mday = inTime.getDay();
  fields.tm_mon = wrapSub(inTime.getMonth(), 1);
  fields.tm_year = wrapSub(inTime.getYear(), 1900);
  IZelKeyFrame::uValue value{};
  value.mDate = timegm(&fields);
  return value;
}

}  // namespace UxZel
