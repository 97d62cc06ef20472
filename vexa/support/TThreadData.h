#pragma once

#include <cstring>
#include <pthread.h>
#include <type_traits>

#include "vexa/Export.h"

namespace Norvel {

/// Owns one key of thread-specific storage: a pointer-sized value per thread, null until set.
class VEXA_EXPORT CBaseThreadData {
 public:
  /// Throws std::runtime_error when the process has no key left.
  CBaseThreadData();
  /// A key that cannot be deleted is reported as an error.
  virtual ~CBaseThreadData();
  CBaseThreadData(const CBaseThreadData&) = delete;
  CBaseThreadData& operator=(const CBaseThreadData&) = delete;

  /// The calling thread's value.
  void* GetValue() const;
  /// Sets the calling thread's value, which is borrowed. Throws std::runtime_error when the system
  /// refuses, for lack of memory.
  void SetValue(const void* value);

 private:
  pthread_key_t mKey = pthread_key_t(-1);
};

// NOLINTBEGIN(bugprone-sizeof-expression): where T is a pointer, its own size is meant.
/// A value of type T per thread: a plain value no larger than a pointer, all zero until set.
template <class T>
class TThreadData : private CBaseThreadData {
  static_assert(std::is_trivially_copyable_v<T> && sizeof(T) <= sizeof(void*),
                "the value is kept in the place of a pointer");

 public:
  T GetValue() const {
    const void* const stored = CBaseThreadData::GetValue();
    T value;
    std::memcpy(&value, &stored, sizeof(value));
    return value;
  }
  /// Throws as CBaseThreadData::SetValue does.
  void SetValue(T value) {
    const void* stored = nullptr;
    std::memcpy(&stored, &value, sizeof(value));
    CBaseThreadData::SetValue(stored);
  }
};
// NOLINTEND(bugprone-sizeof-expression)

}  // namespace Norvel
