#pragma once

#include <cmath>

#include "vexa/math/dot_internal.h"
#include "vexa/math/uxs_generic_vec3.h"

namespace Norvel::Vexa {

// The Euclidean norm, entirely in float.
inline float vectorLength(const UXS::uxs_generic_vec3<float>& v) { return std::sqrt(dot(v, v)); }

}  // namespace Norvel::Vexa
