#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace vexa::tests {

/// The position of a virtual operation in its table, counted from 0; -1 for one that is not
/// virtual.
///
/// Reads the pointer to member as the Itanium C++ ABI lays it out: two words {ptr, adj}. A virtual
/// operation has ptr = 1 + 8 * position; on ARM, where code addresses may be odd, the flag is the
/// low bit of adj instead and ptr is 8 * position.
template <class Member>
std::ptrdiff_t slotOf(Member member) {
  std::intptr_t words[2];
  static_assert(sizeof(member) == sizeof(words), "not a pointer to member function");
  std::memcpy(words, &member, sizeof(words));
#if defined(__aarch64__) || defined(__arm__)
  const bool isVirtual = (words[1] & 1) != 0;
  const std::intptr_t offset = words[0];
#else
  const bool isVirtual = (words[0] & 1) != 0;
  const std::intptr_t offset = words[0] - 1;
#endif
  return isVirtual ? offset / static_cast<std::intptr_t>(sizeof(void*)) : -1;
}

/// Whether operations stand at consecutive positions, in this order, from the first on.
template <class... Members>
bool standInOrderFrom(std::ptrdiff_t first, Members... members) {
  return ((slotOf(members) == first++) && ...);
}

}  // namespace vexa::tests
