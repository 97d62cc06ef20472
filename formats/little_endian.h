#pragma once

#include <algorithm>
#include <array>
#include <cstring>
#include <type_traits>

namespace vexa::formats {

/// A number with its bytes in the order of a little-endian machine, or back from that order; on
/// such a machine the number itself.
template <class T>
T littleEndian(T value) {
  static_assert(std::is_arithmetic_v<T>);
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
  char bytes[sizeof(T)];
  std::memcpy(bytes, &value, sizeof(T));
  std::reverse(bytes, bytes + sizeof(T));
  std::memcpy(&value, bytes, sizeof(T));
#endif
  return value;
}

/// Number by number.
template <class T, std::size_t N>
std::array<T, N> littleEndian(std::array<T, N> values) {
  for (T& value : values) value = littleEndian(value);
  return values;
}

}  // namespace vexa::formats
