#pragma once

#include <utility>

#include "vexa/Export.h"

namespace UXS {

/// Owns one reference of an object derived from uxs_reference, and gives it up when it goes.
///
/// It never takes a reference: call increment() on the object before handing it over. It can be
/// moved, not copied. An exception from the object's decrement() terminates the program.
template <class T>
class VEXA_EXPORT uxs_autoptr {
 public:
  /// Takes over one reference that the caller has taken; null owns nothing.
  explicit uxs_autoptr(T* object = nullptr) : mObject(object) {}
  uxs_autoptr(uxs_autoptr&& other) noexcept : mObject(std::exchange(other.mObject, nullptr)) {}
  /// Gives up what it owned and takes over what `other` owned.
  uxs_autoptr& operator=(uxs_autoptr&& other) noexcept {
    uxs_autoptr(std::move(other)).swap(*this);
    return *this;
  }
  virtual ~uxs_autoptr() {
    if (T* const object = std::exchange(mObject, nullptr)) object->decrement();
  }

  T* get() const { return mObject; }
  T& operator*() const { return *mObject; }
  T* operator->() const { return mObject; }
  explicit operator bool() const { return mObject != nullptr; }

  void swap(uxs_autoptr& other) noexcept { std::swap(mObject, other.mObject); }

 private:
  T* mObject;
};

}  // namespace UXS
