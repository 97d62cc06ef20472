#pragma once

#include <cassert>
#include <cstddef>
#include <vector>

#include "vexa/Export.h"
#include "vexa/mesh/Mesh.h"
#include "vexa/mesh/SmallVector.h"

namespace UXS {

/// The triangles around each vertex, while a mesh is processed.
///
/// A triangle stands in a vertex's list once for each corner that has the vertex.
class VEXA_EXPORT MeshSmoothList {
 public:
  using List = Oru::SmallVector<unsigned int, 4>;

  /// Of every triangle, in ascending order.
  explicit MeshSmoothList(const Mesh::Impl& mesh);
  /// Of the listed triangles, in the order of the list.
  MeshSmoothList(const Mesh::Impl& mesh, const std::vector<unsigned int>& triangles);

  std::size_t size() const { return mLists.size(); }
  const List& operator[](std::size_t vertex) const {
    assert(vertex < mLists.size());
    return mLists[vertex];
  }

 private:
  void add(const Mesh::Impl& mesh, unsigned int triangle);

  std::vector<List> mLists;
};

}  // namespace UXS
