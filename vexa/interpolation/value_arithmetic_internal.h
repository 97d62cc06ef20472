#pragma once

#include "vexa/math/conversion.h"

/// The arithmetic of the curves' values, per type: real numbers, vectors and colours compute in
/// their own type, integers wrap and truncate.
namespace Norvel::Vexa {

/// b - a
template <class V>
V difference(const V& a, const V& b) {
  return b - a;
}
inline int difference(int a, int b) { return wrapSub(b, a); }
inline long difference(long a, long b) { return wrapSub(b, a); }

/// The difference times a factor, which is converted to the component type first.
template <class V>
V scaled(const V& difference, double factor) {
  return difference * float(factor);
}
inline double scaled(double difference, double factor) { return difference * factor; }
/// Required behaviour: the factor is truncated before the product; below 1 it counts as 0.
inline int scaled(int difference, double factor) { return wrapMul(truncToInt(factor), difference); }
inline long scaled(long difference, double factor) {
  return wrapMul(truncToLong(factor), difference);
}

template <class V>
V sum(const V& a, const V& b) {
  return a + b;
}
inline int sum(int a, int b) { return wrapAdd(a, b); }
inline long sum(long a, long b) { return wrapAdd(a, b); }

}  // namespace Norvel::Vexa
