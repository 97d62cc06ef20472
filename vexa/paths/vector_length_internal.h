#pragma once

#include <cmath>

#include "vexa/math/uxs_generic_vec3.h"

namespace Norvel::Vexa {

// The Euclidean norm, entirely in float.
inline float vectorLength(const UXS::uxs_generic_vec3<float>& v) {
  return std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);  // order: exact floats
}

}  // namespace Norvel::Vexa
