#pragma once

#include <atomic>
#include <cassert>
#include <cstddef>
#include <initializer_list>
#include <memory>
#include <utility>
#include <vector>

namespace UXS {

/// A vector whose copies share their elements until one of them is edited.
///
/// It is read like a const std::vector and converts to one. Copying takes constant time and does
/// not throw; edit() gives the elements for writing and copies them first when others share them.
/// Copies may be used by different threads, one object by one thread at a time.
template <class T>
class SharedVector {
 public:
  SharedVector() = default;
  SharedVector(std::vector<T> values)  // NOLINT(google-explicit-constructor): a vector is one
      : mValues(std::make_shared<std::vector<T>>(std::move(values))) {}
  SharedVector& operator=(std::initializer_list<T> values) {
    *this = SharedVector(std::vector<T>(values));
    return *this;
  }

  operator const std::vector<T>&() const { return get(); }  // NOLINT(google-explicit-constructor)
  const std::vector<T>& get() const { return mValues ? *mValues : none(); }
  std::size_t size() const { return get().size(); }
  bool empty() const { return get().empty(); }
  const T& operator[](std::size_t i) const {
    assert(i < size());
    return get()[i];
  }
  const T* data() const { return get().data(); }
  const T& back() const { return get().back(); }
  auto begin() const { return get().begin(); }
  auto end() const { return get().end(); }

  /// The elements for writing; the reference holds until the next copy is made. Throws
  /// std::bad_alloc, with nothing changed, when there is no memory for a copy of its own.
  std::vector<T>& edit() {
    if (!mValues) {
      mValues = std::make_shared<std::vector<T>>();
    } else if (mValues.use_count() > 1) {
      mValues = std::make_shared<std::vector<T>>(*mValues);
    } else {
      std::atomic_thread_fence(std::memory_order_acquire);  // after another thread's last read
    }
    return *mValues;
  }
  void push_back(const T& value) { edit().push_back(value); }
  void resize(std::size_t size) {
    if (size != this->size()) edit().resize(size);
  }
  void clear() { mValues.reset(); }

  /// Whether both have the very same elements, not equal ones; two without any do.
  bool shares(const SharedVector& other) const { return mValues == other.mValues; }

 private:
  static const std::vector<T>& none() {
    static const std::vector<T> kNone;
    return kNone;
  }

  std::shared_ptr<std::vector<T>> mValues;  // null when it is empty
};

template <class T>
bool operator==(const SharedVector<T>& a, const std::vector<T>& b) {
  return a.get() == b;
}

}  // namespace UXS
