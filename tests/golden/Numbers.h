#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

namespace vexa::tests {

/// The source of all drawn inputs: the same numbers from the same seed on every machine, as long as
/// no expression draws twice in an order that the language leaves open.
class Numbers {
 public:
  explicit Numbers(std::uint64_t seed) : mState(seed) {}

  /// 64 even bits (splitmix64, Steele, Lea and Flood 2014).
  std::uint64_t bits() {
    std::uint64_t z = mState += 0x9E3779B97F4A7C15u;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return z ^ (z >> 31);
  }
  std::uint32_t below(std::uint32_t n) { return std::uint32_t((bits() >> 32) * n >> 32); }
  bool oneIn(std::uint32_t n) { return below(n) == 0; }

  template <class T, std::size_t N>
  T oneOf(const T (&values)[N]) {
    return values[below(std::uint32_t(N))];
  }

  /// An integer from low to high, both included.
  int between(int low, int high) {
    const std::uint32_t sides = std::uint32_t(std::int64_t{high} - low) + 1;
    return int(std::int64_t{low} + below(sides));
  }

  /// In steps of 2^-20 from 0 to 1, both included.
  template <class T>
  T unit() {
    return T(below((1u << 20) + 1)) / T(1u << 20);
  }

  /// A number of everyday size: often a small integer or a repeated value.
  template <class T>
  T plain() {
    const std::uint32_t kind = below(8);
    if (kind == 0) return T(between(-3, 3));
    if (kind == 1) return T(between(-1, 1)) / T(2);
    return (unit<T>() - T(0.5)) * T(kind < 6 ? 20 : 2000);
  }

  /// Mostly everyday numbers; one in eight is an edge of the type or has any bits.
  template <class T>
  T any() {
    if (!oneIn(8)) return plain<T>();
    return oneIn(2) ? edge<T>() : anyBits<T>();
  }

  template <class T>
  T edge() {
    using Limits = std::numeric_limits<T>;
    const T edges[] = {T(0),
                       -T(0),
                       T(1),
                       -T(1),
                       std::nextafter(T(1), T(0)),
                       std::nextafter(T(1), T(2)),
                       Limits::quiet_NaN(),
                       Limits::infinity(),
                       -Limits::infinity(),
                       Limits::max(),
                       Limits::lowest(),
                       Limits::min(),
                       Limits::denorm_min(),
                       -Limits::denorm_min(),
                       Limits::epsilon(),
                       T(1e18),
                       T(-3e9)};
    return oneOf(edges);
  }

  /// Any exponent, either sign. A signalling NaN would be quietened on some processors.
  template <class T>
  T anyBits() {
    using Bits = std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>;
    const auto drawn = Bits(bits());
    T value;
    std::memcpy(&value, &drawn, sizeof(T));
    return std::isnan(value) ? std::numeric_limits<T>::quiet_NaN() : value;
  }

  /// An integer: small ones, the ends of the type, any.
  std::int32_t anyInt() {
    constexpr std::int32_t kEnds[] = {0, 1, -1, 2147483647, -2147483647 - 1, 2147483646, 255, 256};
    const std::uint32_t kind = below(8);
    if (kind == 0) return oneOf(kEnds);
    return kind == 1 ? std::int32_t(std::uint32_t(bits())) : between(-40, 400);
  }

  /// A triple of a vector type.
  template <class V, class Draw>
  V triple(Draw draw) {
    const auto x = draw(), y = draw();
    return V(x, y, draw());
  }

 private:
  std::uint64_t mState;
};

}  // namespace vexa::tests
