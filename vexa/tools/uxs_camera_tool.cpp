#include "vexa/tools/uxs_camera_tool.h"

#include <algorithm>
#include <cmath>

#include "vexa/tools/plain_vector_internal.h"
#include "vexa/tools/view_vectors.h"

namespace UXS {

namespace {

float largestComponent(const V3& v) {
  return std::max({std::abs(v.x), std::abs(v.y), std::abs(v.z)});
}

// Whether the two points are equal but for rounding. The tolerance is one unit of rounding of the
// largest coordinate, and never less than that of 1: far from the origin neighbouring floats are
// further apart.
bool coincide(const V3& position, const V3& target) {
  constexpr float kEpsilon = 1.1920929e-07f;
  const float largest = std::max(largestComponent(target), largestComponent(position));
  const float tolerance = std::max(kEpsilon, kEpsilon * largest);
  const V3 d = target - position;
  return std::abs(d.x) <= tolerance && std::abs(d.y) <= tolerance && std::abs(d.z) <= tolerance;
}

}  // namespace

V3 uxs_camera_tool::get_upvector(const V3& position, const V3& target, float roll) {
  V3 direction = target - position;
  // A direction that is only rounding would turn the camera at random.
  if (coincide(position, target)) direction.y = (target.y + 1) - position.y;
  V3 up, right;
  get_up_right_vectors(normalised(direction), roll, up, right);
  return up;
}

}  // namespace UXS
