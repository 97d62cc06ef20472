#pragma once

#include "vexa/Export.h"

namespace Norvel {

/// Receives the library's messages; implemented by the host, installed with XStPushReporter.
///
/// Positions of virtual operations are fixed.
class VEXA_EXPORT XIReporter {
 public:
  enum EMsgType : int {
    kMsgError = 0,
    kMsgWarning = 1,
    kMsgMessage = 2,
    kMsgTrace = 3,
    kMsgBenchmark = 4,
    kMsgMemory = 5,
    kMsgNoMessage = 6
  };

  virtual ~XIReporter() = default;

  /// Receives one finished text, which lives for the call. Runs on the thread that reports; an
  /// exception of it is dropped. The type is handed on as the sender gave it, also outside the
  /// list.
  virtual void ReportMsg(EMsgType type, const char* text) = 0;
};

}  // namespace Norvel
