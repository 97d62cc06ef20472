#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdio>

namespace Norvel {

// A text from outside: null reads as "".
inline const char* orEmpty(const char* text) { return text != nullptr ? text : ""; }

// Formats into a fixed buffer, cut to N - 1 characters. What printf refuses (a width beyond int,
// a character without encoding) leaves the format itself as the text; null reads as "".
template <std::size_t N>
__attribute__((format(printf, 2, 0))) void formatInto(char (&out)[N], const char* format,
                                                      va_list args) {
  out[0] = '\0';
  if (format != nullptr && std::vsnprintf(out, N, format, args) < 0) {
    std::snprintf(out, N, "%s", format);
  }
}

// Ends a list of variable arguments when its scope is left, also by an exception.
struct EndOfArguments {
  va_list& args;
  ~EndOfArguments() { va_end(args); }
};

}  // namespace Norvel
