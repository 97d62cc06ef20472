#include <algorithm>
#include <cmath>

#include "importer/quaternion_internal.h"
#include "importer/track_internal.h"

namespace vexa::importer {

namespace {

using Interpolation = SourceModel::Interpolation;
using CurveKey = SourceModel::CurveKey;

// A key that is a rounding error away counts as reached, so that a step falls on its frame.
constexpr double kReached = 1e-5;

Vec3 sum(const Vec3& a, double s, const Vec3& b, double t) { return a * s + b * t; }

Quaternion sum(const Quaternion& a, double s, const Quaternion& b, double t) {
  return combine(a, s, b, t);
}

Vec3 interpolate(const Vec3& a, const Vec3& b, double t) { return a * (1 - t) + b * t; }

Quaternion interpolate(const Quaternion& a, const Quaternion& b, double t) {
  return slerp(normalized(a), normalized(b), t);
}

Vec3 finished(const Vec3& v) { return v; }

Quaternion finished(const Quaternion& q) { return normalized(q); }

template <class Key>
auto firstAfter(const std::vector<Key>& keys, double seconds) {
  return std::upper_bound(keys.begin(), keys.end(), seconds,
                          [](double time, const Key& key) { return time < key.mTime; });
}

// Hermite curve of two values and two tangents per second over `span` seconds.
// h00 a + h10 span m0 + h01 b + h11 span m1, with the usual four polynomials in t.
template <class Value>
Value hermite(const Value& a, const Value& leaving, const Value& b, const Value& arriving,
              double span, double t) {
  const double t2 = t * t, t3 = t2 * t;
  const Value values = sum(a, 2 * t3 - 3 * t2 + 1, b, 3 * t2 - 2 * t3);
  const Value slopes = sum(leaving, span * (t3 - 2 * t2 + t), arriving, span * (t3 - t2));
  return sum(values, 1, slopes, 1);
}

template <class Key>
auto trackValue(const SourceModel::Track<Key>& track, double seconds) {
  const auto& keys = track.mKeys;
  const bool steps = track.mInterpolation == Interpolation::Step;
  const auto after = firstAfter(keys, steps ? seconds + kReached : seconds);
  // Before the first key and after the last one a track rests.
  if (after == keys.begin()) return finished(keys.front().mValue);
  const Key& before = *std::prev(after);
  if (after == keys.end() || steps) return finished(before.mValue);
  const double span = after->mTime - before.mTime;
  const double t = (seconds - before.mTime) / span;
  if (track.mInterpolation == Interpolation::Linear) {
    return interpolate(before.mValue, after->mValue, t);
  }
  // Two tangents per key: 2k on arrival at key k, 2k + 1 on departure.
  const auto index = std::size_t(after - keys.begin());
  return finished(hermite(before.mValue, track.mTangents[2 * index - 1], after->mValue,
                          track.mTangents[2 * index], span, t));
}

double bezier(double p0, double p1, double p2, double p3, double u) {
  const double v = 1 - u;
  return v * v * v * p0 + 3 * v * v * u * p1 + 3 * v * u * u * p2 + u * u * u * p3;
}

// The parameter at which the curve's time, rising from 0 to 1 by way of a and 1 - b, is t:
// Newton's steps within a bracket that is halved where a step would leave it.
double parameterAt(double a, double b, double t) {
  double low = 0, high = 1, u = t;
  // Halving alone gains a binary digit a step: 60 steps are more than a double has.
  for (int i = 0; i < 60; ++i) {
    const double error = bezier(0, a, 1 - b, 1, u) - t;
    if (std::abs(error) < 1e-15) break;
    (error > 0 ? high : low) = u;
    const double v = 1 - u;
    const double slope = 3 * v * v * a + 6 * v * u * (1 - b - a) + 3 * u * u * b;
    const double next = slope > 1e-12 ? u - error / slope : low - 1;
    u = next > low && next < high ? next : (low + high) / 2;
  }
  return u;
}

double cubicValue(const CurveKey& before, const CurveKey& after, double t) {
  const double span = after.mTime - before.mTime;
  const double u = parameterAt(std::clamp(before.mRightTime / span, 0.0, 1.0),
                               std::clamp(after.mLeftTime / span, 0.0, 1.0), t);
  return bezier(before.mValue, before.mValue + before.mRightValue, after.mValue - after.mLeftValue,
                after.mValue, u);
}

}  // namespace

Vec3 valueAt(const SourceModel::Track<SourceModel::VectorKey>& track, double seconds) {
  return trackValue(track, seconds);
}

Quaternion valueAt(const SourceModel::Track<SourceModel::RotationKey>& track, double seconds) {
  return normalized(trackValue(track, seconds));
}

double valueAt(const SourceModel::Curve& curve, double seconds) {
  const auto& keys = curve.mKeys;
  auto after = firstAfter(keys, seconds);
  const auto steps = [](const CurveKey& key) {
    return key.mNext == CurveKey::Next::Hold || key.mNext == CurveKey::Next::Jump;
  };
  // A held value ends exactly at its key, so a frame that misses it by rounding counts as there.
  while (after != keys.end() && after->mTime <= seconds + kReached &&
         (after == keys.begin() || steps(*std::prev(after)))) {
    ++after;
  }
  if (after == keys.begin()) return keys.front().mValue;
  const CurveKey& before = *std::prev(after);
  if (after == keys.end()) return before.mValue;
  const double span = after->mTime - before.mTime;
  const double t = span > 0 ? std::max(0.0, (seconds - before.mTime) / span) : 1;
  switch (before.mNext) {
    case CurveKey::Next::Hold:
      return before.mValue;
    case CurveKey::Next::Jump:
      return seconds - before.mTime <= kReached ? before.mValue : after->mValue;
    case CurveKey::Next::Linear:
      return before.mValue * (1 - t) + after->mValue * t;
    case CurveKey::Next::Cubic:
      break;
  }
  if (!(span > 0)) return after->mValue;
  return cubicValue(before, *after, t);
}

}  // namespace vexa::importer
