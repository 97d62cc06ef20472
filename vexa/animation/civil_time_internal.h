#pragma once

#include <cstdint>

namespace Norvel::Vexa {

// A date and time of the Gregorian calendar, UTC, in the fields of std::tm. The system's functions
// do not serve: where time_t has 32 bits, they end in 2038.
struct CivilTime {
  int mYear = 0;   // since 1900
  int mMonth = 0;  // 0 to 11
  int mDay = 1;
  int mHour = 0;
  int mMinute = 0;
};

// Sets the fields to a moment, in seconds since 1970; false where the year does not fit an int.
bool civilTimeOf(std::int64_t seconds, CivilTime& outTime);

// The moment that the fields name. Any of them may be outside its range and carries over, so that
// day 0 is the last of the month before. -1 where the year of the result does not fit an int.
std::int64_t secondsOf(const CivilTime& time);

}  // namespace Norvel::Vexa
