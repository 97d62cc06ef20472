#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

#include "vexa/math/uxs_generic_vec3.h"
#include "vexa/paths/XTPathInfo.h"

/// The arc-length tables of a path word by word: one piece of one segment at a time. What the
/// library computes eight segments at once must have the same bits.
namespace vexa::models {

using V3 = UXS::uxs_generic_vec3<float>;
using LengthTable = std::array<float, 16>;

struct Segment {
  V3 p0, c1, c2, p3;
};

inline double norm(const V3& v) { return double(std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z)); }

// An estimate of the arc length: the control polygon and twice the broken line P0-M-P3, over three,
// where M is the middle of C1 and C2. order: exact floats
inline double lengthOf(const Segment& s) {
  const V3 m = (s.c1 + s.c2) * 0.5f;
  return (norm(s.p3 - s.c2) + norm(s.c1 - s.c2) + norm(s.c1 - s.p0) + 2 * norm(m - s.p3) +
          2 * norm(m - s.p0)) /
         3.0;
}

// De Casteljau at 1/2, again and again; the pieces come in order from P0 to P3.
inline void appendPieces(const Segment& s, int levels, std::vector<Segment>& pieces) {
  if (levels == 0) return pieces.push_back(s);
  const V3 middle = (3.0f * s.c2 + 3.0f * s.c1 + s.p0 + s.p3) * 0.125f;
  const Segment left{s.p0, (s.p0 + s.c1) * 0.5f, (2.0f * s.c1 + s.p0 + s.c2) * 0.25f, middle};
  const Segment right{middle, (2.0f * s.c2 + s.p3 + s.c1) * 0.25f, (s.p3 + s.c2) * 0.5f, s.p3};
  appendPieces(left, levels - 1, pieces);
  appendPieces(right, levels - 1, pieces);
}

// Entry k is the length of the first k + 1 of sixteen pieces.
inline LengthTable tableOf(const Segment& segment) {
  std::vector<Segment> pieces;
  pieces.reserve(16);
  appendPieces(segment, 4, pieces);
  LengthTable table;
  float length = 0;
  for (std::size_t k = 0; k < 16; ++k) table[k] = length += float(lengthOf(pieces[k]));
  return table;
}

// The parameter at a fraction of the length: the piece by a walk along the table, then a straight
// line within the piece.
inline float parameterAt(const LengthTable& d, float fraction) {
  const float x = fraction * d[15];
  std::size_t k = 0;
  while (k < 15 && d[k] <= x) ++k;
  if (k == 0) return float(double(x / d[0]) * 0.0625);
  return float(double(x - d[k - 1]) * 0.0625 / double(d[k] - d[k - 1]) + double(k) * 0.0625);
}

inline V3 pointAt(const Segment& s, float t) {
  if (!(0 < t && t < 1)) return t == 0 ? s.p0 : s.p3;
  const float u = 1 - t;
  return s.p3 * (t * t * t) + s.c2 * (3 * u * t * t) + s.c1 * (3 * u * u * t) + s.p0 * (u * u * u);
}

struct LiteralPath {
  explicit LiteralPath(const Norvel::Vexa::XTPathInfo<V3, V3, float>& info) {
    for (unsigned int i = 1; i < info.getNbBezierPoints(); ++i) {
      segments.push_back({info.getPassagePointPositionAt(i - 1), info.getAfterControlPointAt(i - 1),
                          info.getBeforeControlPointAt(i), info.getPassagePointPositionAt(i)});
      tables.push_back(tableOf(segments.back()));
      proportions.push_back(total += tables.back()[15]);
    }
    for (float& proportion : proportions) proportion /= total;
  }

  V3 valueAt(float distance) const {
    if (segments.size() == 1) return placeOn(0, distance);
    if (distance <= proportions[0]) return placeOn(0, distance / proportions[0]);
    std::size_t i = 1;  // the first segment that does not end before the distance
    while (i + 1 < segments.size() && proportions[i] < distance) ++i;
    const float before = proportions[i - 1];
    return placeOn(i, (distance - before) / (proportions[i] - before));
  }

  V3 placeOn(std::size_t i, float fraction) const {
    return pointAt(segments[i], parameterAt(tables[i], fraction));
  }

  std::vector<Segment> segments;
  std::vector<LengthTable> tables;
  std::vector<float> proportions;
  float total = 0;
};

}  // namespace vexa::models
