#include "scene/node_transform.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace vexa::scene {
namespace {

using Axis = Oru::TVector3D<double>;

// A column shorter than this, against the longest, has no direction.
constexpr double kNoLength = 1e-9;

double dot(const Axis& a, const Axis& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

Axis cross(const Axis& a, const Axis& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

Axis unit(const Axis& a) { return a * (1 / std::sqrt(dot(a, a))); }

// Some direction at a right angle to a unit axis.
Axis perpendicularTo(const Axis& a) {
  return unit(std::abs(a.x) < 0.6 ? cross(a, {1, 0, 0}) : cross(a, {0, 1, 0}));
}

// Three axes at right angles, each along its column as far as the longer ones before it allow.
std::array<Axis, 3> axesOf(const std::array<Axis, 3>& columns, const double (&lengths)[3]) {
  std::array<std::size_t, 3> order{0, 1, 2};
  std::stable_sort(order.begin(), order.end(),
                   [&](std::size_t a, std::size_t b) { return lengths[a] > lengths[b]; });
  const auto [first, second, third] = order;
  std::array<Axis, 3> axes{Axis(1, 0, 0), Axis(0, 1, 0), Axis(0, 0, 1)};
  const double least = kNoLength * lengths[first];
  if (!(lengths[first] > 0)) return axes;
  axes[first] = unit(columns[first]);
  Axis rest = columns[second] - axes[first] * dot(columns[second], axes[first]);
  axes[second] = std::sqrt(dot(rest, rest)) > least ? unit(rest) : perpendicularTo(axes[first]);
  axes[third] = cross(axes[first], axes[second]);
  if (dot(axes[third], columns[third]) < 0) axes[third] = axes[third] * -1.0;
  return axes;
}

// Of a rotation's columns: the largest of the four numbers first, so that nothing is divided by
// almost 0.
void rotationOf(const std::array<Axis, 3>& c, double (&outRotation)[4]) {
  const double squares[4] = {1 + c[0].x - c[1].y - c[2].z, 1 - c[0].x + c[1].y - c[2].z,
                             1 - c[0].x - c[1].y + c[2].z, 1 + c[0].x + c[1].y + c[2].z};
  const auto largest = std::max_element(squares, squares + 4) - squares;
  const double xy = c[0].y + c[1].x, xz = c[0].z + c[2].x, yz = c[1].z + c[2].y;
  const double xw = c[1].z - c[2].y, yw = c[2].x - c[0].z, zw = c[0].y - c[1].x;
  const double rows[4][4] = {{squares[0], xy, xz, xw},
                             {xy, squares[1], yz, yw},
                             {xz, yz, squares[2], zw},
                             {xw, yw, zw, squares[3]}};
  const double* row = rows[largest];
  double length = 0;
  for (int i = 0; i < 4; ++i) length += row[i] * row[i];
  length = std::sqrt(length) * (row[3] < 0 ? -1 : 1);
  for (int i = 0; i < 4; ++i) outRotation[i] = row[i] / length;
}

}  // namespace

NodeTransform transformOf(const Matrix44& m) {
  NodeTransform result;
  std::array<Axis, 3> columns;
  double lengths[3];
  for (int c = 0; c < 3; ++c) {
    result.mTranslation[c] = m(c, 3);
    columns[std::size_t(c)] = {m(0, c), m(1, c), m(2, c)};
    lengths[c] = std::sqrt(dot(columns[std::size_t(c)], columns[std::size_t(c)]));
  }
  std::array<Axis, 3> axes = axesOf(columns, lengths);
  std::copy_n(lengths, 3, result.mScale);
  if (dot(cross(axes[0], axes[1]), axes[2]) < 0) {
    axes[0] = axes[0] * -1.0;
    result.mScale[0] = -result.mScale[0];
  }
  rotationOf(axes, result.mRotation);
  return result;
}

Matrix44 matrixOf(const NodeTransform& transform) {
  const auto [x, y, z, w] = transform.mRotation;
  const double columns[3][3] = {
      {1 - 2 * (y * y + z * z), 2 * (x * y + z * w), 2 * (x * z - y * w)},
      {2 * (x * y - z * w), 1 - 2 * (x * x + z * z), 2 * (y * z + x * w)},
      {2 * (x * z + y * w), 2 * (y * z - x * w), 1 - 2 * (x * x + y * y)}};
  Matrix44 result;
  for (int r = 0; r < 3; ++r) {
    for (int c = 0; c < 3; ++c) result(r, c) = columns[c][r] * transform.mScale[c];
    result(r, 3) = transform.mTranslation[r];
  }
  return result;
}

Matrix44 matrixOf(const formats::GlbTransform& transform) {
  NodeTransform wide;
  std::copy_n(transform.mTranslation.begin(), 3, wide.mTranslation);
  std::copy_n(transform.mRotation.begin(), 4, wide.mRotation);
  std::copy_n(transform.mScale.begin(), 3, wide.mScale);
  return matrixOf(wide);
}

formats::GlbTransform rounded(const NodeTransform& transform) {
  formats::GlbTransform result;
  const auto toFloat = [](double number) { return float(number); };
  std::transform(transform.mTranslation, transform.mTranslation + 3, result.mTranslation.begin(),
                 toFloat);
  std::transform(transform.mRotation, transform.mRotation + 4, result.mRotation.begin(), toFloat);
  std::transform(transform.mScale, transform.mScale + 3, result.mScale.begin(), toFloat);
  return result;
}

// Jacobi's method: each turn makes one pair of elements beside the diagonal zero.
Matrix44 mainAxes(const Matrix44& symmetric) {
  constexpr int kSweeps = 20;
  Matrix44 a = symmetric, axes;
  for (int sweep = 0; sweep < kSweeps; ++sweep) {
    for (const auto& [p, q] : {std::pair(0, 1), std::pair(0, 2), std::pair(1, 2)}) {
      if (a(p, q) == 0) continue;
      const double angle = 0.5 * std::atan2(2 * a(p, q), a(p, p) - a(q, q));
      Matrix44 turn;
      turn(p, p) = turn(q, q) = std::cos(angle);
      turn(q, p) = std::sin(angle);
      turn(p, q) = -std::sin(angle);
      Matrix44 back = turn;
      back.transpose();
      a = back * a * turn;
      axes = axes * turn;
    }
  }
  return axes;
}

}  // namespace vexa::scene
