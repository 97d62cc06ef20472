#pragma once

#include <cstdint>

namespace UxZel {

/// Identifier of a scene object: 16 bytes, read as four 32-bit words. All zero means "none".
struct CZelUUID {
  std::uint32_t mWords[4] = {0, 0, 0, 0};
};

/// All four words are equal.
constexpr bool operator==(const CZelUUID& a, const CZelUUID& b) {
  return a.mWords[0] == b.mWords[0] && a.mWords[1] == b.mWords[1] && a.mWords[2] == b.mWords[2] &&
         a.mWords[3] == b.mWords[3];
}
constexpr bool operator!=(const CZelUUID& a, const CZelUUID& b) { return !(a == b); }

/// Orders maps: word by word, the first that differs decides.
constexpr bool operator<(const CZelUUID& a, const CZelUUID& b) {
  for (int i = 0; i < 4; ++i) {
    if (a.mWords[i] != b.mWords[i]) return a.mWords[i] < b.mWords[i];
  }
  return false;
}

/// Whether the identifier is the all-zero "none".
constexpr bool isNone(const CZelUUID& id) { return id == CZelUUID{}; }

}  // namespace UxZel
