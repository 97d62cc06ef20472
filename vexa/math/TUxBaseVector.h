#pragma once

#include <cmath>
#include <stdexcept>

#include "vexa/Export.h"

namespace Norvel::Vexa {

template <class T>
class TUxUnitVector;

/// A vector whose squared length is at most this counts as zero, in both precisions: 2^-23.
inline constexpr double kZeroSquaredLength = 1.1920928955078125e-07;

/// Three components with the operations that directions and displacements share.
///
/// T is float or double; arithmetic is in T, in the order written. A plain value without virtual
/// functions. Sums and products of this base are again of the base; ux_vect3 gives its own type.
template <class T>
class TUxBaseVector {
 public:
  T x, y, z;

  /// Leaves the components unset.
  TUxBaseVector() = default;
  constexpr TUxBaseVector(T newX, T newY, T newZ) : x(newX), y(newY), z(newZ) {}

  constexpr TUxBaseVector operator-() const { return {-x, -y, -z}; }
  constexpr TUxBaseVector operator+(const TUxBaseVector& v) const {
    return {x + v.x, y + v.y, z + v.z};
  }
  constexpr TUxBaseVector operator-(const TUxBaseVector& v) const {
    return {x - v.x, y - v.y, z - v.z};
  }
  constexpr TUxBaseVector operator*(T s) const { return {x * s, y * s, z * s}; }
  /// Multiplies by 1/s, formed once; a zero s gives infinities or NaN.
  constexpr TUxBaseVector operator/(T s) const { return *this * (1 / s); }  // order: exact floats
  /// Cross product.
  constexpr TUxBaseVector operator^(const TUxBaseVector& v) const {
    return {y * v.z - z * v.y, z * v.x - x * v.z, x * v.y - y * v.x};
  }
  /// Dot product.
  constexpr T operator*(const TUxBaseVector& v) const {
    return x * v.x + y * v.y + z * v.z;  // order: exact floats
  }

  /// Exact comparison: 0.0 equals -0.0 and NaN equals nothing.
  constexpr bool operator==(const TUxBaseVector& v) const {
    return x == v.x && y == v.y && z == v.z;
  }
  constexpr bool operator!=(const TUxBaseVector& v) const { return !(*this == v); }

  constexpr T sqr_length() const { return *this * *this; }

  /// 0 if the squared length is at most kZeroSquaredLength, else its root.
  T length() const {
    const T s = sqr_length();
    return isZero(s) ? T(0) : std::sqrt(s);
  }

  /// 1 / length, the root and the reciprocal taken in double; exactly 1 for a squared length of 1.
  ///
  /// Throws std::overflow_error if the squared length is at most kZeroSquaredLength.
  T invlength() const {
    const T s = sqr_length();
    if (s == 1) return 1;
    if (isZero(s)) throw std::overflow_error("TUxBaseVector::invlength - lenght is zero");
    return reciprocalRoot(s);
  }

  /// Whether any component differs from 0; NaN does.
  constexpr bool not_null() const { return x != 0 || y != 0 || z != 0; }

  constexpr void get(T& outX, T& outY, T& outZ) const {
    outX = x;
    outY = y;
    outZ = z;
  }

  /// Scales to length 1, the root and the reciprocal taken in double.
  ///
  /// A squared length of exactly 1 leaves the vector as it is. Never throws: a squared length of at
  /// most kZeroSquaredLength gives (0, 0, 0).
  void Normalize() {
    const T s = sqr_length();
    if (s == 1) return;
    *this = isZero(s) ? TUxBaseVector(0, 0, 0) : *this * reciprocalRoot(s);
  }

  /// The unit up vector of a camera that looks along this vector, turned by `roll` radians about
  /// the direction of view (right-handed).
  ///
  /// At roll 0 it is perpendicular to this vector and leans to the world's up, +Z, or to +Y when
  /// the view is within a cosine of 0.98 of vertical. A zero vector gives (0, 0, 0). Throws
  /// std::runtime_error if neither serves, which no unit direction brings about. To call it,
  /// include ux_vect3.h.
  TUxUnitVector<T> get_up_vector(T roll) const;

  /// The roll in radians, in [0, 2 pi], with which get_up_vector yields `up`.
  ///
  /// Required behaviour: of a roll just below 0, by less than 0.05, the sign is lost.
  T RollForUpVector(const TUxUnitVector<T>& up) const;

 private:
  static constexpr bool isZero(T squaredLength) {
    return double(squaredLength) <= kZeroSquaredLength;
  }
  static T reciprocalRoot(T s) { return T(1 / std::sqrt(double(s))); }
};

// These two need the unit vector and the matrix; their bodies are in the library.
extern template VEXA_EXPORT TUxUnitVector<float> TUxBaseVector<float>::get_up_vector(float) const;
extern template VEXA_EXPORT TUxUnitVector<double> TUxBaseVector<double>::get_up_vector(
    double) const;
extern template VEXA_EXPORT float TUxBaseVector<float>::RollForUpVector(
    const TUxUnitVector<float>&) const;
extern template VEXA_EXPORT double TUxBaseVector<double>::RollForUpVector(
    const TUxUnitVector<double>&) const;

}  // namespace Norvel::Vexa
