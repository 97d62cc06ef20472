#include "vexa/animation/CKeyFrameTool.h"

#include <gtest/gtest.h>
#include <string>

#include "refhost/Key.h"
#include "vexa/animation/XCTimeImpl.h"

using UxZel::CKeyFrameTool;
using vexa::refhost::dateKey;
using vexa::refhost::realKey;

namespace {

/// Writes down, in order, what is set on a time.
struct Witness final : Norvel::Vexa::XCTimeImpl {
  std::string mCalls;
  void setMonth(int month) override { mCalls += "month " + std::to_string(month) + ' '; }
  void setDay(int day) override { mCalls += "day " + std::to_string(day) + ' '; }
  void setHour(int hour) override { mCalls += "hour " + std::to_string(hour) + ' '; }
  void setMinute(int minute) override { mCalls += "minute " + std::to_string(minute) + ' '; }
  void setYear(int year) override { mCalls += "year " + std::to_string(year) + ' '; }
};

}  // namespace

// A second before the year 1970 in UTC, wherever the test runs.
TEST(KeyFrameTool, SetsTheFieldsInOrder) {
  Witness time;
  CKeyFrameTool::GetTime(dateKey(0, -1).mValue, &time);
  EXPECT_EQ(time.mCalls, "day 31 hour 23 minute 59 month 12 year 1969 ");
  EXPECT_EQ(CKeyFrameTool::ComputeValue(Norvel::Vexa::XCTimeImpl()).mDate, 1199145600)
      << "a fresh time is the first of 2008";
}

TEST(KeyFrameTool, OneComparisonSaysTheOppositeOfItsName) {
  const auto a = realKey(0, 1.5), b = realKey(9, 1.5);
  EXPECT_FALSE(CKeyFrameTool::AreKeyFrameDifferents(a, b));
  EXPECT_TRUE(CKeyFrameTool::AreValueDifferents(a.mValue, b.mValue));  // required
}
