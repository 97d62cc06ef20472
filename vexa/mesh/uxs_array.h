#pragma once

#include <cassert>
#include <cstddef>
#include <cstring>
#include <type_traits>
#include <utility>

#include "vexa/Export.h"
#include "vexa/math/uxs_generic_mat4.h"

namespace UXS {

/// A growable array of plain values whose growth, copying and comparison are function pointers.
///
/// Index is the unsigned type of sizes and positions. Nothing here throws: failure comes back as
/// null, false or a short count, and an exception from T or from a hook counts as failure. What a
/// copy hook returns is not looked at; a hook reports a failure by throwing. Positions given to
/// operator[] are asserted in debug builds only. An array can be moved; it is copied with copy().
template <class T, class Index>
class VEXA_EXPORT uxs_array {
 public:
  /// The next capacity when an array of this capacity is full.
  using SizeFunction = Index (*)(Index capacity);
  /// Copies n elements; the default reports whether it could.
  using CopyFunction = bool (*)(T* dst, const T* src, Index n);
  /// Whether n elements are the same.
  using EqualFunction = bool (*)(const T* a, const T* b, Index n);

  explicit uxs_array(SizeFunction growth = default_sizefunc, CopyFunction copier = default_copyfunc,
                     EqualFunction comparer = default_equalfunc)
      : mSizeFunction(growth), mCopyFunction(copier), mEqualFunction(comparer) {}
  uxs_array(uxs_array&& other) noexcept
      : uxs_array(other.mSizeFunction, other.mCopyFunction, other.mEqualFunction) {
    swap(other);
  }
  uxs_array& operator=(uxs_array&& other) noexcept {
    uxs_array(std::move(other)).swap(*this);
    return *this;
  }
  virtual ~uxs_array() { delete[] mData; }

  Index size() const { return mSize; }
  Index capacity() const { return mCapacity; }
  T* begin() { return mData; }
  T* end() { return mData + mSize; }
  const T* begin() const { return mData; }
  const T* end() const { return mData + mSize; }
  T& operator[](Index i) {
    assert(i < mSize);
    return mData[i];
  }
  const T& operator[](Index i) const {
    assert(i < mSize);
    return mData[i];
  }

  /// Appends x, which may be an element of this array, growing a full array to what the size
  /// function says. Gives the new element, or null when growing failed.
  T* push_back(const T& x);
  /// Changes the capacity to n, also downwards; new elements are value-initialised. False, with
  /// nothing done, when n is below the size, equals the capacity or cannot be had.
  bool reserve(Index n);
  /// Replaces the content by all of `other`, dropping its own first. Whether all came over; an
  /// array copied to itself stays as it is.
  bool copy(const uxs_array& other);
  /// Copies up to n elements of `other` from `start` on to the same positions here, growing as
  /// needed; a gap before `start` holds value-initialised elements. Gives how many came over: 0 if
  /// `other` ends before `start` or growing failed.
  Index copy(const uxs_array& other, Index start, Index n);
  /// Makes the content n times x. False, with nothing done, when growing failed.
  bool assign(Index n, const T& x);
  /// Forgets the elements and keeps the buffer.
  void clear() { mSize = 0; }
  /// Whether both hold the same elements, by this array's equality function; two empty arrays are.
  bool equals(const uxs_array& other) const {
    return mSize == other.mSize && (mSize == 0 || mEqualFunction(mData, other.mData, mSize));
  }

  void swap(uxs_array& other) noexcept;

  /// Twice the capacity, or 1 when that is 0.
  /// Required behaviour: computed in the width of Index, so half of its range wraps to 1.
  static Index default_sizefunc(Index capacity) {
    const auto doubled = Index(2 * capacity);
    return doubled == 0 ? Index{1} : doubled;
  }
  /// Copies the bytes; false when either pointer is null.
  static bool default_copyfunc(T* dst, const T* src, Index n);
  /// Compares the bytes; false when either pointer is null.
  static bool default_equalfunc(const T* a, const T* b, Index n);

 private:
  T* mData = nullptr;
  Index mSize = 0;
  Index mCapacity = 0;
  SizeFunction mSizeFunction;
  CopyFunction mCopyFunction;
  EqualFunction mEqualFunction;
};

template <class T, class Index>
T* uxs_array<T, Index>::push_back(const T& x) try {
  if (mSize < mCapacity) {
    mData[mSize] = x;
  } else {
    const T value = x;  // x may lie in the buffer that goes
    if (!reserve(mSizeFunction(mCapacity))) return nullptr;
    mData[mSize] = value;
  }
  return &mData[mSize++];
} catch (...) {
  return nullptr;
}

template <class T, class Index>
bool uxs_array<T, Index>::reserve(Index n) {
  if (mSize > n || mCapacity == n) return false;
  T* buffer = nullptr;
  try {
    if (n != 0) buffer = new T[n]();
    mCopyFunction(buffer, mData, mSize);
  } catch (...) {
    delete[] buffer;
    return false;
  }
  delete[] std::exchange(mData, buffer);
  mCapacity = n;
  return true;
}

template <class T, class Index>
bool uxs_array<T, Index>::copy(const uxs_array& other) {
  if (this == &other) return true;
  delete[] std::exchange(mData, nullptr);
  mSize = mCapacity = 0;
  return copy(other, 0, other.mSize) == other.mSize;
}

template <class T, class Index>
Index uxs_array<T, Index>::copy(const uxs_array& other, Index start, Index n) try {
  if (other.mSize <= start) return 0;
  const auto rest = Index(other.mSize - start);
  const Index count = rest < n ? rest : n;
  if (this == &other) return count;
  const auto end = Index(start + count);
  if (mCapacity < end && !reserve(end)) return 0;
  for (Index i = mSize; i < start; ++i) mData[i] = T();  // what a clear() left there
  mCopyFunction(mData + start, other.mData + start, count);
  if (mSize < end) mSize = end;
  return count;
} catch (...) {
  return 0;
}

template <class T, class Index>
bool uxs_array<T, Index>::assign(Index n, const T& x) try {
  const T value = x;
  if (mCapacity < n && !reserve(n)) return false;
  mSize = 0;  // what an exception leaves
  for (Index i = 0; i < n; ++i) mData[i] = value;
  mSize = n;
  return true;
} catch (...) {
  return false;
}

template <class T, class Index>
void uxs_array<T, Index>::swap(uxs_array& other) noexcept {
  std::swap(mData, other.mData);
  std::swap(mSize, other.mSize);
  std::swap(mCapacity, other.mCapacity);
  std::swap(mSizeFunction, other.mSizeFunction);
  std::swap(mCopyFunction, other.mCopyFunction);
  std::swap(mEqualFunction, other.mEqualFunction);
}

template <class T, class Index>
bool uxs_array<T, Index>::default_copyfunc(T* dst, const T* src, Index n) {
  static_assert(std::is_trivially_copyable_v<T>,
                "give other elements a copy function of their own");
  if (dst == nullptr || src == nullptr) return false;
  // As bytes: a plain value may still have a constructor.
  std::memcpy(static_cast<void*>(dst), src, std::size_t{n} * sizeof(T));
  return true;
}

template <class T, class Index>
bool uxs_array<T, Index>::default_equalfunc(const T* a, const T* b, Index n) {
  if (a == nullptr || b == nullptr) return false;
  return std::memcmp(static_cast<const void*>(a), b, std::size_t{n} * sizeof(T)) == 0;
}

extern template class uxs_array<unsigned int, unsigned int>;
extern template class uxs_array<uxs_generic_mat4<float>, unsigned int>;

}  // namespace UXS
