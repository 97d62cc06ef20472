#pragma once

#include "vexa/Export.h"

namespace UXS {

/// Three components x, y, z: keyframed positions, Bezier control points, directions of the tools.
///
/// A plain value; arithmetic is component by component, in T. A value-initialised one is zero.
template <class T>
struct VEXA_EXPORT uxs_generic_vec3 {
  T x, y, z;

  constexpr uxs_generic_vec3() : x(), y(), z() {}
  constexpr uxs_generic_vec3(T newX, T newY, T newZ) : x(newX), y(newY), z(newZ) {}
};

template <class T>
constexpr uxs_generic_vec3<T> operator-(const uxs_generic_vec3<T>& a) {
  return {-a.x, -a.y, -a.z};
}
template <class T>
constexpr uxs_generic_vec3<T> operator+(const uxs_generic_vec3<T>& a,
                                        const uxs_generic_vec3<T>& b) {
  return {a.x + b.x, a.y + b.y, a.z + b.z};
}
template <class T>
constexpr uxs_generic_vec3<T> operator-(const uxs_generic_vec3<T>& a,
                                        const uxs_generic_vec3<T>& b) {
  return {a.x - b.x, a.y - b.y, a.z - b.z};
}
template <class T>
constexpr uxs_generic_vec3<T> operator*(const uxs_generic_vec3<T>& a, T s) {
  return {a.x * s, a.y * s, a.z * s};
}
template <class T>
constexpr uxs_generic_vec3<T> operator*(T s, const uxs_generic_vec3<T>& a) {
  return a * s;
}

/// Exact comparison: 0.0 equals -0.0 and NaN equals nothing.
template <class T>
constexpr bool operator==(const uxs_generic_vec3<T>& a, const uxs_generic_vec3<T>& b) {
  return a.x == b.x && a.y == b.y && a.z == b.z;
}
template <class T>
constexpr bool operator!=(const uxs_generic_vec3<T>& a, const uxs_generic_vec3<T>& b) {
  return !(a == b);
}

/// Named constants; exists for float.
template <class T>
struct VEXA_EXPORT uxs_generic_vec3_consts {
  static const uxs_generic_vec3<T> UXS_VEC3_ZERO;          ///< (0, 0, 0)
  static const uxs_generic_vec3<T> UXS_X_AXIS_UNIT;        ///< (1, 0, 0)
  static const uxs_generic_vec3<T> UXS_Y_AXIS_UNIT;        ///< (0, 1, 0)
  static const uxs_generic_vec3<T> UXS_Z_AXIS_UNIT;        ///< (0, 0, 1), the world's up
  static const uxs_generic_vec3<T> UXS_MINUS_X_AXIS_UNIT;  ///< (-1, 0, 0)
  static const uxs_generic_vec3<T> UXS_MINUS_Y_AXIS_UNIT;  ///< (0, -1, 0)
  static const uxs_generic_vec3<T> UXS_MINUS_Z_AXIS_UNIT;  ///< (0, 0, -1)
};

template <>
VEXA_EXPORT const uxs_generic_vec3<float> uxs_generic_vec3_consts<float>::UXS_VEC3_ZERO;
template <>
VEXA_EXPORT const uxs_generic_vec3<float> uxs_generic_vec3_consts<float>::UXS_X_AXIS_UNIT;
template <>
VEXA_EXPORT const uxs_generic_vec3<float> uxs_generic_vec3_consts<float>::UXS_Y_AXIS_UNIT;
template <>
VEXA_EXPORT const uxs_generic_vec3<float> uxs_generic_vec3_consts<float>::UXS_Z_AXIS_UNIT;
template <>
VEXA_EXPORT const uxs_generic_vec3<float> uxs_generic_vec3_consts<float>::UXS_MINUS_X_AXIS_UNIT;
template <>
VEXA_EXPORT const uxs_generic_vec3<float> uxs_generic_vec3_consts<float>::UXS_MINUS_Y_AXIS_UNIT;
template <>
VEXA_EXPORT const uxs_generic_vec3<float> uxs_generic_vec3_consts<float>::UXS_MINUS_Z_AXIS_UNIT;

}  // namespace UXS
