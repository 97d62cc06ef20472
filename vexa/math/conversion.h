#pragma once

#include <cstdint>
#include <limits>
#include <type_traits>

/// The library's only conversions and sums of integers that may leave the range of their type.
///
/// Hosts' scenes hold whatever they hold; these give the result that x86-64 hardware gives, without
/// undefined behaviour.
namespace Norvel::Vexa {

/// The 64-bit integer of the curves over `long`: `long` itself where it has 64 bits, else
/// `long long`, so that every machine gives the same results.
using Long = std::conditional_t<sizeof(long) == 8, long, long long>;

/// Truncated toward zero; out of range or NaN gives the most negative 32-bit integer.
constexpr std::int32_t truncToInt(double value) {
  // Both bounds are exact: everything that truncates into the range lies strictly between them.
  return value > -2147483649.0 && value < 2147483648.0 ? std::int32_t(value)
                                                       : std::numeric_limits<std::int32_t>::min();
}

/// Truncated toward zero; out of range or NaN gives the most negative 64-bit integer. -2^63 itself
/// is a double and converts; the next double below it does not.
constexpr std::int64_t truncToLong(double value) {
  return value >= -9223372036854775808.0 && value < 9223372036854775808.0
             ? std::int64_t(value)
             : std::numeric_limits<std::int64_t>::min();
}

/// The low 32 bits of a 64-bit integer, as a signed integer. gcc and clang define the conversion
/// from unsigned as wrapping, which C++17 leaves to the compiler.
constexpr std::int32_t wrapToInt(std::int64_t value) { return std::int32_t(std::uint32_t(value)); }

/// Sum, difference and product that wrap around, as two's complement hardware does. T is a signed
/// integer of 32 or 64 bits. They are computed unsigned, where overflow is defined.
template <class T>
constexpr T wrapAdd(T a, T b) {
  using Bits = std::make_unsigned_t<T>;
  return T(Bits(a) + Bits(b));
}
template <class T>
constexpr T wrapSub(T a, T b) {
  using Bits = std::make_unsigned_t<T>;
  return T(Bits(a) - Bits(b));
}
template <class T>
constexpr T wrapMul(T a, T b) {
  using Bits = std::make_unsigned_t<T>;
  return T(Bits(a) * Bits(b));
}

}  // namespace Norvel::Vexa
