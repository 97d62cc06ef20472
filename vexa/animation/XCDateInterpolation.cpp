#include "vexa/animation/XCDateInterpolation.h"

#include <cstdint>
#include <stdexcept>

#include "vexa/animation/CKeyFrameTool.h"
#include "vexa/animation/XCTimeImpl.h"
#include "vexa/math/conversion.h"

namespace Norvel::Vexa {

namespace {

constexpr std::int64_t kSecondsPerDay = 86400;

/// A fresh time, set from a date where that has one.
XCTimeImpl timeOf(std::int64_t seconds) {
  UxZel::IZelKeyFrame::uValue value{};
  value.mDate = seconds;
  XCTimeImpl time;
  UxZel::CKeyFrameTool::GetTime(value, &time);
  return time;
}

/// Seconds since midnight, by the minute.
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

/// How far a time has come: `elapsed` of `duration`.
struct Progress {
  double mElapsed, mDuration;

  double between(std::int64_t from, std::int64_t to) const {
    return mElapsed * static_cast<double>(wrapSub(to, from)) / mDuration +
           static_cast<double>(from);  // order: exact floats
  }
};

}  // namespace

XCDateInterpolation::XCDateInterpolation(double inStartTime, double inEndTime,
                                         const uValue& inStartValue, const uValue& inEndValue)
    : XCInterpolation(inStartTime, inEndTime), mStartValue(inStartValue), mEndValue(inEndValue) {
  if (!(inStartTime < inEndTime)) {
    throw std::runtime_error(
        "XCDateInterpolation::XCDateInterpolation - startTime superior to endtime");
  }
}

void XCDateInterpolation::setStartTime(double inStartTime) {
  if (!(mEndTime > inStartTime)) {
    throw std::runtime_error(
        "XTDateInterpolation::setStartTime - inStartTime superior at end Time");
  }
  mStartTime = inStartTime;
}

void XCDateInterpolation::setEndTime(double inEndTime) {
  if (!(inEndTime > mStartTime)) {
    throw std::runtime_error("XTDateInterpolation::setEndTime - inEndTime inferior at start Time");
  }
  mEndTime = inEndTime;
}

auto XCDateInterpolation::getStartValue() const -> const uValue* { return &mStartValue; }
auto XCDateInterpolation::getEndValue() const -> const uValue* { return &mEndValue; }
void XCDateInterpolation::setStartValue(const uValue& inValue) { mStartValue = inValue; }
void XCDateInterpolation::setEndValue(const uValue& inValue) { mEndValue = inValue; }

double XCDateInterpolation::valueAt(double inTime) const {
  const std::int64_t start = mStartValue.mDate, end = mEndValue.mDate;
  if (!(mStartTime < inTime && inTime < mEndTime)) {
    if (inTime < mStartTime || inTime > mEndTime) {
      throw std::runtime_error("XCDateInterpolation::valueAt - inTime is out of range");
    }
    return static_cast<double>(inTime == mStartTime ? start : end);
  }
  const Progress progress{inTime - mStartTime, mEndTime - mStartTime};
  const std::int64_t low = start < end ? start : end, high = start < end ? end : start;
  if (wrapSub(high, low) <= kSecondsPerDay) return progress.between(low, high);

  // Required behaviour: the date runs from start to end, the time of day from earlier to later.
  const double date = progress.between(midnightOf(start), midnightOf(end));
  const double clock = progress.between(timeOfDay(low), timeOfDay(high));
  const std::int64_t midnight = midnightOf(truncToLong(date));
  const float sum = static_cast<float>(midnight) + static_cast<float>(clock);
  return static_cast<double>(sum);
}

}  // namespace Norvel::Vexa
