#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <utility>

#include "c/fault_internal.h"

// Handles are numbers that are looked up, never addresses that are followed: a stale one is found
// out, whatever has become of its memory.
namespace vexa::c {

// What a handle stands for.
class Object {
 public:
  virtual ~Object() = default;
  std::atomic_flag mBusy = ATOMIC_FLAG_INIT;
};

// Makes an object known. Numbers are never used twice.
void* addHandle(std::shared_ptr<Object> object);
// Null for a number that stands for nothing.
std::shared_ptr<Object> findHandle(const void* handle);
void endHandle(const void* handle);

// The object behind a handle, kept from other calls while this lives.
template <class T>
class Use {
 public:
  // Throws Fault: no such handle, one of another kind, or one that another call uses.
  explicit Use(const void* handle) : mObject(std::dynamic_pointer_cast<T>(findHandle(handle))) {
    if (mObject == nullptr) {
      throw Fault(VEXA_BAD_HANDLE, std::string("the handle is not a living ") + T::kKind);
    }
    if (mObject->mBusy.test_and_set(std::memory_order_acquire)) {
      throw Fault(VEXA_BAD_HANDLE, std::string("the ") + T::kKind + " is in use by another call");
    }
  }
  ~Use() { mObject->mBusy.clear(std::memory_order_release); }
  Use(const Use&) = delete;
  Use& operator=(const Use&) = delete;

  T* operator->() const { return mObject.get(); }
  T& operator*() const { return *mObject; }

 private:
  std::shared_ptr<T> mObject;
};

// Creates an object and stores its handle.
template <class T, class Handle, class... Arguments>
void create(Handle* outHandle, Arguments&&... arguments) {
  *outHandle =
      static_cast<Handle>(addHandle(std::make_shared<T>(std::forward<Arguments>(arguments)...)));
}

template <class T>
vexa_status freeHandle(const void* handle) {
  return guarded([&] {
    if (handle == nullptr) return;
    const Use<T> use(handle);
    endHandle(handle);
  });
}

}  // namespace vexa::c
