#pragma once

#include "vexa/Export.h"
#include "vexa/support/XIReporter.h"

namespace Norvel {

/// Makes a reporter the calling thread's while this object lives; scopes nest, the innermost one
/// gets the messages.
///
/// To be destroyed on the thread that made it, in reverse order. The reporter is borrowed. Where
/// the process had no thread key left at load, only the default reporter is changed.
class VEXA_EXPORT XStPushReporter {
 public:
  /// With `alsoDefault` the reporter also serves the threads without a reporter of their own.
  /// Throws std::runtime_error, and changes nothing, when the thread's value cannot be set.
  XStPushReporter(XIReporter* reporter, bool alsoDefault);
  /// Restores the previous reporters; a failure ends the process.
  virtual ~XStPushReporter();
  XStPushReporter(const XStPushReporter&) = delete;
  XStPushReporter& operator=(const XStPushReporter&) = delete;

 private:
  XIReporter* mPreviousReporter = nullptr;
  XIReporter* mPreviousDefault = nullptr;
  bool mAlsoDefault;
};

}  // namespace Norvel
