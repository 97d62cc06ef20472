#include "vexa/animation/civil_time_internal.h"

#include <limits>

namespace Norvel::Vexa {
namespace {

constexpr std::int64_t kSecondsPerDay = 86400;
// The calendar repeats after 400 years. They are counted from a first of March, so that a leap day
// is the last of its year; 1970 began 719,468 days after that of the year 0.
constexpr std::int64_t kDaysPerEra = 146097, kEpoch = 719468;

constexpr std::int64_t floorDivide(std::int64_t a, std::int64_t b) {
  return a / b - (a % b < 0 ? 1 : 0);
}

// Days from 1970 to the first of a month of 0 to 11. From March on, the lengths of the months
// repeat every five months, which together have 153 days:
//
//   Mar Apr May Jun Jul | Aug Sep Oct Nov Dec | Jan Feb
//    31  30  31  30  31 |  31  30  31  30  31 |  31
//
// so (153 m + 2) / 5 is the number of days before month m, counted from March.
std::int64_t daysToMonth(std::int64_t year, std::int64_t month) {
  const std::int64_t march = (month + 10) % 12;  // months since March
  const std::int64_t y = month < 2 ? year - 1 : year;
  const std::int64_t era = floorDivide(y, 400), yearOfEra = y - era * 400;
  const std::int64_t dayOfYear = (153 * march + 2) / 5;
  return era * kDaysPerEra + yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear - kEpoch;
}

}  // namespace

bool civilTimeOf(std::int64_t seconds, CivilTime& outTime) {
  const std::int64_t days = floorDivide(seconds, kSecondsPerDay);
  const std::int64_t rest = seconds - days * kSecondsPerDay;
  const std::int64_t shifted = days + kEpoch;
  const std::int64_t era = floorDivide(shifted, kDaysPerEra), day = shifted - era * kDaysPerEra;
  // Without its leap days every year has 365 days: one is taken out after each 4 years (1460 days),
  // put back after each 100 (36524) and taken out on the last day of the 400.
  const std::int64_t yearOfEra = (day - day / 1460 + day / 36524 - day / 146096) / 365;
  const std::int64_t dayOfYear = day - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const std::int64_t march = (5 * dayOfYear + 2) / 153;
  const std::int64_t month = (march + 2) % 12;
  const std::int64_t year = yearOfEra + era * 400 + (month < 2 ? 1 : 0) - 1900;
  using Limits = std::numeric_limits<int>;
  if (year < Limits::min() || year > Limits::max()) return false;
  outTime.mYear = int(year);
  outTime.mMonth = int(month);
  outTime.mDay = int(dayOfYear - (153 * march + 2) / 5 + 1);
  outTime.mHour = int(rest / 3600);
  outTime.mMinute = int(rest % 3600 / 60);
  return true;
}

std::int64_t secondsOf(const CivilTime& time) {
  const std::int64_t carried = floorDivide(time.mMonth, 12);
  const std::int64_t year = std::int64_t{1900} + time.mYear + carried;
  const std::int64_t days = daysToMonth(year, time.mMonth - carried * 12) + time.mDay - 1;
  const std::int64_t seconds =
      days * kSecondsPerDay + std::int64_t{time.mHour} * 3600 + std::int64_t{time.mMinute} * 60;
  CivilTime result;
  // As mktime does: a moment that has no fields is -1.
  return civilTimeOf(seconds, result) ? seconds : -1;
}

}  // namespace Norvel::Vexa
