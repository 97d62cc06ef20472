#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "vexa/mesh/Mesh.h"

namespace UXS {

// Finds, among the vertices met so far, the first at exactly a position: as a uxs_hashtable of
// positions does, in constant time however many there are.
//
// Zeros of both signs are one position; a NaN is at none. A hash table with open addressing.
// Invariant: mSlots has a power of two slots, at most half of them taken, and between the slot that
// a position's hash names and the slot of its vertex none is free.
class VertexFinder {
 public:
  // `vertices` is borrowed and must not change while this object lives. `corners` is an estimate
  // that sizes the table.
  VertexFinder(const std::vector<Mesh::Position>& vertices, std::size_t corners);

  // Each corner becomes the first vertex met at its position: at once, or when finish() is called.
  // The triangle must stay where it is until then.
  void merge(Mesh::Corners& ioCorners) {
    mWaiting[mWaitingCount++] = &ioCorners;
    if (mWaitingCount == kBatch) finish();
  }
  void finish();

 private:
  static constexpr unsigned int kFree = 0xFFFFFFFF;
  // Slots of so many triangles are fetched from memory at once.
  static constexpr std::size_t kBatch = 32;

  unsigned int& slotOf(const Mesh::Position& p, std::uint32_t hash);
  unsigned int firstAt(unsigned int vertex, std::uint32_t hash);
  void grow();

  const std::vector<Mesh::Position>& mVertices;
  std::vector<unsigned int> mSlots;
  std::size_t mTaken = 0;
  std::array<Mesh::Corners*, kBatch> mWaiting;
  std::size_t mWaitingCount = 0;
};

}  // namespace UXS
