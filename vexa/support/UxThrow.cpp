#include "vexa/support/UxThrow.h"

#include <cstdio>
#include <stdexcept>

#include "vexa/support/format_internal.h"

namespace Norvel::UxThrow {
namespace {

const char* orException(const char* message) { return message != nullptr ? message : "exception"; }

}  // namespace

void Signal(const char* message) { throw std::runtime_error(orException(message)); }

// Formats twice: the message with its arguments, then the frame with the message. A text that is
// longer than the buffers is cut.
void Signal(const char* frame, const char* format, va_list args) {
  char text[1024];
  formatInto(text, format, args);
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"  // the frame is itself a format
  SignalFmt(frame, text);
#pragma GCC diagnostic pop
}

void SignalFmt(const char* format, ...) {
  char text[2048];
  va_list args;
  va_start(args, format);
  formatInto(text, format, args);
  va_end(args);
  throw std::runtime_error(text);
}

void SignalFalse(const char* message) { SignalFmt("%s (assertion failed)", orException(message)); }

void SignalFalse(const char* format, va_list args) {
  Signal("%s (assertion failed)", format, args);
}

void SignalNULL(const char* message) { SignalFmt("%s (pointer is NULL)", orException(message)); }

void SignalNULL(const char* format, va_list args) { Signal("%s (pointer is NULL)", format, args); }

void SignalError(int code, const char* message) {
  SignalFmt("%s (error #%d)", orException(message), code);
}

void FailedAssertion(const char* expression, const char* file, unsigned int line) {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-extra-args"
  // Required behaviour: "$s" and "$u" are no conversions, so "%s" takes the file.
  SignalFmt("$s:$u: failed assertion '%s'", file, line, expression);
#pragma GCC diagnostic pop
}

void IfFalse(bool condition, const char* format, ...) {
  if (condition) return;
  va_list args;
  va_start(args, format);
  [[maybe_unused]] const EndOfArguments end{args};
  SignalFalse(format, args);
}

void IfNULL(const void* pointer, const char* format, ...) {
  if (pointer != nullptr) return;
  va_list args;
  va_start(args, format);
  [[maybe_unused]] const EndOfArguments end{args};
  SignalNULL(format, args);
}

// Required behaviour: does nothing.
void IfHeapCorrupted(const char* /*message*/) {}

}  // namespace Norvel::UxThrow
