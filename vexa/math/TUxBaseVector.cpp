#include "vexa/math/TUxBaseVector.h"

#include <algorithm>

#include "vexa/math/ux_matrix44.h"
#include "vexa/math/ux_vect3.h"

namespace Norvel::Vexa {

namespace {

// The world's up, or +Y for a direction near the vertical: a candidate that is nearly parallel to
// the view has almost no part across it, and rounding would decide where the up vector points.
// 0.98 is the cosine of 11.5 degrees. The negated comparison lets a NaN take the first candidate.
template <class T>
ux_vect3<T> upCandidate(const TUxBaseVector<T>& direction) {
  for (const ux_vect3<T>& candidate : {ux_vect3<T>(0, 0, 1), ux_vect3<T>(0, 1, 0)}) {
    if (!(std::abs(direction * candidate) > T(0.98))) return candidate;
  }
  throw std::runtime_error("Invalid view vector");
}

}  // namespace

//   up   candidate     d is the direction of view. d x candidate points out of the drawing, and
//    ^   ^             its cross product with d lies in the plane of both and is perpendicular to
//    |  /              d: the candidate without its part along d. The operator groups from the
//    | /               left, so the text of the formula is already in that order.
//    |/
//    o-------> d
template <class T>
TUxUnitVector<T> TUxBaseVector<T>::get_up_vector(T roll) const {
  const TUxUnitVector<T> d = ux_vect3<T>(*this);
  const TUxUnitVector<T> up = ux_vect3<T>(d ^ upCandidate(d) ^ d);
  if (roll == 0) return up;
  ux_matrix44<T> rotation;
  rotation.rot(d.x, d.y, d.z, roll);
  return rotation * up;
}

// The cosine belongs to two rolls, one to each side, and acos gives the one in [0, pi]. Its up
// vector is computed and compared with the wanted one. When they are more than 0.1 apart (0.01 is
// the square), the roll is the other one. The two rolls' vectors are 2 sin(roll) apart, hence the
// sign that is lost below 0.05. The clamp keeps rounding from making acos a NaN.
template <class T>
T TUxBaseVector<T>::RollForUpVector(const TUxUnitVector<T>& up) const {
  const T roll = std::acos(std::clamp(get_up_vector(0) * up, T(-1), T(1)));
  const bool otherWay = (get_up_vector(roll) - up).sqr_length() > T(0.01);
  return otherWay ? T(6.283185307179586) - roll : roll;
}

template VEXA_EXPORT TUxUnitVector<float> TUxBaseVector<float>::get_up_vector(float) const;
template VEXA_EXPORT TUxUnitVector<double> TUxBaseVector<double>::get_up_vector(double) const;
template VEXA_EXPORT float TUxBaseVector<float>::RollForUpVector(const TUxUnitVector<float>&) const;
template VEXA_EXPORT double TUxBaseVector<double>::RollForUpVector(
    const TUxUnitVector<double>&) const;

}  // namespace Norvel::Vexa
