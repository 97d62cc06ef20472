#include "vexa/mesh/VertexFinder_internal.h"

#include <cstdint>
#include <cstring>

#include "vexa/mesh/mesh_geometry_internal.h"

namespace UXS {

namespace {

std::uint32_t bitsOf(float value) {
  value += 0.0f;  // -0 becomes 0
  std::uint32_t bits;
  std::memcpy(&bits, &value, sizeof(bits));
  return bits;
}

// Any spreading will do: which vertex is found does not depend on it.
std::uint32_t hashOf(const Mesh::Position& p) {
  const std::uint32_t x = bitsOf(p.x) * 0x9E3779B1u, y = bitsOf(p.y) * 0x85EBCA77u;
  const std::uint32_t h = x ^ y ^ bitsOf(p.z) * 0xC2B2AE3Du;
  const std::uint32_t mixed = (h ^ h >> 15) * 0x2C1B3C6Du;
  return mixed ^ mixed >> 13;
}

}  // namespace

VertexFinder::VertexFinder(const std::vector<Mesh::Position>& vertices, std::size_t corners)
    : mVertices(vertices) {
  std::size_t size = 64;
  while (size < corners / 2) size *= 2;  // six corners meet at a position of a closed mesh
  mSlots.assign(size, kFree);
}

void VertexFinder::merge(Mesh::Corners& ioCorners) {
  ioCorners = {firstAt(ioCorners.x), firstAt(ioCorners.y), firstAt(ioCorners.z)};
}

// Where the vertex at this position stands, or is to stand.
unsigned int& VertexFinder::slotOf(const Mesh::Position& p) {
  const std::size_t mask = mSlots.size() - 1;
  std::size_t i = hashOf(p) & mask;
  while (mSlots[i] != kFree && mVertices[mSlots[i]] != p) i = (i + 1) & mask;
  return mSlots[i];
}

unsigned int VertexFinder::firstAt(unsigned int vertex) {
  const Mesh::Position& p = entry(mVertices, vertex);
  unsigned int* slot = &slotOf(p);
  if (*slot != kFree) return *slot;
  if (p != p) return vertex;  // NOLINT(misc-redundant-expression): a NaN
  if (2 * ++mTaken > mSlots.size()) {
    grow();
    slot = &slotOf(p);
  }
  return *slot = vertex;
}

void VertexFinder::grow() {
  std::vector<unsigned int> taken(2 * mSlots.size(), kFree);
  taken.swap(mSlots);
  for (const unsigned int vertex : taken) {
    if (vertex != kFree) slotOf(mVertices[vertex]) = vertex;
  }
}

}  // namespace UXS
