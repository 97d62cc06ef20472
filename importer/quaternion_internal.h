#pragma once

#include <cmath>

#include "importer/SourceModel.h"

namespace vexa::importer {

inline Quaternion combine(const Quaternion& a, double s, const Quaternion& b, double t) {
  return {a.x * s + b.x * t, a.y * s + b.y * t, a.z * s + b.z * t, a.w * s + b.w * t};
}

inline double dot(const Quaternion& a, const Quaternion& b) {
  return a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w;
}

/// No rotation where the length is 0.
inline Quaternion normalized(const Quaternion& q) {
  const double length = std::sqrt(dot(q, q));
  return length > 0 ? combine(q, 1 / length, q, 0) : Quaternion(0, 0, 0, 1);
}

inline Quaternion product(const Quaternion& a, const Quaternion& b) {
  return {
      a.w * b.x + a.x * b.w + a.y * b.z - a.z * b.y, a.w * b.y - a.x * b.z + a.y * b.w + a.z * b.x,
      a.w * b.z + a.x * b.y - a.y * b.x + a.z * b.w, a.w * b.w - a.x * b.x - a.y * b.y - a.z * b.z};
}

inline Quaternion conjugate(const Quaternion& q) { return {-q.x, -q.y, -q.z, q.w}; }

/// Between two unit quaternions by the shorter arc at constant speed:
/// sin((1-t) angle)/sin(angle) a + sin(t angle)/sin(angle) b, on the side where b is nearer.
inline Quaternion slerp(const Quaternion& a, const Quaternion& far, double t) {
  const Quaternion b = dot(a, far) < 0 ? combine(far, -1, far, 0) : far;
  const double cosine = dot(a, b);
  // Where the sine vanishes, the straight line is as good.
  if (cosine > 1 - 1e-12) return normalized(combine(a, 1 - t, b, t));
  const double angle = std::acos(cosine);
  const double sine = std::sin(angle);
  return combine(a, std::sin((1 - t) * angle) / sine, b, std::sin(t * angle) / sine);
}

/// The columns of the rotation matrix of a unit quaternion.
inline void axesOf(const Quaternion& q, Vec3 (&outAxes)[3]) {
  outAxes[0] = {1 - 2 * (q.y * q.y + q.z * q.z), 2 * (q.x * q.y + q.z * q.w),
                2 * (q.x * q.z - q.y * q.w)};
  outAxes[1] = {2 * (q.x * q.y - q.z * q.w), 1 - 2 * (q.x * q.x + q.z * q.z),
                2 * (q.y * q.z + q.x * q.w)};
  outAxes[2] = {2 * (q.x * q.z + q.y * q.w), 2 * (q.y * q.z - q.x * q.w),
                1 - 2 * (q.x * q.x + q.y * q.y)};
}

/// The matrix of a rotation's columns, a scale along them and a translation.
inline Matrix matrixOf(const Vec3 (&axes)[3], const Vec3& scale, const Vec3& translation) {
  const Vec3 columns[4] = {axes[0] * scale.x, axes[1] * scale.y, axes[2] * scale.z, translation};
  Matrix result;
  for (int c = 0; c < 4; ++c) {
    result(0, c) = columns[c].x;
    result(1, c) = columns[c].y;
    result(2, c) = columns[c].z;
  }
  return result;
}

}  // namespace vexa::importer
