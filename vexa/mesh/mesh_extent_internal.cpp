#include "vexa/mesh/mesh_extent_internal.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "vexa/math/simd/Float4.h"
#include "vexa/mesh/mesh_geometry_internal.h"

namespace UXS {

namespace {

using Box = Oru::TBox3D<float>;
using Norvel::Vexa::Float4;
using Position = Mesh::Position;

// The minimum ignores a NaN; a maximum that is NaN is replaced by the next point.
void extend(float& ioMin, float& ioMax, float p) {
  ioMin = p <= ioMin ? p : ioMin;
  ioMax = p <= ioMax ? ioMax : p;
}

void extend(Box& ioBox, const Position& p) {
  if (!ioBox.mIsValid) {
    ioBox = {p, p, true};
    return;
  }
  extend(ioBox.mMin.x, ioBox.mMax.x, p.x);
  extend(ioBox.mMin.y, ioBox.mMax.y, p.y);
  extend(ioBox.mMin.z, ioBox.mMax.z, p.z);
}

void extend(Box& ioBox, const Box& box) {
  if (!box.mIsValid) return;
  extend(ioBox, box.mMin);
  extend(ioBox, box.mMax);
}

// Bounds of many values, lane by lane. The sum is NaN if one of them is, which costs less than a
// test of each value; infinities of both signs make it NaN, too, and then the plain walk is taken
// for nothing.
struct Bounds {
  Float4 mMin, mMax, mSum;

