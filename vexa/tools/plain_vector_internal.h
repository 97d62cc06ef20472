#pragma once

#include <cmath>

#include "vexa/math/dot_internal.h"
#include "vexa/math/uxs_generic_vec3.h"

// Products and lengths in single precision, without any treatment of short vectors but zero.
namespace UXS {

using V3 = uxs_generic_vec3<float>;

using Norvel::Vexa::dot;

inline V3 cross(const V3& a, const V3& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

// The vector times 1 / length; a zero vector stays zero.
inline V3 normalised(const V3& v) {
  const float length = std::sqrt(dot(v, v));
  return length != 0 ? v * (1 / length) : v;
}

}  // namespace UXS
