#pragma once

#include "vexa/Export.h"

namespace Oru {

/// Rotation x i + y j + z k + w, the scalar part w last. A plain value.
template <class T>
struct TQuaternion {
  T x, y, z, w;

  /// (0, 0, 0, 1), no rotation; exists for float and double.
  static const TQuaternion Identity;

  /// All zeros, which is no rotation; start from Identity for one.
  constexpr TQuaternion() : x(), y(), z(), w() {}
  constexpr TQuaternion(T newX, T newY, T newZ, T newW) : x(newX), y(newY), z(newZ), w(newW) {}
};

template <>
VEXA_EXPORT const TQuaternion<float> TQuaternion<float>::Identity;
template <>
VEXA_EXPORT const TQuaternion<double> TQuaternion<double>::Identity;

}  // namespace Oru
