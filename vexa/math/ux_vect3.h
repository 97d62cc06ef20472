#pragma once

#include "vexa/math/TUxBaseVector.h"
#include "vexa/math/TUxUnitVector.h"

namespace Norvel::Vexa {

template <class T>
class ux_point3;

/// A free vector: a direction or a displacement, in scene units, +Z up.
template <class T>
class ux_vect3 : public TUxBaseVector<T> {
  using Base = TUxBaseVector<T>;

 public:
  using Base::x, Base::y, Base::z;

  /// Leaves the components unset.
  ux_vect3() = default;
  constexpr ux_vect3(T newX, T newY, T newZ) : Base(newX, newY, newZ) {}
  /// to - from.
  constexpr ux_vect3(const ux_point3<T>& from, const ux_point3<T>& to)
      : Base(to.x - from.x, to.y - from.y, to.z - from.z) {}
  /// The same components, whatever kind of vector they come from.
  constexpr ux_vect3(const Base& v) : Base(v) {}

  // The arithmetic of the base, as a free vector again.
  using Base::operator*;
  constexpr ux_vect3 operator-() const { return Base::operator-(); }
  constexpr ux_vect3 operator+(const Base& v) const { return Base::operator+(v); }
  constexpr ux_vect3 operator-(const Base& v) const { return Base::operator-(v); }
  constexpr ux_vect3 operator*(T s) const { return Base::operator*(s); }
  constexpr ux_vect3 operator/(T s) const { return Base::operator/(s); }
  constexpr ux_vect3 operator^(const Base& v) const { return Base::operator^(v); }

  /// A normalised copy, by Normalize: a near-zero vector gives (0, 0, 0).
  operator TUxUnitVector<T>() const { return {x, y, z}; }
  TUxUnitVector<T> operator!() const { return *this; }

  /// The same storage as a position; include ux_point3.h to use it.
  const ux_point3<T>& as_point() const { return static_cast<const ux_point3<T>&>(*this); }

  constexpr void set(T newX, T newY, T newZ) { *this = {newX, newY, newZ}; }

  ux_vect3& normalize() {
    this->Normalize();
    return *this;
  }

  /// Multiplies each component by s, say a reciprocal length that the caller has already.
  ///
  /// Required behaviour: despite its name it only scales.
  constexpr ux_vect3& normalize_with(T s) { return *this *= s; }

  constexpr ux_vect3& operator+=(const Base& v) { return *this = *this + v; }
  constexpr ux_vect3& operator-=(const Base& v) { return *this = *this - v; }
  constexpr ux_vect3& operator*=(T s) { return *this = *this * s; }
  /// Multiplies by 1/s, formed once; a zero s gives infinities or NaN.
  constexpr ux_vect3& operator/=(T s) { return *this = *this / s; }
};

}  // namespace Norvel::Vexa
