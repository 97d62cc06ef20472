#include "importer/model_pose.h"

#include <algorithm>
#include <cmath>

namespace vexa::importer {

namespace {

using Vector = Oru::TVector3D<double>;
using Quaternion = Oru::TQuaternion<double>;

Vector interpolate(const Vector& a, const Vector& b, double t) { return a * (1 - t) + b * t; }

Quaternion combine(const Quaternion& a, double s, const Quaternion& b, double t) {
  return {a.x * s + b.x * t, a.y * s + b.y * t, a.z * s + b.z * t, a.w * s + b.w * t};
}

double dot(const Quaternion& a, const Quaternion& b) {
  return a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w;
}

Quaternion normalized(const Quaternion& q) { return combine(q, 1 / std::sqrt(dot(q, q)), q, 0); }

// Slerp: sin((1-t) angle)/sin(angle) a + sin(t angle)/sin(angle) b, on the side where b is nearer.
Quaternion interpolate(const Quaternion& inA, const Quaternion& inB, double t) {
  const Quaternion a = normalized(inA);
  Quaternion b = normalized(inB);
  double cosine = dot(a, b);
  if (cosine < 0) {
    b = combine(b, -1, b, 0);
    cosine = -cosine;
  }
  // Where the sine vanishes, the straight line is as good.
  if (cosine > 1 - 1e-12) return normalized(combine(a, 1 - t, b, t));
  const double angle = std::acos(cosine);
  const double sine = std::sin(angle);
  return combine(a, std::sin((1 - t) * angle) / sine, b, std::sin(t * angle) / sine);
}

template <class Key>
auto valueAt(const std::vector<Key>& keys, double seconds) {
  const auto after = std::upper_bound(keys.begin(), keys.end(), seconds,
                                      [](double time, const Key& key) { return time < key.time; });
  if (after == keys.begin()) return keys.front().value;
  const Key& before = *std::prev(after);
  if (after == keys.end()) return before.value;
  const double t = (seconds - before.time) / (after->time - before.time);
  return interpolate(before.value, after->value, t);
}

// --- local matrices --------------------------------------------------------------------------

struct Parts {
  Vector translation;
  /// Three columns, of unit length unless the node is scaled to nothing.
  Vector axes[3];
  Vector scale;
};

Vector column(const Matrix& m, int c) { return {m(0, c), m(1, c), m(2, c)}; }

Parts partsOf(const Matrix& local) {
  Parts parts;
  parts.translation = column(local, 3);
  double lengths[3];
  for (int c = 0; c < 3; ++c) {
    const Vector v = column(local, c);
    lengths[c] = std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
    parts.axes[c] = lengths[c] > 0 ? v * (1 / lengths[c]) : v;
  }
  parts.scale = {lengths[0], lengths[1], lengths[2]};
  return parts;
}

// The columns of the rotation matrix of a quaternion.
void setAxes(const Quaternion& inRotation, Vector (&outAxes)[3]) {
  const Quaternion q = normalized(inRotation);
  outAxes[0] = {1 - 2 * (q.y * q.y + q.z * q.z), 2 * (q.x * q.y + q.z * q.w),
                2 * (q.x * q.z - q.y * q.w)};
  outAxes[1] = {2 * (q.x * q.y - q.z * q.w), 1 - 2 * (q.x * q.x + q.z * q.z),
                2 * (q.y * q.z + q.x * q.w)};
  outAxes[2] = {2 * (q.x * q.z + q.y * q.w), 2 * (q.y * q.z - q.x * q.w),
                1 - 2 * (q.x * q.x + q.y * q.y)};
}

Matrix compose(const Parts& parts) {
  const Vector columns[4] = {parts.axes[0] * parts.scale.x, parts.axes[1] * parts.scale.y,
                             parts.axes[2] * parts.scale.z, parts.translation};
  Matrix result;
  for (int c = 0; c < 4; ++c) {
    result(0, c) = columns[c].x;
    result(1, c) = columns[c].y;
    result(2, c) = columns[c].z;
  }
  return result;
}

Matrix localAt(const SourceModel::Channel& channel, const Matrix& stored, double seconds) {
  Parts parts = partsOf(stored);
  if (!channel.translations.empty()) parts.translation = valueAt(channel.translations, seconds);
  if (!channel.rotations.empty()) setAxes(valueAt(channel.rotations, seconds), parts.axes);
  if (!channel.scales.empty()) parts.scale = valueAt(channel.scales, seconds);
  return compose(parts);
}

template <class Key>
double lastTime(const std::vector<Key>& keys) {
  return keys.empty() ? 0 : keys.back().time;
}

}  // namespace

std::vector<Matrix> nodeTransforms(const SourceModel& model, const SourceModel::Clip* clip,
                                   double seconds) {
  std::vector<Matrix> transforms;
  transforms.reserve(model.nodes.size());
  for (const SourceModel::Node& node : model.nodes) transforms.push_back(node.local);
  if (clip != nullptr) {
    for (const SourceModel::Channel& channel : clip->channels) {
      const auto node = static_cast<std::size_t>(channel.node);
      transforms[node] = localAt(channel, model.nodes[node].local, seconds);
    }
  }
  for (std::size_t i = 1; i < transforms.size(); ++i) {
    const auto parent = static_cast<std::size_t>(model.nodes[i].parent);
    transforms[i] = transforms[parent] * transforms[i];
  }
  return transforms;
}

double clipLength(const SourceModel::Clip& clip) {
  double length = 0;
  for (const SourceModel::Channel& channel : clip.channels) {
    length = std::max({length, lastTime(channel.translations), lastTime(channel.rotations),
                       lastTime(channel.scales)});
  }
  return length;
}

}  // namespace vexa::importer
