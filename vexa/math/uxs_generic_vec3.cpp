#include "vexa/math/uxs_generic_vec3.h"

// Constant initialisation: the values are there before any code of the host runs. Other types of
// component have no constants: each would need its seven definitions here.
namespace UXS {

using Consts = uxs_generic_vec3_consts<float>;
using V3 = uxs_generic_vec3<float>;

template <>
const V3 Consts::UXS_VEC3_ZERO{0, 0, 0};
template <>
const V3 Consts::UXS_X_AXIS_UNIT{1, 0, 0};
template <>
const V3 Consts::UXS_Y_AXIS_UNIT{0, 1, 0};
template <>
const V3 Consts::UXS_Z_AXIS_UNIT{0, 0, 1};
template <>
const V3 Consts::UXS_MINUS_X_AXIS_UNIT{-1, 0, 0};
template <>
const V3 Consts::UXS_MINUS_Y_AXIS_UNIT{0, -1, 0};
template <>
const V3 Consts::UXS_MINUS_Z_AXIS_UNIT{0, 0, -1};

}  // namespace UXS
