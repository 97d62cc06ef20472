#include "vexa/tools/uxs_camera_tool.h"

#include <algorithm>
#include <cmath>

#include "vexa/tools/plain_vector_internal.h"
#include "vexa/tools/view_vectors.h"

namespace UXS {

namespace {

float largestComponent(const Vec3& v) {
  return std::max({std::abs(v.x), std::abs(v.y), std::abs(v.z)});
}

bool coincide(const Vec3& position, const Vec3& target) {
  constexpr float kEpsilon = 1.1920929e-07f;
  const float largest = std::max(largestComponent(target), largestComponent(position));
  const float tolerance = std::max(kEpsilon, kEpsilon * largest);
  const Vec3 d = target - position;
  return std::abs(d.x) <= tolerance && std::abs(d.y) <= tolerance && std::abs(d.z) <= tolerance;
}

}  // namespace

Vec3 uxs_camera_tool::get_upvector(const Vec3& position, const Vec3& target, float roll) {
  Vec3 direction = target - position;
  if (coincide(position, target)) direction.y = (target.y + 1) - position.y;
  Vec3 up, right;
  get_up_right_vectors(normalised(direction), roll, up, right);
  return up;
}

}  // namespace UXS
