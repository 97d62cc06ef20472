#pragma once

#include <cmath>

#include "vexa/math/uxs_generic_vec3.h"

// Products and lengths in single precision, without any treatment of short vectors but zero.
namespace UXS {

using Vec3 = uxs_generic_vec3<float>;

inline float dot(const Vec3& a, const Vec3& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

inline Vec3 cross(const Vec3& a, const Vec3& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

// The vector times 1 / length; a zero vector stays zero.
inline Vec3 normalised(const Vec3& v) {
  const float length = std::sqrt(dot(v, v));
  return length != 0 ? v * (1 / length) : v;
}

}  // namespace UXS
