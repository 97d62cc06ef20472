#include "vexa/mesh/uxs_hashtable.h"

#include <cstdint>
#include <cstring>

namespace UXS {

namespace {

using PositionTable = uxs_hashtable<Oru::TVector3D<float>, unsigned int>;
using BoxTable = uxs_hashtable<unsigned int, Oru::TBox3D<float>>;

/// Byte i of a little-endian 32-bit word, on any machine.
constexpr unsigned int byteOf(std::uint32_t word, int i) { return (word >> (8 * i)) & 0xFF; }

std::uint32_t bitsOf(float value) {
  std::uint32_t bits;
  std::memcpy(&bits, &value, sizeof(bits));
  return bits;
}

}  // namespace

// Required behaviour: bytes 0 and 2 of each word alone. Round numbers have zeros in byte 0, so many
// positions share a hash; VertexFinder does what the library itself needs.
template <>
unsigned int PositionTable::default_hashfunc(const Oru::TVector3D<float>& key) {
  const std::uint32_t words[3] = {bitsOf(key.x), bitsOf(key.y), bitsOf(key.z)};
  unsigned int h = 0;
  for (const std::uint32_t word : words) {
    h = h * 33 + byteOf(word, 0);
    h = h * 33 + byteOf(word, 2);
  }
  return h;
}

template <>
bool PositionTable::default_equalfunc(const Oru::TVector3D<float>& a,
                                      const Oru::TVector3D<float>& b) {
  return a == b;
}

template <>
unsigned int BoxTable::default_hashfunc(const unsigned int& key) {
  return byteOf(key, 0) * 33 + byteOf(key, 2);
}

template <>
bool BoxTable::default_equalfunc(const unsigned int& a, const unsigned int& b) {
  return a == b;
}

template class uxs_hashtable<Oru::TVector3D<float>, unsigned int>;
template class uxs_hashtable<unsigned int, Oru::TBox3D<float>>;
template class uxs_array<PositionTable::cell, unsigned int>;
template class uxs_array<BoxTable::cell, unsigned int>;

}  // namespace UXS
