#pragma once

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <type_traits>
#include <utility>

namespace Oru {

/// A growing list of plain values with room for N of them before it allocates.
///
/// Made for many short lists: at four unsigned ints it takes 32 bytes. Positions are asserted in
/// debug builds only. It can be moved, not copied.
template <class T, unsigned int N>
class SmallVector {
  static_assert(std::is_trivially_copyable_v<T>, "plain values only");

 public:
  SmallVector() = default;
  SmallVector(SmallVector&& other) noexcept
      : mHeap(std::move(other.mHeap)),
        mSize(std::exchange(other.mSize, 0)),
        mCapacity(std::exchange(other.mCapacity, N)) {
    std::copy_n(other.mInline, N, mInline);
  }
  SmallVector& operator=(SmallVector&& other) noexcept {
    mHeap = std::move(other.mHeap);
    mSize = std::exchange(other.mSize, 0);
    mCapacity = std::exchange(other.mCapacity, N);
    std::copy_n(other.mInline, N, mInline);
    return *this;
  }

  std::size_t size() const { return mSize; }
  bool empty() const { return mSize == 0; }
  T* begin() { return mHeap ? mHeap.get() : mInline; }
  T* end() { return begin() + mSize; }
  const T* begin() const { return mHeap ? mHeap.get() : mInline; }
  const T* end() const { return begin() + mSize; }
  T& operator[](std::size_t i) {
    assert(i < mSize);
    return begin()[i];
  }
  const T& operator[](std::size_t i) const {
    assert(i < mSize);
    return begin()[i];
  }

  /// Appends a value; a full list doubles its room. Throws std::bad_alloc, with nothing changed.
  void push_back(T value) {
    if (mSize == mCapacity) grow();
    begin()[mSize++] = value;
  }

 private:
  void grow() {
    auto larger = std::make_unique<T[]>(2 * std::size_t{mCapacity});
    std::copy_n(begin(), mSize, larger.get());
    mHeap = std::move(larger);
    mCapacity *= 2;
  }

  std::unique_ptr<T[]> mHeap;
  std::uint32_t mSize = 0;
  std::uint32_t mCapacity = N;
  T mInline[N] = {};
};

}  // namespace Oru
