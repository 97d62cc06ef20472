#include "vexa/animation/XCDateInterpolation.h"

#include <cmath>
#include <gtest/gtest.h>

using Norvel::Vexa::XCDateInterpolation;

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
