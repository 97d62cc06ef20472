#include "vexa/animation/CKeyFrameTool.h"

#include <gtest/gtest.h>
#include <limits>

#include "refhost/Key.h"
#include "vexa/animation/XCTimeImpl.h"

using Norvel::Vexa::XCTimeImpl;
using UxZel::CKeyFrameTool;
using vexa::refhost::dateKey;
using vexa::refhost::realKey;

namespace {

XCTimeImpl timeOf(int year, int month, int day, int hour, int minute) {
  XCTimeImpl time;
  time.setYear(year);
  time.setMonth(month);
  time.setDay(day);
  time.setHour(hour);
  time.setMinute(minute);
  return time;
}

std::int64_t secondsOf(const XCTimeImpl& time) { return CKeyFrameTool::ComputeValue(time).mDate; }

XCTimeImpl timeAt(std::int64_t seconds) {
  XCTimeImpl time;
  CKeyFrameTool::GetTime(dateKey(0, seconds).mValue, &time);
  return time;
}

void expectTime(const XCTimeImpl& time, int year, int month, int day, int hour, int minute) {
  EXPECT_EQ(time.getYear(), year);
  EXPECT_EQ(time.getMonth(), month);
  EXPECT_EQ(time.getDay(), day);
  EXPECT_EQ(time.getHour(), hour);
  EXPECT_EQ(time.getMinute(), minute);
}

}  // namespace

TEST(Time, FreshOneIsTheFirstOf2008AndNothingIsChecked) {
  expectTime(XCTimeImpl(), 2008, 1, 1, 0, 0);
  expectTime(timeOf(-1, 99, 0, -5, 1000), -1, 99, 0, -5, 1000);
}

TEST(KeyFrameTool, DatesGoBothWays) {
  EXPECT_EQ(secondsOf(timeOf(2024, 2, 29, 23, 59)), 1709251140);
  expectTime(timeAt(1709251140 + 59), 2024, 2, 29, 23, 59);  // seconds are dropped
  expectTime(timeAt(-1), 1969, 12, 31, 23, 59);
}

TEST(KeyFrameTool, FieldsOutsideTheCalendarCarryOver) {
  EXPECT_EQ(secondsOf(timeOf(2023, 14, 32, 25, -1)), secondsOf(timeOf(2024, 3, 4, 0, 59)));
}

TEST(KeyFrameTool, ADateWithoutACalendarYearSetsNothing) {
  expectTime(timeAt(std::numeric_limits<std::int64_t>::max()), 2008, 1, 1, 0, 0);
  // Years wrap around: one past the last is far in the past, and the other way round.
  constexpr int kMin = std::numeric_limits<int>::min();
  EXPECT_EQ(timeAt(67768036191676799).getYear(), kMin + 1899);
  EXPECT_GT(secondsOf(timeOf(kMin, 1, 1, 0, 0)), 0);
}

TEST(KeyFrameTool, OneComparisonSaysTheOppositeOfItsName) {
  auto a = realKey(0, 1.5), b = realKey(9, 1.5);
  EXPECT_FALSE(CKeyFrameTool::AreKeyFrameDifferents(a, b));
  EXPECT_TRUE(CKeyFrameTool::AreValueDifferents(a.mValue, b.mValue));  // required
  b.mValue.mBytes[23] = 1;
  EXPECT_TRUE(CKeyFrameTool::AreKeyFrameDifferents(a, b));
  EXPECT_FALSE(CKeyFrameTool::AreValueDifferents(a.mValue, b.mValue));
}
