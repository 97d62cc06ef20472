#include "formats/number_text.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <limits>

namespace vexa::formats {
namespace {

#if defined(__cpp_lib_to_chars) || defined(__GLIBCXX__)

// to_chars gives the fewest digits that read back as the same bits, whatever the locale. The
// longest such text is that of a double, "-2.2250738585072014e-308" with 24 characters.
template <class T>
std::string shortest(T value) {
  char text[32];
  return std::string(text, std::to_chars(text, std::end(text), value).ptr);
}

template <class T>
bool parse(std::string_view text, T& outValue) {
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, outValue);
  return error == std::errc() && stop == end;
}

#else  // A standard library without these for real numbers; its only locale is "C".

float read(const char* text, char** end, float) { return std::strtof(text, end); }
double read(const char* text, char** end, double) { return std::strtod(text, end); }

template <class T>
std::string shortest(T value) {
  char text[32];
  // From few digits to many: max_digits10 are always enough.
  for (int digits = 1; digits <= std::numeric_limits<T>::max_digits10; ++digits) {
    std::snprintf(text, sizeof(text), "%.*g", digits, double(value));
    if (read(text, nullptr, value) == value) break;
  }
  return text;
}

template <class T>
bool parse(std::string_view text, T& outValue) {
  // strtod also takes blanks, a plus sign and hexadecimal digits.
  if (text.empty() || text.find_first_of(" \t\n\v\f\r+xX") == 0) return false;
  if (text.find_first_of("xX") != std::string_view::npos) return false;
  const std::string copy(text);
  char* end = nullptr;
  errno = 0;
  const T value = read(copy.c_str(), &end, T());
  if (errno == ERANGE || end != copy.c_str() + copy.size()) return false;
  outValue = value;
  return true;
}

#endif

}  // namespace

char* writeShortest(char* text, float value) {
#if defined(__cpp_lib_to_chars) || defined(__GLIBCXX__)
  return std::to_chars(text, text + kLongestNumber, value).ptr;
#else
  const std::string shown = shortest(value);
  return std::copy(shown.begin(), shown.end(), text);
#endif
}

std::string shortestText(float value) { return shortest(value); }
std::string shortestText(double value) { return shortest(value); }
bool parseNumber(std::string_view text, float& outValue) { return parse(text, outValue); }
bool parseNumber(std::string_view text, double& outValue) { return parse(text, outValue); }

}  // namespace vexa::formats
