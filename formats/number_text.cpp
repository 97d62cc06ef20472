#include "formats/number_text.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
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

// Digits with at most one point among them. They and the power of ten are doubles as they are, so
// the quotient is rounded once. strtof computes with 128 bits, for which WebAssembly has no
// instructions: it took most of the time of reading a mesh.
bool parsePlain(std::string_view text, double& outValue) {
  const bool isNegative = !text.empty() && text[0] == '-';
  if (isNegative) text.remove_prefix(1);
  if (text.empty() || text == "." || text.size() > 16) return false;
  double digits = 0, power = 1;
  bool hasPoint = false;
  for (const char c : text) {
    if (c == '.' && !hasPoint) {
      hasPoint = true;
      continue;
    }
    if (c < '0' || c > '9') return false;
    digits = 10 * digits + (c - '0');
    if (hasPoint) power *= 10;
  }
  if (digits > 9007199254740992.0) return false;
  outValue = (isNegative ? -digits : digits) / power;
  return true;
}

bool convert(double value, double& outValue) {
  outValue = value;
  return true;
}

// False halfway between two floats, where the rounding before decides which is the nearer one.
bool convert(double value, float& outValue) {
  std::uint64_t bits;
  std::memcpy(&bits, &value, sizeof(bits));
  outValue = float(value);
  return (bits & 0x1fffffff) != 0x10000000;
}

template <class T>
bool parse(std::string_view text, T& outValue) {
  double plain = 0;
  if (parsePlain(text, plain) && convert(plain, outValue)) return true;
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
