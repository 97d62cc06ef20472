#pragma once

#include <cmath>

#include "vexa/math/ux_vect3.h"

namespace Norvel::Vexa {

/// A position in scene units, +Z up.
///
/// T is float or double. A point is laid out as its vector from the origin and converts to it
/// without a copy. Two points are equal when they are less than 0.001 apart along each axis.
// Derived from the vector so that the views in both directions alias for the compiler.
template <class T>
class ux_point3 : public ux_vect3<T> {
 public:
  using ux_vect3<T>::x, ux_vect3<T>::y, ux_vect3<T>::z;

  /// Leaves the components unset.
  ux_point3() = default;
  constexpr ux_point3(T newX, T newY, T newZ) : ux_vect3<T>(newX, newY, newZ) {}
  constexpr ux_point3(const ux_vect3<T>& v) : ux_vect3<T>(v) {}

  /// The same storage as a vector from the origin; a point also converts to it implicitly.
  constexpr const ux_vect3<T>& as_vector() const { return *this; }

  /// Component i: 0 = x, 1 = y, 2 = z; the range is not checked.
  constexpr T operator[](int i) const { return i == 0 ? x : i == 1 ? y : z; }
  constexpr T& operator[](int i) { return i == 0 ? x : i == 1 ? y : z; }

  constexpr void set(const T& newX, const T& newY, const T& newZ) { *this = {newX, newY, newZ}; }

  /// t other + (1 - t) this; t is not clamped.
  constexpr ux_point3 lerp(const ux_point3& other, T t) const {
    return other * t + *this * (1 - t);
  }

  T distance(const ux_point3& p) const {
    const ux_vect3<T> d = *this - p;
    return std::sqrt(d.sqr_length());
  }

  /// The displacement from p to this point.
  constexpr ux_vect3<T> operator-(const ux_point3& p) const { return {p, *this}; }
  constexpr ux_point3 operator+(const ux_vect3<T>& v) const { return {x + v.x, y + v.y, z + v.z}; }
  constexpr ux_point3 operator-(const ux_vect3<T>& v) const { return {x - v.x, y - v.y, z - v.z}; }
  /// Sum of two positions, to accumulate before a division.
  constexpr ux_point3 operator+(const ux_point3& p) const { return {x + p.x, y + p.y, z + p.z}; }

  /// Required behaviour: these return a copy of the result, not a reference.
  constexpr ux_point3 operator+=(const ux_vect3<T>& v) { return *this = *this + v; }
  constexpr ux_point3 operator-=(const ux_vect3<T>& v) { return *this = *this - v; }

  /// Whether all components differ by less than 0.001; the differences are taken in T and compared
  /// in double. NaN is near nothing.
  bool operator==(const ux_point3& p) const { return near(x, p.x) && near(y, p.y) && near(z, p.z); }
  bool operator!=(const ux_point3& p) const { return !(*this == p); }

  constexpr ux_point3 operator*(T s) const { return {x * s, y * s, z * s}; }
  /// Divides each component, unlike a vector, which multiplies by the reciprocal.
  constexpr ux_point3 operator/(T s) const { return {x / s, y / s, z / s}; }

 private:
  static bool near(T a, T b) { return std::abs(double(a - b)) < 0.001; }
};

}  // namespace Norvel::Vexa
