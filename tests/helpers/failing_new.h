#pragma once

#include <cstddef>
#include <cstdlib>
#include <exception>
#include <new>

/// Replaces operator new of the whole program by one that counts and can fail. For exactly one
/// source file of a test program.
namespace vexa::tests {

inline struct {
  long mUntilFailure = -1;  // allocations that still succeed; none fails while it is negative
  bool mOnwards = false;
  bool mFired = false;
  long mBlocks = 0;        // in use
  long mAllocations = 0;   // made so far
  std::size_t mBytes = 0;  // handed out so far
} gMemory;

inline void* allocate(std::size_t inSize) {
  if (gMemory.mUntilFailure == 0) {
    if (!gMemory.mOnwards) gMemory.mUntilFailure = -1;
    gMemory.mFired = true;
    throw std::bad_alloc();
  }
  if (gMemory.mUntilFailure > 0) --gMemory.mUntilFailure;
  ++gMemory.mBlocks;
  ++gMemory.mAllocations;
  gMemory.mBytes += inSize;
  void* block = std::malloc(inSize + 1);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

inline void* allocateOrNull(std::size_t inSize) noexcept {
  try {
    return allocate(inSize);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

inline void release(void* inBlock) {
  if (inBlock != nullptr) --gMemory.mBlocks;
  std::free(inBlock);
}

// Runs a call that may fail at one allocation, or at all from that one on, and says whether an
// exception came out; mFired tells whether it came to that allocation at all.
template <class Call>
bool throwsAt(long inAllocation, bool inOnwards, Call call) {
  bool thrown = false;
  gMemory.mFired = false;
  gMemory.mOnwards = inOnwards;
  gMemory.mUntilFailure = inAllocation;
  try {
    call();
  } catch (const std::exception&) {
    thrown = true;
  }
  gMemory.mUntilFailure = -1;
  return thrown;
}

/// How many allocations a call makes.
template <class Call>
long allocationsOf(Call call) {
  const long before = gMemory.mAllocations;
  call();
  return gMemory.mAllocations - before;
}

}  // namespace vexa::tests

void* operator new(std::size_t inSize) { return vexa::tests::allocate(inSize); }
void* operator new[](std::size_t inSize) { return vexa::tests::allocate(inSize); }
void* operator new(std::size_t inSize, const std::nothrow_t&) noexcept {
  return vexa::tests::allocateOrNull(inSize);
}
void* operator new[](std::size_t inSize, const std::nothrow_t&) noexcept {
  return vexa::tests::allocateOrNull(inSize);
}
void operator delete(void* inBlock) noexcept { vexa::tests::release(inBlock); }
void operator delete[](void* inBlock) noexcept { vexa::tests::release(inBlock); }
void operator delete(void* inBlock, std::size_t) noexcept { vexa::tests::release(inBlock); }
void operator delete[](void* inBlock, std::size_t) noexcept { vexa::tests::release(inBlock); }
