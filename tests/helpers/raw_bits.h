#pragma once

#include <cstdint>
#include <cstring>
#include <limits>
#include <rapidcheck.h>

namespace vexa::tests {

/// A float or double of any bit pattern, with the numbers that break things more often than their
/// share: rapidcheck's own have no NaN and no infinity.
template <class T>
rc::Gen<T> rawBits() {
  using Limits = std::numeric_limits<T>;
  const auto fromBits = [](std::uint64_t bits) {
    T value;
    std::memcpy(&value, &bits, sizeof(T));
    return value;
  };
  // Whole range whatever the size that rapidcheck has grown to.
  const auto anyBits = rc::gen::resize(rc::kNominalSize, rc::gen::arbitrary<std::uint64_t>());
  return rc::gen::oneOf(
      rc::gen::map(anyBits, fromBits),
      rc::gen::element(T(0), -T(0), T(1), -T(1), Limits::quiet_NaN(), Limits::infinity(),
                       -Limits::infinity(), Limits::max(), Limits::lowest(), Limits::min(),
                       Limits::denorm_min(), Limits::epsilon()));
}

}  // namespace vexa::tests
