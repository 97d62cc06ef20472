#include "vexa/math/TQuaternion.h"
#include "vexa/math/TVector2D.h"
#include "vexa/math/TVector3D.h"

// Constant initialisation: the values are there before any code of the host runs. They are in one
// source, so that every module of a host sees the same address.
namespace Oru {

template <>
const TVector2D<float> TVector2D<float>::ZeroVector{0, 0};
template <>
const TVector3D<float> TVector3D<float>::ZeroVector{0, 0, 0};
template <>
const TVector3D<double> TVector3D<double>::ZeroVector{0, 0, 0};
template <>
const TQuaternion<float> TQuaternion<float>::Identity{0, 0, 0, 1};
template <>
const TQuaternion<double> TQuaternion<double>::Identity{0, 0, 0, 1};

}  // namespace Oru
