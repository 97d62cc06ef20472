#pragma once

#include <atomic>
#include <cstdint>

#include "vexa/Export.h"

namespace UXS {

/// Base of objects that several owners share by counting references in the object itself.
///
/// An object starts with no reference. Whoever takes the first one calls increment() and hands the
/// object to a uxs_autoptr; the decrement() that gives up the last one deletes the object, which
/// therefore must come from new. Counting is atomic; nothing else of an object is.
class VEXA_EXPORT uxs_reference {
 public:
  /// Process-wide switch: while it is set, increment() and decrement() do nothing.
  static bool _is_final_renderer;

  uxs_reference() = default;
  /// A copy is an object of its own: it starts with no reference, an assigned one keeps its own.
  uxs_reference(const uxs_reference& /*other*/) {}
  uxs_reference& operator=(const uxs_reference& /*other*/) { return *this; }

  /// Takes one reference.
  virtual void increment() const;
  /// Gives up one reference; deletes the object if that was the only one.
  virtual void decrement() const;
  virtual ~uxs_reference();

  /// References taken and not yet given up.
  std::int32_t GetReferenceCount() const { return mReferenceCount.load(); }

 private:
  mutable std::atomic<std::int32_t> mReferenceCount{0};
};

}  // namespace UXS
