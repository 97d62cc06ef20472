#include <cstdint>
#include <mutex>
#include <unordered_map>

#include "c/handles_internal.h"

namespace vexa::c {
namespace {

// Every living handle of the process. The mutex is held for a lookup only, never during a call, so
// that a host's function may call the interface again.
struct Registry {
  std::mutex mMutex;
  std::unordered_map<std::uintptr_t, std::shared_ptr<Object>> mObjects;
  std::uintptr_t mNext = 1;
};

// Never destroyed: a host may end its handles while the process ends.
Registry& registry() {
  static Registry& instance = *new Registry;
  return instance;
}

std::uintptr_t numberOf(const void* handle) { return reinterpret_cast<std::uintptr_t>(handle); }

}  // namespace

void* addHandle(std::shared_ptr<Object> object) {
  Registry& all = registry();
  const std::lock_guard<std::mutex> lock(all.mMutex);
  // If the table has no memory, the number is free for the next object.
  const std::uintptr_t number = all.mNext;
  all.mObjects.emplace(number, std::move(object));
  all.mNext += 2;  // odd, so that no address of an object looks like a handle
  // NOLINTNEXTLINE(performance-no-int-to-ptr): the handle is a number that nobody dereferences.
  return reinterpret_cast<void*>(number);
}

// Shared: another thread may end the handle while a call uses the object.
std::shared_ptr<Object> findHandle(const void* handle) {
  Registry& all = registry();
  const std::lock_guard<std::mutex> lock(all.mMutex);
  const auto found = all.mObjects.find(numberOf(handle));
  return found == all.mObjects.end() ? nullptr : found->second;
}

void endHandle(const void* handle) {
  Registry& all = registry();
  const std::lock_guard<std::mutex> lock(all.mMutex);
  all.mObjects.erase(numberOf(handle));
}

}  // namespace vexa::c
