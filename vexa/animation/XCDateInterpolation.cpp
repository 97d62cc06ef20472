#include "vexa/animation/XCDateInterpolation.h"

#include <cstdint>
#include <stdexcept>

#include "vexa/animation/CKeyFrameTool.h"
#include "vexa/animation/XCTimeImpl.h"
#include "vexa/math/conversion.h"

namespace Norvel::Vexa {

namespace {

constexpr std::int64_t kSecondsPerDay = 86400;

// A fresh time, set from a date. A date whose year is out of range sets nothing, so it counts as
// the time of a fresh object.
XCTimeImpl timeOf(std::int64_t seconds) {
  UxZel::IZelKeyFrame::uValue value{};
  value.mDate = seconds;
  XCTimeImpl time;
  UxZel::CKeyFrameTool::GetTime(value, &time);
  return time;
}

// Seconds since midnight, by the minute.
std::int64_t timeOfDay(std::int64_t seconds) {
  const XCTimeImpl time = timeOf(seconds);
  return time.getHour() * 3600 + time.getMinute() * 60;
}

std::int64_t midnightOf(std::int64_t seconds) {
  XCTimeImpl time = timeOf(seconds);
  time.setHour(0);
  time.setMinute(0);
  return UxZel::CKeyFrameTool::ComputeValue(time).mDate;
}

// How far a time has come: `elapsed` of `duration`.
struct Progress {
  double mElapsed, mDuration;

  double between(std::int64_t from, std::int64_t to) const {
    return mElapsed * double(wrapSub(to, from)) / mDuration + double(from);  // order: exact floats
  }
};

}  // namespace

XCDateInterpolation::XCDateInterpolation(double startTime, double endTime, const uValue& startValue,
                                         const uValue& endValue)
    : XCInterpolation(startTime, endTime), mStartValue(startValue), mEndValue(endValue) {
  if (!(startTime < endTime)) {
    throw std::runtime_error(
        "XCDateInterpolation::XCDateInterpolation - startTime superior to endtime");
  }
}

void XCDateInterpolation::setStartTime(double startTime) {
  if (!(mEndTime > startTime)) {
    throw std::runtime_error(
        "XTDateInterpolation::setStartTime - inStartTime superior at end Time");
  }
  mStartTime = startTime;
}

void XCDateInterpolation::setEndTime(double endTime) {
  if (!(endTime > mStartTime)) {
    throw std::runtime_error("XTDateInterpolation::setEndTime - inEndTime inferior at start Time");
  }
  mEndTime = endTime;
}

auto XCDateInterpolation::getStartValue() const -> const uValue* { return &mStartValue; }
auto XCDateInterpolation::getEndValue() const -> const uValue* { return &mEndValue; }
void XCDateInterpolation::setStartValue(const uValue& value) { mStartValue = value; }
void XCDateInterpolation::setEndValue(const uValue& value) { mEndValue = value; }

double XCDateInterpolation::valueAt(double time) const {
  const std::int64_t start = mStartValue.mDate, end = mEndValue.mDate;
  if (!(mStartTime < time && time < mEndTime)) {
    if (time < mStartTime || time > mEndTime) {
      throw std::runtime_error("XCDateInterpolation::valueAt - inTime is out of range");
    }
    return double(time == mStartTime ? start : end);
  }
  const Progress progress{time - mStartTime, mEndTime - mStartTime};
  const std::int64_t low = start < end ? start : end, high = start < end ? end : start;
  if (wrapSub(high, low) <= kSecondsPerDay) return progress.between(low, high);

  // Required behaviour: the date runs from start to end, the time of day from earlier to later.
  const double date = progress.between(midnightOf(start), midnightOf(end));
  const double clock = progress.between(timeOfDay(low), timeOfDay(high));
  const std::int64_t midnight = midnightOf(truncToLong(date));
  // Both are rounded to float before they are added. order: exact floats
  const float sum = float(midnight) + float(clock);
  return double(sum);
}

}  // namespace Norvel::Vexa
