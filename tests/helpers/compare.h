#pragma once

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <limits>
#include <string>

/// Every "equal" and "close enough" of the tests.
namespace vexa::tests {

/// Same bytes: tells 0.0 from -0.0 and one NaN from another. For types without padding.
template <class T>
bool sameBits(const T& a, const T& b) {
  return std::memcmp(&a, &b, sizeof(T)) == 0;
}

/// The same for two numbers, but every NaN counts as the same: which of two operands' NaN survives
/// is the compiler's choice.
template <class T>
bool sameOrNaN(T a, T b) {
  return sameBits(a, b) || (std::isnan(a) && std::isnan(b));
}

/// Steps between two doubles on the line of all doubles; the largest number when either is NaN.
inline std::int64_t ulpDistance(double a, double b) {
  if (std::isnan(a) || std::isnan(b)) return std::numeric_limits<std::int64_t>::max();
  std::int64_t i, j;
  std::memcpy(&i, &a, sizeof(i));
  std::memcpy(&j, &b, sizeof(j));
  if (i < 0) i = std::numeric_limits<std::int64_t>::min() - i;
  if (j < 0) j = std::numeric_limits<std::int64_t>::min() - j;
  return i > j ? i - j : j - i;
}

/// The same for floats.
inline std::int64_t ulpDistance(float a, float b) {
  if (std::isnan(a) || std::isnan(b)) return std::numeric_limits<std::int64_t>::max();
  std::int32_t i, j;
  std::memcpy(&i, &a, sizeof(i));
  std::memcpy(&j, &b, sizeof(j));
  const auto line = [](std::int32_t v) {
    return v < 0 ? std::int64_t{std::numeric_limits<std::int32_t>::min()} - v : std::int64_t{v};
  };
  return std::llabs(line(i) - line(j));
}

/// The text of the exception that a call throws; "nothing was thrown" when it returns.
template <class Call>
std::string whatOf(Call call) {
  try {
    call();
  } catch (const std::exception& e) {
    return e.what();
  }
  return "nothing was thrown";
}

/// A value that the compiler cannot see through, so that libm is called at run time.
template <class T>
T atRunTime(T value) {
  volatile T hidden = value;
  return hidden;
}

}  // namespace vexa::tests
