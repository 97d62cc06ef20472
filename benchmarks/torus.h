#pragma once

#include <cmath>
#include <memory>

#include "vexa/mesh/MeshEditor.h"
#include "vexa/mesh/uxs_autoptr.h"

/// The mesh that is deformed and committed in the benchmarks.
namespace vexa::benchmarks {

/// A source of numbers: the same sequence everywhere.
class Dice {
 public:
  unsigned below(unsigned n) { return next() % n; }
  float real() { return float(next()) / float(1 << 24); }

 private:
  // A linear congruential generator; its upper 24 bits, as the lower ones repeat soon.
  unsigned next() { return (mState = mState * 1664525 + 1013904223) >> 8; }

  unsigned mState = 1;
};

enum class Materials { kBands, kRandom, kNoTriangles };

struct TorusSize {
  unsigned mAround;
  unsigned mAcross;
};
/// 1,000, 10,000, 50,000, 100,000 or 200,000 vertices.
inline TorusSize torusSize(long vertices) {
  switch (vertices) {
    case 1000:
      return {40, 25};
    case 10000:
      return {100, 100};
    case 50000:
      return {250, 200};
    case 100000:
      return {400, 250};
    default:
      return {500, 400};
  }
}

/// A closed torus of around * across vertices and twice as many triangles, with texture
/// coordinates and four materials, in bands or at random.
inline UXS::uxs_autoptr<UXS::Mesh> makeTorus(TorusSize size, Materials materials) {
  UXS::uxs_autoptr<UXS::Mesh> mesh(new UXS::Mesh);
  mesh->increment();
  UXS::Mesh::Editor editor(*mesh, false);
  const auto [around, across] = size;
  for (unsigned i = 0; i < around; ++i) {
    for (unsigned j = 0; j < across; ++j) {
      const float u = 6.2831853f * float(i) / float(around);
      const float v = 6.2831853f * float(j) / float(across);
      const float ring = 3 + std::cos(v);
      editor.AddVertex({ring * std::cos(u), ring * std::sin(u), std::sin(v)});
    }
  }
  if (materials == Materials::kNoTriangles) return mesh;
  Dice dice;
  const auto add = [&](const UXS::Mesh::Corners& corners, unsigned band) {
    const bool inBands = materials == Materials::kBands;
    const unsigned t = editor.AddTriangle(corners, inBands ? band : dice.below(4));
    editor.SetTriangleUVCoords(t, {{0.1f, 0.2f}, {dice.real(), 0.4f}, {0.5f, 0.6f}});
  };
  //   d --- c      i runs around the torus, j across its tube; both start again at their ends, so
  //   |   / |      that no edge is a boundary edge.
  //   | /   |
  //   a --- b
  for (unsigned i = 0; i < around; ++i) {
    for (unsigned j = 0; j < across; ++j) {
      const unsigned i1 = (i + 1) % around, j1 = (j + 1) % across;
      const unsigned a = i * across + j, b = i1 * across + j, c = i1 * across + j1,
                     d = i * across + j1;
      add({a, b, c}, 4 * i / around);
      add({a, c, d}, 4 * i / around);
    }
  }
  return mesh;
}

}  // namespace vexa::benchmarks
