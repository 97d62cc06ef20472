#pragma once

#include <string>

namespace vexa::formats {

/// A text from outside as a terminal may show it: on one line, without any character that moves the
/// cursor, changes colours or turns the direction of writing.
///
/// Control characters, and characters that reverse or join writing, become "\n", "\t", "\x1b" or
/// "\u202e"; bytes that are not UTF-8 become "\xff". All else stays as it is, also a backslash.
std::string printable(const std::string& text);

}  // namespace vexa::formats
