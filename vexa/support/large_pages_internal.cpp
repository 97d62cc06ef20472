#include "vexa/support/large_pages_internal.h"

#include <cstdint>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace Norvel {

#if defined(__linux__) && defined(MADV_HUGEPAGE)

void useLargePages(void* memory, std::size_t bytes) {
  constexpr std::size_t kLeast = std::size_t{4} << 20, kPage = std::size_t{2} << 20;
  if (bytes < kLeast) return;
  // Whole large pages only: what lies beside them may belong to others.
  const std::size_t skipped = (kPage - reinterpret_cast<std::uintptr_t>(memory) % kPage) % kPage;
  const std::size_t whole = (bytes - skipped) / kPage * kPage;
  madvise(static_cast<char*>(memory) + skipped, whole, MADV_HUGEPAGE);
}

#else

void useLargePages(void* /*memory*/, std::size_t /*bytes*/) {}

#endif

}  // namespace Norvel
