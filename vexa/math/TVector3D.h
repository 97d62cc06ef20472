#pragma once

#include "vexa/Export.h"

namespace Oru {

/// Three components x, y, z without a gap: a position or direction in scene units (+Z up), three
/// vertex indices, or one value per corner of a triangle when T is itself a vector.
///
/// A plain value. A value-initialised one is all zeros.
template <class T>
struct VEXA_EXPORT TVector3D {
  T x, y, z;

  /// (0, 0, 0); exists for float and double.
  static const TVector3D ZeroVector;

  constexpr TVector3D() : x(), y(), z() {}
  constexpr TVector3D(const T& newX, const T& newY, const T& newZ) : x(newX), y(newY), z(newZ) {}
};

/// Exact comparison: 0.0 equals -0.0 and NaN equals nothing.
template <class T>
constexpr bool operator==(const TVector3D<T>& a, const TVector3D<T>& b) {
  return a.x == b.x && a.y == b.y && a.z == b.z;
}
template <class T>
constexpr bool operator!=(const TVector3D<T>& a, const TVector3D<T>& b) {
  return !(a == b);
}

template <class T>
constexpr TVector3D<T> operator+(const TVector3D<T>& a, const TVector3D<T>& b) {
  return {a.x + b.x, a.y + b.y, a.z + b.z};
}
template <class T>
constexpr TVector3D<T> operator-(const TVector3D<T>& a, const TVector3D<T>& b) {
  return {a.x - b.x, a.y - b.y, a.z - b.z};
}
template <class T>
constexpr TVector3D<T> operator-(const TVector3D<T>& a) {
  return {-a.x, -a.y, -a.z};
}
template <class T>
constexpr TVector3D<T> operator*(const TVector3D<T>& a, T s) {
  return {a.x * s, a.y * s, a.z * s};
}

template <>
VEXA_EXPORT const TVector3D<float> TVector3D<float>::ZeroVector;
template <>
VEXA_EXPORT const TVector3D<double> TVector3D<double>::ZeroVector;

}  // namespace Oru
