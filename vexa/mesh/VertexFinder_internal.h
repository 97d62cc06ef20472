#pragma once

#include <cstddef>
#include <vector>

#include "vexa/mesh/Mesh.h"

namespace UXS {

// Finds, among the vertices met so far, the first at exactly a position: as a uxs_hashtable of
// positions does, in constant time however many there are.
//
// Zeros of both signs are one position; a NaN is at none.
class VertexFinder {
 public:
  // Of one mesh, whose vertices stay as they are meanwhile; about so many corners will come.
  VertexFinder(const std::vector<Mesh::Position>& vertices, std::size_t corners);

  // Each corner becomes the first vertex met at its position.
  void merge(Mesh::Corners& ioCorners);

 private:
  static constexpr unsigned int kFree = 0xFFFFFFFF;

  unsigned int& slotOf(const Mesh::Position& p);
  unsigned int firstAt(unsigned int vertex);
  void grow();

  const std::vector<Mesh::Position>& mVertices;
  std::vector<unsigned int> mSlots;  // a power of two, at most half of them taken
  std::size_t mTaken = 0;
};

}  // namespace UXS
