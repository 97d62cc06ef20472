#include <array>
#include <cmath>

#include "importer/pivots_internal.h"
#include "importer/quaternion_internal.h"
#include "importer/track_internal.h"

namespace vexa::importer {

namespace {

constexpr double kRadiansPerDegree = 3.14159265358979323846 / 180;

Quaternion aboutAxis(int axis, double degrees) {
  const double half = degrees * kRadiansPerDegree / 2, s = std::sin(half);
  return {axis == 0 ? s : 0, axis == 1 ? s : 0, axis == 2 ? s : 0, std::cos(half)};
}

// The axis named first turns first, so its quaternion is the rightmost factor.
Quaternion fromAngles(const Vec3& degrees, std::int32_t order) {
  constexpr int kAxes[6][3] = {{0, 1, 2}, {0, 2, 1}, {1, 2, 0}, {1, 0, 2}, {2, 0, 1}, {2, 1, 0}};
  const auto& axes = kAxes[order >= 0 && order < 6 ? order : 0];
  const double angles[3] = {degrees.x, degrees.y, degrees.z};
  Quaternion result(0, 0, 0, 1);
  for (const int axis : axes) result = product(aboutAxis(axis, angles[axis]), result);
  return result;
}

Vec3 turned(const Quaternion& rotation, const Vec3& v) {
  Vec3 axes[3];
  axesOf(rotation, axes);
  return axes[0] * v.x + axes[1] * v.y + axes[2] * v.z;
}

Vec3 scaled(const Vec3& a, const Vec3& b) { return {a.x * b.x, a.y * b.y, a.z * b.z}; }

}  // namespace

Matrix matrixOf(const Placing& placing) {
  Vec3 axes[3];
  axesOf(placing.mRotation, axes);
  return matrixOf(axes, placing.mScale, placing.mTranslation);
}

// The chain of SourceModel::Pivots multiplied out: all its factors but one rotation and one scale
// are translations.
Placing placingOf(const SourceModel::Pivots& pivots, const SourceModel::Channel* channel,
                  double seconds) {
  const SourceModel::Pivots& p = pivots;
  Vec3 parts[3] = {p.mTranslation, p.mRotation, p.mScale};
  if (channel != nullptr) {
    for (const SourceModel::Curve& curve : channel->mCurves) {
      Vec3& part = parts[curve.mPart / 3];
      double* const numbers[3] = {&part.x, &part.y, &part.z};
      *numbers[curve.mPart % 3] = valueAt(curve, seconds);
    }
  }
  Placing result;
  result.mScale = parts[2];
  result.mRotation = normalized(
      product(product(fromAngles(p.mPreRotation, 0), fromAngles(parts[1], p.mRotationOrder)),
              conjugate(fromAngles(p.mPostRotation, 0))));
  // T Roff Rp R' Rp^-1 Soff Sp S Sp^-1, where R' is the whole rotation. Applied to a point p:
  //
  //   S p + (Soff + Sp - S Sp)            after the scale, in the space before the rotation
  //   R' (... - Rp) + (T + Roff + Rp)     after the rotation
  //
  // so the translation is T + Roff + Rp + R' (Soff + Sp - Rp - S Sp).
  const Vec3 inner =
      p.mScaleOffset + p.mScalePivot - p.mRotationPivot - scaled(p.mScalePivot, parts[2]);
  result.mTranslation =
      parts[0] + p.mRotationOffset + p.mRotationPivot + turned(result.mRotation, inner);
  return result;
}

}  // namespace vexa::importer
