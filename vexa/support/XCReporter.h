#pragma once

#include <string>

#include "vexa/Export.h"
#include "vexa/support/TThreadData.h"
#include "vexa/support/XIReporter.h"

namespace Norvel {

/// Which system reports errors: the C library's errno, or none.
enum SystemErrorType : int { kSystemErrno = 0, kSystemNone = 1 };

/// Sends every message of the library to the calling thread's reporter, else to the process-wide
/// default; without either, prints it as `XCReporter: TYPE("TEXT")` on standard
/// output.
///
/// Reporting never throws, and an exception of a host's reporter is dropped; only the records of
/// benchmarks may run out of memory (std::bad_alloc). The per-thread reporter needs
/// no lock; the default reporter, the modes and the benchmarks are plain globals, to be set from
/// one thread. Texts are cut to 2,047 characters, those of Message to 4,095.
class VEXA_EXPORT XCReporter {
 public:
  static void Error(const char* format, ...) __attribute__((format(printf, 1, 2)));
  static void Warning(const char* format, ...) __attribute__((format(printf, 1, 2)));
  /// Reports with the type message.
  static void Printf(const char* format, ...) __attribute__((format(printf, 1, 2)));
  /// Nothing happens when the format is null.
  static void Message(XIReporter::EMsgType type, const char* format, ...)
      __attribute__((format(printf, 2, 3)));

  /// Reports the text unchanged and uncut; null reads as "". Without any reporter a type outside
  /// XIReporter::EMsgType prints nothing.
  static void SendMsg2Reporter(XIReporter::EMsgType type, const char* text);

  /// The optional kinds: nothing is formatted or reported while their mode is off.
  static void TraceInLog(const char* text);
  static void BenchInLog(const char* format, ...) __attribute__((format(printf, 1, 2)));
  static void MemoryInLog(const char* format, ...) __attribute__((format(printf, 1, 2)));

  static bool GetTraceInLog() { return mTraceInLogEnabled; }
  static bool GetMemoryInLog() { return mMemoryInLogEnabled; }
  /// The setters report the mode's new state in the mode's own type.
  /// Required behaviour: also when it is off, and when nothing changes.
  static void SetTraceInLog(bool enabled);
  static void SetMemoryInLog(bool enabled);
  static void SetBenchInLog(bool enabled);

  /// "ERRNO [2] :No such file or directory" for the current errno, whose number goes to `code` if
  /// that is given; "" and 0 for any other kind. The message type has no influence.
  static std::string GetLastSystemErrorEnglish(XIReporter::EMsgType type, SystemErrorType kind,
                                               int* code);

  /// Starts a timing of `name`; a label, if there is one, is kept for the report.
  /// Required behaviour: labels and times pair by index, so a start without a label shifts them.
  static void StartBenchmark(const char* name, const char* label);
  /// Ends the timing started last; an unknown name is ignored.
  static void StopBenchmark(const char* name);
  /// Reports the sum of the timings, then one line per label; `erase` forgets the name. An unknown
  /// name is ignored.
  static void FlushBenchmark(const char* name, bool erase);

  static bool mMemoryInLogEnabled;
  static bool mTraceInLogEnabled;
  static bool mBenchInLogEnabled;
  /// For threads that have no reporter of their own; borrowed, null at load.
  static XIReporter* defaultReporter;

 private:
  friend class XStPushReporter;
  struct KeyLife;

  static XIReporter* currentReporter();

  // Lives from load to unload. Null where the process had no key left: then no thread has a
  // reporter of its own, and the default one gets everything.
  static TThreadData<XIReporter*>* tdReporter;
  static KeyLife keyLife;
};

}  // namespace Norvel
