#pragma once

#include <cassert>
#include <cstddef>
#include <vector>

#include "vexa/Export.h"
#include "vexa/math/TVector3D.h"
#include "vexa/mesh/Mesh.h"

namespace UXS {

/// The face normal and the corner angles of each triangle, while a mesh is processed.
class VEXA_EXPORT MeshSmoothData {
 public:
  struct VEXA_EXPORT Data {
    Oru::TVector3D<float> mNormal;  // of unit length, or zero
    float mAngles[3] = {};          // interior, in radians, at corners 0, 1, 2

    /// Measures one triangle. The angles sum to pi, the third being what the others leave; where an
    /// edge has no length they are NaN.
    void Initialize(const Mesh::Impl& mesh, unsigned int triangle);
  };

  /// Of every triangle.
  explicit MeshSmoothData(const Mesh::Impl& mesh);
  /// Of the listed triangles; the records of the others are zero.
  MeshSmoothData(const Mesh::Impl& mesh, const std::vector<unsigned int>& triangles);

  std::size_t size() const { return mData.size(); }
  const Data& operator[](std::size_t triangle) const {
    assert(triangle < mData.size());
    return mData[triangle];
  }

 private:
  std::vector<Data> mData;
};

}  // namespace UXS