  explicit Bounds(Float4 first) : mMin(first), mMax(first), mSum(first) {}
  void add(Float4 p) {
    mMin = Float4::min(mMin, p);
    mMax = Float4::max(mMax, p);
    mSum = mSum + p;
  }
  void add(const Bounds& other) {
    mMin = Float4::min(mMin, other.mMin);
    mMax = Float4::max(mMax, other.mMax);
    mSum = mSum + other.mSum;
  }
  void store(float (&outMin)[4], float (&outMax)[4], float (&outSum)[4]) const {
    mMin.store(outMin), mMax.store(outMax), mSum.store(outSum);
  }
};

// Three components and one of them again: a load of four would read past the last vertex.
Float4 paddedAt(const Position& p) {
  const float row[4] = {p.x, p.y, p.z, p.x};
  return Float4::load(row);
}

Box boxOf(const Bounds& bounds, bool& ioIsExact) {
  float low[4], high[4], sum[4];
  bounds.store(low, high, sum);
  ioIsExact = ioIsExact && !std::isnan(sum[0]) && !std::isnan(sum[1]) && !std::isnan(sum[2]);
  return {{low[0], low[1], low[2]}, {high[0], high[1], high[2]}, true};
}

// A sequence of vertices, ascending: the last is read by itself, as nothing may lie behind it.
Box measureListed(const std::vector<Position>& positions, const unsigned int* begin,
                  const unsigned int* end, bool& ioIsExact) {
  const auto at = [&](unsigned int vertex) { return Float4::load(&positions[vertex].x); };
  const unsigned int last = *--end;
  // Four at once, as each result waits for the one before.
  Bounds a(paddedAt(entry(positions, last))), b = a, c = a, d = a;
  for (; end - begin >= 4; begin += 4) {
    a.add(at(begin[0]));
    b.add(at(begin[1]));
    c.add(at(begin[2]));
    d.add(at(begin[3]));
  }
  for (; begin != end; ++begin) a.add(at(*begin));
  a.add(b);
  c.add(d);
  a.add(c);
  return boxOf(a, ioIsExact);
}

// Adds the lanes of a register that starts with component `first` to a box.
void extend(Box& ioBox, const Bounds& bounds, int first, bool& ioIsExact) {
  constexpr float Position::*kAxes[3] = {&Position::x, &Position::y, &Position::z};
  float low[4], high[4], sum[4];
  bounds.store(low, high, sum);
  for (int lane = 0; lane < 4; ++lane) {
    float Position::*const axis = kAxes[(first + lane) % 3];
    extend(ioBox.mMin.*axis, ioBox.mMax.*axis, low[lane]);
    extend(ioBox.mMin.*axis, ioBox.mMax.*axis, high[lane]);
    ioIsExact = ioIsExact && !std::isnan(sum[lane]);
  }
}

// Vertices one behind the other. Four of them fill three registers:
//   x0 y0 z0 x1 | y1 z1 x2 y2 | z2 x3 y3 z3
Box measureConsecutive(const Position* begin, const Position* end, bool& ioIsExact) {
  Box box{*begin, *begin, true};
  if (end - begin >= 4) {
    const float* from = &begin->x;
    Bounds a(Float4::load(from)), b(Float4::load(from + 4)), c(Float4::load(from + 8));
    for (begin += 4, from += 12; end - begin >= 4; begin += 4, from += 12) {
      a.add(Float4::load(from));
      b.add(Float4::load(from + 4));
      c.add(Float4::load(from + 8));
    }
    extend(box, a, 0, ioIsExact);
    extend(box, b, 1, ioIsExact);
    extend(box, c, 2, ioIsExact);
  }
  for (; begin != end; ++begin) {
    ioIsExact = ioIsExact && *begin == *begin;  // not NaN
    extend(box, *begin);
  }
  return box;
}

bool hasZero(const Position& p) { return p.x == 0 || p.y == 0 || p.z == 0; }

// Without a branch, so that the compiler tests several at once.
bool hasMinusZero(const std::vector<Position>& positions) {
  const float* const values = &positions[0].x;
  std::uint32_t found = 0;
  for (std::size_t i = 0; i < 3 * positions.size(); ++i) {
    std::uint32_t bits;
    std::memcpy(&bits, values + i, sizeof(bits));
    found |= std::uint32_t(bits == 0x80000000);
  }
  return found != 0;
}

}  // namespace

//   section 0 uses a b c             root +- {0}: a -- {0, 1}: b c
//   section 1 uses   b c d                +- {1}: d
//
// While the sections are walked, a vertex moves from its group to that group's child for the
// section. A box is measured once per group and counts for all of the group's sections.
VertexGroups::VertexGroups(const std::vector<Mesh::Corners>& triangles,
                           const std::vector<unsigned int>& sections, std::size_t vertices)
    : mGroups(1) {
  std::vector<unsigned int> groupOfVertex(vertices, kRoot);
  for (unsigned int s = 0; s < sections.size(); ++s) {
    const std::size_t end = s + 1 < sections.size() ? sections[s + 1] : triangles.size();
    for (std::size_t t = sections[s]; t < end; ++t) {
      const auto& [a, b, c] = triangles[t];
      for (const unsigned int v : {a, b, c}) {
        unsigned int& group = entry(groupOfVertex, v);
        if (group == kRoot || mGroups[group].mSection != s) group = childOf(group, s);
      }
    }
  }
  distribute(groupOfVertex);
}

// Sections come one after the other: only the newest child can belong to this one.
unsigned int VertexGroups::childOf(unsigned int group, unsigned int section) {
  const unsigned int child = mGroups[group].mNewestChild;
  if (child != kRoot && mGroups[child].mSection == section) return child;
  const auto added = unsigned(mGroups.size());
  mGroups.push_back({section, group, kRoot, 0, 0});
  return mGroups[group].mNewestChild = added;
}

// Counting sort; the unused vertices are left out.
void VertexGroups::distribute(const std::vector<unsigned int>& groupOfVertex) {
  for (const unsigned int group : groupOfVertex) ++mGroups[group].mEnd;
  unsigned int begin = 0;
  mGroups[kRoot].mEnd = 0;
  for (Group& group : mGroups) {
    group.mBegin = begin;
    begin += group.mEnd;
    group.mEnd = group.mBegin;
  }
  mVertices.resize(begin);
  for (unsigned int v = 0; v < groupOfVertex.size(); ++v) {
    if (groupOfVertex[v] != kRoot) mVertices[mGroups[groupOfVertex[v]].mEnd++] = v;
  }
}

bool VertexGroups::measure(const std::vector<Position>& positions, std::vector<Box>& ioScratch,
                           MeshExtent& ioExtent) const {
  bool isExact = true, hasZeroBound = false;
  for (std::size_t g = 0; g < mGroups.size(); ++g) {
    ioScratch[g] = {};
    if (mGroups[g].mBegin == mGroups[g].mEnd) continue;
    const unsigned int *begin = &mVertices[mGroups[g].mBegin],
                       *end = mVertices.data() + mGroups[g].mEnd;
    const Position* const first = &positions[*begin];
    const bool isRange = std::size_t(end[-1] - *begin) == std::size_t(end - begin) - 1;
    ioScratch[g] = isRange ? measureConsecutive(first, first + (end - begin), isExact)
                           : measureListed(positions, begin, end, isExact);
    hasZeroBound = hasZeroBound || hasZero(ioScratch[g].mMin) || hasZero(ioScratch[g].mMax);
  }
  if (!isExact || (hasZeroBound && hasMinusZero(positions))) return false;
  // A group's vertices belong to its own section and to those of its parent. Parents have lower
  // indices, so a walk backwards meets every child before its parent.
  ioExtent.mAll = {};
  std::fill(ioExtent.mSections.begin(), ioExtent.mSections.end(), Box());
  for (std::size_t g = mGroups.size() - 1; g > kRoot; --g) {
    extend(ioExtent.mSections[mGroups[g].mSection], ioScratch[g]);
    extend(ioScratch[mGroups[g].mParent], ioScratch[g]);
  }
  ioExtent.mAll = ioScratch[kRoot];
  return true;
}

void measureCorners(const std::vector<Position>& positions,
                    const std::vector<Mesh::Corners>& triangles,
                    const std::vector<unsigned int>& sections, MeshExtent& ioExtent) {
  ioExtent.mAll = {};
  for (std::size_t s = 0; s < sections.size(); ++s) {
    Box& box = ioExtent.mSections[s] = {};
    const std::size_t end = s + 1 < sections.size() ? sections[s + 1] : triangles.size();
    for (std::size_t t = sections[s]; t < end; ++t) {
      const auto& [a, b, c] = entry(triangles, t);
      for (const unsigned int vertex : {a, b, c}) {
        extend(box, entry(positions, vertex));
        extend(ioExtent.mAll, entry(positions, vertex));
      }
    }
  }
}

}  // namespace UXS
