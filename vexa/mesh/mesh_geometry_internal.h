#pragma once

#include <cassert>
#include <cmath>
#include <cstddef>

#include "vexa/math/TVector3D.h"

// The float arithmetic of the mesh, each in the one order that its results are pinned to.
namespace UXS {

inline float dotXYZ(const Oru::TVector3D<float>& a, const Oru::TVector3D<float>& b) {
  return a.x * b.x + a.y * b.y + a.z * b.z;  // order: exact floats
}

inline float dotZYX(const Oru::TVector3D<float>& a, const Oru::TVector3D<float>& b) {
  return a.z * b.z + a.y * b.y + a.x * b.x;  // order: exact floats
}

inline Oru::TVector3D<float> cross(const Oru::TVector3D<float>& a, const Oru::TVector3D<float>& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

// n over its length, given n.n: as it is when that is 1. The root and the reciprocal are rounded
// one after the other.
inline Oru::TVector3D<float> scaledToUnit(const Oru::TVector3D<float>& n, float squaredLength) {
  if (squaredLength == 1) return n;
  const float length = std::sqrt(squaredLength);
  return n * (1 / length);
}

// An element whose index the caller keeps in range; asserted in debug builds.
template <class Values>
auto& entry(Values& values, std::size_t i) {
  assert(i < values.size());
  return values[i];
}

}  // namespace UXS
