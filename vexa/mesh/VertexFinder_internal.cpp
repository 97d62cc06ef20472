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

// Which vertex is found does not depend on it. The factors are large and odd, so that each bit of a
// coordinate reaches the upper bits of the product; the shifts bring those down.
std::uint32_t hashOf(const Mesh::Position& p) {
  const std::uint32_t x = bitsOf(p.x) * 0x9E3779B1u, y = bitsOf(p.y) * 0x85EBCA77u;
  const std::uint32_t h = x ^ y ^ bitsOf(p.z) * 0xC2B2AE3Du;
  const std::uint32_t mixed = (h ^ h >> 15) * 0x2C1B3C6Du;
  return mixed ^ mixed >> 13;
}

// Whether a vertex in the table, which has no NaN, is at a position: mostly its bytes are the same.
bool isAt(const Mesh::Position& vertex, const Mesh::Position& p) {
  // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison): zeros of both signs come second.
  return std::memcmp(&vertex, &p, sizeof(p)) == 0 || vertex == p;
}

}  // namespace

VertexFinder::VertexFinder(const std::vector<Mesh::Position>& vertices, std::size_t corners)
    : mVertices(vertices) {
  std::size_t size = 64;
  while (size < corners / 2) size *= 2;  // six corners meet at a position of a closed mesh
  mSlots.assign(size, kFree);
}

// A slot is somewhere in a large table, so reading it waits for memory. The first loop asks for the
// slots of all waiting triangles, the second finds most of them in the cache.
void VertexFinder::finish() {
  std::uint32_t hashes[3 * kBatch] = {}, *hash = hashes;
  for (std::size_t i = 0; i < mWaitingCount; ++i) {
    for (const unsigned int vertex : {mWaiting[i]->x, mWaiting[i]->y, mWaiting[i]->z}) {
      *hash = hashOf(entry(mVertices, vertex));
      __builtin_prefetch(&mSlots[*hash++ & (mSlots.size() - 1)]);
    }
  }
  hash = hashes;
  for (std::size_t i = 0; i < mWaitingCount; ++i, hash += 3) {
    Mesh::Corners& c = *mWaiting[i];
    c.x = firstAt(c.x, hash[0]);
    c.y = firstAt(c.y, hash[1]);
    c.z = firstAt(c.z, hash[2]);
  }
  mWaitingCount = 0;
}

// Where the vertex at this position is, or is to be put.
unsigned int& VertexFinder::slotOf(const Mesh::Position& p, std::uint32_t hash) {
  const std::size_t mask = mSlots.size() - 1;
  std::size_t i = hash & mask;
  while (mSlots[i] != kFree && !isAt(mVertices[mSlots[i]], p)) i = (i + 1) & mask;
  return mSlots[i];
}

unsigned int VertexFinder::firstAt(unsigned int vertex, std::uint32_t hash) {
  const Mesh::Position& p = mVertices[vertex];
  unsigned int* slot = &slotOf(p, hash);
  if (*slot != kFree) return *slot;
  // A NaN equals nothing, so it keeps its vertex and needs no slot.
  if (p != p) return vertex;
  if (2 * ++mTaken > mSlots.size()) {
    grow();
    slot = &slotOf(p, hash);
  }
  return *slot = vertex;
}

void VertexFinder::grow() {
  std::vector<unsigned int> taken(2 * mSlots.size(), kFree);
  taken.swap(mSlots);
  for (const unsigned int vertex : taken) {
    if (vertex != kFree) slotOf(mVertices[vertex], hashOf(mVertices[vertex])) = vertex;
  }
}

}  // namespace UXS
