#include "vexa/animation/XCDateInterpolation.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

#include "tests/helpers/compare.h"
#include "tests/helpers/vtable_slot.h"

using Norvel::Vexa::XCDateInterpolation;
using vexa::tests::whatOf;

namespace {

constexpr std::int64_t kHour = 3600, kDay = 86400;
constexpr std::int64_t kMidnight = 19783 * kDay;  // 2024-03-01; midnights are multiples of 128 s

UxZel::IZelKeyFrame::uValue date(std::int64_t seconds) {
  UxZel::IZelKeyFrame::uValue value{};
  value.mDate = seconds;
  return value;
}

double at(double time, std::int64_t start, std::int64_t end) {
  return XCDateInterpolation(0, 8, date(start), date(end)).valueAt(time);
}

}  // namespace

TEST(DateInterpolation, EndsComeBackAsStored) {
  EXPECT_EQ(at(0, kMidnight + 1, kMidnight + 9 * kDay + 7), double(kMidnight + 1));
  EXPECT_EQ(at(std::nan(""), 1, kMidnight + 7), double(kMidnight + 7));
}

// Up to one day, a straight line to the second, and always from the earlier date.
TEST(DateInterpolation, WithinADay) {
  EXPECT_EQ(at(4, kMidnight, kMidnight + kDay), double(kMidnight + kDay / 2));
  EXPECT_EQ(at(2, kMidnight + kHour, kMidnight), double(kMidnight + kHour / 4));
}

// One second more: date and time of day go apart. Both ends read 00:00, so every frame does.
TEST(DateInterpolation, JustOverADay) {
  EXPECT_EQ(at(7, kMidnight, kMidnight + kDay + 1), double(kMidnight));
}

// Three weeks from noon to 18:00. Halfway it is day 10, 15:00, rounded to the next 128 s.
TEST(DateInterpolation, WeeksInStepsOf128Seconds) {
  const double half = at(4, kMidnight + 12 * kHour, kMidnight + 21 * kDay + 18 * kHour);
  EXPECT_EQ(half, double(kMidnight + 10 * kDay + 15 * kHour + 16));
  EXPECT_EQ(std::fmod(half, 128), 0);
}

// Two days back, from 06:00 to 18:00: the date runs backwards, the hours from the earlier's 18:00.
TEST(DateInterpolation, BackwardsMixesBothOrders) {
  const std::int64_t start = kMidnight + 2 * kDay + 6 * kHour, end = kMidnight + 18 * kHour;
  EXPECT_EQ(at(2, start, end), double(kMidnight + kDay + 15 * kHour + 16));
}

TEST(DateInterpolation, DatesWithoutACalendarYearAreDefined) {
  constexpr std::int64_t kFirst = std::numeric_limits<std::int64_t>::min();
  constexpr std::int64_t kLast = std::numeric_limits<std::int64_t>::max();
  // Neither end has a date: both read as a fresh time, 2008-01-01 00:00, a multiple of 128 s.
  EXPECT_EQ(at(4, kFirst / 2, kLast / 2), 1199145600.0);
}

TEST(DateInterpolation, RefusesBadTimesAndKeepsWhatItHas) {
  const auto make = [](double start, double end) {
    return whatOf([=] { XCDateInterpolation(start, end, date(0), date(1)); });
  };
  EXPECT_EQ(make(1, 1), "XCInterpolation::XCInterpolation - startTime superior to endtime");
  EXPECT_EQ(make(1, std::nan("")),
            "XCDateInterpolation::XCDateInterpolation - startTime superior to endtime");
  XCDateInterpolation dates(0, 8, date(0), date(8));
  EXPECT_EQ(whatOf([&] { dates.setStartTime(8); }),
            "XTDateInterpolation::setStartTime - inStartTime superior at end Time");
  EXPECT_EQ(whatOf([&] { dates.setEndTime(std::nan("")); }),
            "XTDateInterpolation::setEndTime - inEndTime inferior at start Time");
  EXPECT_EQ(whatOf([&] { dates.valueAt(8.5); }),
            "XCDateInterpolation::valueAt - inTime is out of range");
  EXPECT_EQ(dates.valueAt(1), 1);
  dates.setEndTime(16);
  dates.setStartValue(date(4));
  dates.setEndValue(date(6));
  EXPECT_EQ(dates.valueAt(8), 5);
  EXPECT_EQ(dates.getStartValue()->mDate, 4);
}

TEST(DateInterpolation, VirtualOperationsFollowTheDestructorsInOrder) {
  using Dates = XCDateInterpolation;
  EXPECT_TRUE(vexa::tests::standInOrderFrom(
      2, &Dates::getStartTime, &Dates::getEndTime, &Dates::setStartTime, &Dates::setEndTime,
      &Dates::getStartValue, &Dates::getEndValue, &Dates::setStartValue, &Dates::setEndValue,
      &Dates::valueAt));
}
