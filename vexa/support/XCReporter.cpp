#include "vexa/support/XCReporter.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

#include "vexa/support/XCBenchmarkRecords.h"
#include "vexa/support/clock.h"
#include "vexa/support/forced_unwind_internal.h"
#include "vexa/support/format_internal.h"

namespace Norvel {
namespace {

constexpr const char* MsgTypeName[] = {"Error", "Warning", "Message",  "Trace",
                                       "Bench", "Memory",  "NoMessage"};

void print(XIReporter::EMsgType type, const char* text) {
  if (type < XIReporter::kMsgError || type > XIReporter::kMsgNoMessage) return;
  std::printf("XCReporter: %s(\"%s\")\n", MsgTypeName[type], text);
}

// N bounds the text, which is cut. The buffer is on the stack: a report about a lack of memory must
// not need any.
template <std::size_t N>
__attribute__((format(printf, 2, 0))) void sendFormatted(XIReporter::EMsgType type,
                                                         const char* format, va_list args) {
  char text[N];
  formatInto(text, format, args);
  XCReporter::SendMsg2Reporter(type, text);
}

}  // namespace

// The library is loaded into hosts that may have used up every key, and may be unloaded again: a
// failure here must not end the host, and nothing may read the key after it is gone.
struct XCReporter::KeyLife {
  KeyLife() noexcept {
    try {
      tdReporter = new TThreadData<XIReporter*>;
    } catch (...) {
      tdReporter = nullptr;
    }
  }
  ~KeyLife() { delete std::exchange(tdReporter, nullptr); }
};

bool XCReporter::mMemoryInLogEnabled = false;
bool XCReporter::mTraceInLogEnabled = false;
bool XCReporter::mBenchInLogEnabled = false;
XIReporter* XCReporter::defaultReporter = nullptr;
TThreadData<XIReporter*>* XCReporter::tdReporter = nullptr;
XCReporter::KeyLife XCReporter::keyLife;

void XCReporter::Error(const char* format, ...) {
  va_list args;
  va_start(args, format);
  sendFormatted<2048>(XIReporter::kMsgError, format, args);
  va_end(args);
}

void XCReporter::Warning(const char* format, ...) {
  va_list args;
  va_start(args, format);
  sendFormatted<2048>(XIReporter::kMsgWarning, format, args);
  va_end(args);
}

void XCReporter::Printf(const char* format, ...) {
  va_list args;
  va_start(args, format);
  sendFormatted<2048>(XIReporter::kMsgMessage, format, args);
  va_end(args);
}

void XCReporter::Message(XIReporter::EMsgType type, const char* format, ...) {
  if (format == nullptr) return;
  va_list args;
  va_start(args, format);
  sendFormatted<4096>(type, format, args);
  va_end(args);
}

// Thread cancellation is caught through a null reference; the undefined-behaviour sanitizer must
// not stop on it.
__attribute__((no_sanitize("null"))) void XCReporter::SendMsg2Reporter(XIReporter::EMsgType type,
                                                                       const char* text) {
  try {
    if (XIReporter* const reporter = currentReporter()) {
      reporter->ReportMsg(type, orEmpty(text));
    } else {
      print(type, orEmpty(text));
    }
  } catch (ForcedUnwind&) {
    throw;  // the thread is being cancelled: stopping that would end the process
  } catch (...) {
    // The message is lost: there is no other reporter to send it to.
  }
}

void XCReporter::TraceInLog(const char* text) {
  if (mTraceInLogEnabled) SendMsg2Reporter(XIReporter::kMsgTrace, text);
}

void XCReporter::BenchInLog(const char* format, ...) {
  if (!mBenchInLogEnabled) return;
  va_list args;
  va_start(args, format);
  sendFormatted<2048>(XIReporter::kMsgBenchmark, format, args);
  va_end(args);
}

void XCReporter::MemoryInLog(const char* format, ...) {
  if (!mMemoryInLogEnabled) return;
  va_list args;
  va_start(args, format);
  sendFormatted<2048>(XIReporter::kMsgMemory, format, args);
  va_end(args);
}

// The three switches report their change even when it switches the message off.
void XCReporter::SetTraceInLog(bool enabled) {
  mTraceInLogEnabled = enabled;
  SendMsg2Reporter(XIReporter::kMsgTrace,
                   enabled ? "Trace mode is enabled" : "Trace mode is disabled");
}

void XCReporter::SetMemoryInLog(bool enabled) {
  mMemoryInLogEnabled = enabled;
  SendMsg2Reporter(XIReporter::kMsgMemory,
                   enabled ? "Memory mode is enabled" : "Memory mode is disabled");
}

void XCReporter::SetBenchInLog(bool enabled) {
  mBenchInLogEnabled = enabled;
  SendMsg2Reporter(XIReporter::kMsgBenchmark,
                   enabled ? "Bench mode is enabled" : "Bench mode is disabled");
}

std::string XCReporter::GetLastSystemErrorEnglish(XIReporter::EMsgType /*type*/,
                                                  SystemErrorType kind, int* code) {
  const int error = kind == kSystemErrno ? errno : 0;
  if (code != nullptr) *code = error;
  if (kind != kSystemErrno) return {};
  return "ERRNO [" + std::to_string(error) + "] :" + std::strerror(error);
}

void XCReporter::StartBenchmark(const char* name, const char* label) {
  XCBenchmarkRecords::sBenchmark& record = XCBenchmarkRecords::make(orEmpty(name));
  record.times.push_back(UXS::get_time());
  if (*orEmpty(label) != '\0') record.labels.emplace_back(label);
}

// A running timing holds its start time. Stopping turns that into a duration in place, so a second
// stop without a start subtracts the duration from the time of day.
void XCReporter::StopBenchmark(const char* name) {
  XCBenchmarkRecords::sBenchmark* const record = XCBenchmarkRecords::find(orEmpty(name));
  if (record == nullptr || record->times.empty()) return;
  record->times.back() = UXS::get_time() - record->times.back();
}

void XCReporter::FlushBenchmark(const char* name, bool erase) {
  const XCBenchmarkRecords::sBenchmark* const found = XCBenchmarkRecords::find(orEmpty(name));
  if (found == nullptr) return;
  // A copy, so that a reporter may itself start, stop or flush benchmarks.
  const XCBenchmarkRecords::sBenchmark record = *found;
  if (erase) XCBenchmarkRecords::erase(orEmpty(name));
  double sum = 0;
  for (const double seconds : record.times) sum += seconds;
  Printf("BENCHMARK %s takes %f seconds in %d calls", orEmpty(name), sum, int(record.times.size()));
  for (std::size_t i = 0; i < record.labels.size(); ++i) {
    Printf("      for %s : %f seconds", record.labels[i].c_str(), record.times[i]);
  }
}

// The key is null when the process had none left, and after the library has gone.
XIReporter* XCReporter::currentReporter() {
  XIReporter* const own = tdReporter != nullptr ? tdReporter->GetValue() : nullptr;
  return own != nullptr ? own : defaultReporter;
}

}  // namespace Norvel
