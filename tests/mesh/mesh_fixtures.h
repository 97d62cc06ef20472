#pragma once

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "vexa/mesh/MeshEditor.h"
#include "vexa/mesh/SharedVector.h"

namespace vexa::tests {

/// Equal, -0 apart from 0, any NaN the same as another: which NaN comes out is the hardware's.
inline bool same(float a, float b) {
  return std::isnan(a) ? std::isnan(b) : a == b && std::signbit(a) == std::signbit(b);
}
inline bool same(unsigned int a, unsigned int b) { return a == b; }
template <class T>
bool same(const Oru::TVector2D<T>& a, const Oru::TVector2D<T>& b) {
  return same(a.x, b.x) && same(a.y, b.y);
}
template <class T>
bool same(const Oru::TVector3D<T>& a, const Oru::TVector3D<T>& b) {
  return same(a.x, b.x) && same(a.y, b.y) && same(a.z, b.z);
}
inline bool same(const Oru::TBox3D<float>& a, const Oru::TBox3D<float>& b) {
  return a.mIsValid == b.mIsValid && same(a.mMin, b.mMin) && same(a.mMax, b.mMax);
}
template <class T>
bool same(const std::vector<T>& a, const std::vector<T>& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](const T& x, const T& y) { return same(x, y); });
}

template <class T>
bool same(const UXS::SharedVector<T>& a, const std::vector<T>& b) {
  return same(a.get(), b);
}

/// A source of small numbers: the same sequence for the same seed, everywhere.
struct Dice {
  std::mt19937 mEngine;
  explicit Dice(unsigned int seed) : mEngine(seed) {}
  unsigned int operator()(unsigned int sides) {
    return static_cast<unsigned int>(mEngine()) % sides;
  }
  /// On a coarse grid, so that positions coincide and faces lie in one plane; now and then wild.
  float coordinate() {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    constexpr float kWild[] = {NAN, kInfinity, -kInfinity, -0.0f, 1e30f, 1e-30f};
    if ((*this)(20) == 0) return kWild[(*this)(6)];
    return static_cast<float>((*this)(3)) - 1;
  }
  UXS::Mesh::Position position() {
    const float x = coordinate(), y = coordinate();
    return {x, y, coordinate()};
  }
};

inline void build(UXS::Mesh& outMesh, const std::vector<UXS::Mesh::Position>& vertices,
                  const std::vector<UXS::Mesh::Corners>& triangles, unsigned int material = 0) {
  UXS::Mesh::Editor editor(outMesh, false);
  for (const auto& p : vertices) editor.AddVertex(p);
  for (const auto& corners : triangles) editor.AddTriangle(corners, material);
}

/// (0,0,0), (1,0,0), (1,1,0), (0,1,0): a square whose two triangles share the edge 0-2.
inline const std::vector<UXS::Mesh::Position> kSquare{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};

}  // namespace vexa::tests
