#pragma once

#include <type_traits>

#include "vexa/math/conversion.h"

// The arithmetic of the curves' values, per type: real numbers, vectors and colours compute in
// their own type, integers wrap and truncate.
namespace Norvel::Vexa {

// b - a
template <class V>
V difference(const V& a, const V& b) {
  if constexpr (std::is_integral_v<V>) {
    return wrapSub(b, a);
  } else {
    return b - a;
  }
}

// The difference times a factor, which is converted to the component type first.
// Required behaviour: for integers that truncates the factor, so below 1 it counts as 0.
template <class V>
V scaled(const V& difference, double factor) {
  if constexpr (std::is_same_v<V, double>) {
    return difference * factor;
  } else if constexpr (std::is_same_v<V, int>) {
    return wrapMul(truncToInt(factor), difference);
  } else if constexpr (std::is_integral_v<V>) {
    return wrapMul(V(truncToLong(factor)), difference);
  } else {
    return difference * float(factor);
  }
}

template <class V>
V sum(const V& a, const V& b) {
  if constexpr (std::is_integral_v<V>) {
    return wrapAdd(a, b);
  } else {
    return a + b;
  }
}

}  // namespace Norvel::Vexa
