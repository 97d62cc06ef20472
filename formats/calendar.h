#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace vexa::formats {

/// Seconds since 1970-01-01 00:00 UTC of an ISO 8601 text such as "2024-03-01T12:30:00Z"; the time,
/// its seconds and the Z may be missing. Nothing when the text is no date of the calendar.
std::optional<std::int64_t> secondsOfDate(const std::string& text);

/// The other way round: "2024-03-01T12:30:00Z".
std::string dateOfSeconds(std::int64_t seconds);

}  // namespace vexa::formats
