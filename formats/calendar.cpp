#include "formats/calendar.h"

#include <cstdio>
#include <ctime>

namespace vexa::formats {
namespace {

// Whether the calendar has this day and the clock this time: nothing was carried over.
bool exists(const std::tm& wanted, std::time_t seconds) {
  std::tm real{};
  return gmtime_r(&seconds, &real) != nullptr && real.tm_mon == wanted.tm_mon &&
         real.tm_mday == wanted.tm_mday && real.tm_hour == wanted.tm_hour &&
         real.tm_min == wanted.tm_min && real.tm_sec == wanted.tm_sec;
}

}  // namespace

std::optional<std::int64_t> secondsOfDate(const std::string& text) {
  std::tm time{};
  const char* rest = nullptr;
  // The longest form first: strptime also accepts the beginning of a longer text.
  for (const char* format : {"%Y-%m-%dT%H:%M:%S", "%Y-%m-%dT%H:%M", "%Y-%m-%d"}) {
    time = {};
    rest = strptime(text.c_str(), format, &time);
    if (rest != nullptr) break;
  }
  if (rest == nullptr) return std::nullopt;
  if (*rest == 'Z') ++rest;
  // timegm carries what is too large, so that 30 February becomes 1 March; exists() finds that. It
  // knows no time zone, unlike mktime.
  std::tm normalised = time;
  const std::time_t seconds = timegm(&normalised);
  if (*rest != '\0' || !exists(time, seconds)) return std::nullopt;
  return seconds;
}

std::string dateOfSeconds(std::int64_t seconds) {
  const auto time = static_cast<std::time_t>(seconds);
  std::tm fields{};
  // The year does not fit an int.
  if (gmtime_r(&time, &fields) == nullptr) return std::to_string(seconds);
  char text[64];
  const std::size_t length = std::strftime(text, sizeof(text), "%Y-%m-%dT%H:%M:%SZ", &fields);
  return {text, length};
}

}  // namespace vexa::formats
