#pragma once

namespace Norvel::Vexa {

// The dot product of two vectors of three components, from left to right in their own type. It is
// written once for the vector types of the host, the mesh and the paths, which share no base.
template <class V>
constexpr auto dot(const V& a, const V& b) {
  return a.x * b.x + a.y * b.y + a.z * b.z;  // order: exact floats
}

}  // namespace Norvel::Vexa
