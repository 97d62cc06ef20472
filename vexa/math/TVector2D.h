#pragma once

#include "vexa/Export.h"

namespace Oru {

/// Two components without a gap, such as a texture coordinate (u, v) or the two ends of an edge.
///
/// A plain value; T may be another plain value. A value-initialised one is all zeros.
template <class T>
struct VEXA_EXPORT TVector2D {
  T x, y;

  /// (0, 0); exists for float.
  static const TVector2D ZeroVector;

  constexpr TVector2D() : x(), y() {}
  constexpr TVector2D(const T& newX, const T& newY) : x(newX), y(newY) {}
};

/// Exact comparison: 0.0 equals -0.0 and NaN equals nothing.
template <class T>
constexpr bool operator==(const TVector2D<T>& a, const TVector2D<T>& b) {
  return a.x == b.x && a.y == b.y;
}
template <class T>
constexpr bool operator!=(const TVector2D<T>& a, const TVector2D<T>& b) {
  return !(a == b);
}

template <>
VEXA_EXPORT const TVector2D<float> TVector2D<float>::ZeroVector;

}  // namespace Oru
