#pragma once

#include <cstdint>
#include <limits>

/// The library's only conversions and sums of integers that may leave the range of their type.
///
/// Hosts' scenes hold whatever they hold; these give the result that x86-64 hardware gives, without
/// undefined behaviour.
namespace Norvel::Vexa {

/// Truncated toward zero; out of range or NaN gives the most negative 32-bit integer.
constexpr std::int32_t truncToInt(double value) {
  // Both bounds are exact: everything that truncates into the range lies strictly between them.
  return value > -2147483649.0 && value < 2147483648.0 ? static_cast<std::int32_t>(value)
                                                       : std::numeric_limits<std::int32_t>::min();
}

/// Truncated toward zero; out of range or NaN gives the most negative 64-bit integer.
constexpr std::int64_t truncToLong(double value) {
  return value >= -9223372036854775808.0 && value < 9223372036854775808.0
             ? static_cast<std::int64_t>(value)
             : std::numeric_limits<std::int64_t>::min();
}

/// The low 32 bits of a 64-bit integer, as a signed integer.
constexpr std::int32_t wrapToInt(std::int64_t value) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
}

/// Sum, difference and product that wrap around, as two's complement hardware does.
constexpr std::int32_t wrapAdd(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}
constexpr std::int32_t wrapSub(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}
constexpr std::int32_t wrapMul(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b));
}
constexpr std::int64_t wrapAdd(std::int64_t a, std::int64_t b) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) + static_cast<std::uint64_t>(b));
}
constexpr std::int64_t wrapSub(std::int64_t a, std::int64_t b) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) - static_cast<std::uint64_t>(b));
}
constexpr std::int64_t wrapMul(std::int64_t a, std::int64_t b) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) * static_cast<std::uint64_t>(b));
}

}  // namespace Norvel::Vexa
