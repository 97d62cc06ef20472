#pragma once

#include <cstdarg>

#include "vexa/Export.h"

/// Turns failed checks into exceptions with a text; every exception is a std::runtime_error.
///
/// A parameter named `format` is a printf format; write `%%` for a percent sign.
/// Texts are cut to the buffer they are formatted in: 1,023 characters for the caller's part of a
/// check, 2,047 for the whole. A format that printf refuses is thrown unchanged. All
/// functions are re-entrant, and none allocates before it throws.
namespace Norvel::UxThrow {

/// Throws `message`; null reads as "exception".
[[noreturn]] VEXA_EXPORT void Signal(const char* message);

/// Formats `format` with `args` (1,023 characters), then `frame` with that text as its only
/// argument, and throws the result. Neither may be null.
[[noreturn]] VEXA_EXPORT void Signal(const char* frame, const char* format, va_list args)
    __attribute__((format(printf, 2, 0)));

/// Throws the formatted text.
[[noreturn]] VEXA_EXPORT void SignalFmt(const char* format, ...)
    __attribute__((format(printf, 1, 2)));

/// Throws the message with " (assertion failed)" behind it; null reads as "exception".
[[noreturn]] VEXA_EXPORT void SignalFalse(const char* message);
[[noreturn]] VEXA_EXPORT void SignalFalse(const char* format, va_list args)
    __attribute__((format(printf, 1, 0)));

/// Throws the message with " (pointer is NULL)" behind it; null reads as "exception".
[[noreturn]] VEXA_EXPORT void SignalNULL(const char* message);
[[noreturn]] VEXA_EXPORT void SignalNULL(const char* format, va_list args)
    __attribute__((format(printf, 1, 0)));

/// Throws the message with " (error #CODE)" behind it; null reads as "exception".
[[noreturn]] VEXA_EXPORT void SignalError(int code, const char* message);

/// Throws "$s:$u: failed assertion 'FILE'".
/// Required behaviour: the dollar signs are literal; line and expression do not appear.
[[noreturn]] VEXA_EXPORT void FailedAssertion(const char* expression, const char* file,
                                              unsigned int line);

/// SignalFalse with the formatted text when the condition is false.
VEXA_EXPORT void IfFalse(bool condition, const char* format, ...)
    __attribute__((format(printf, 2, 3)));

/// SignalNULL with the formatted text when the pointer is null.
VEXA_EXPORT void IfNULL(const void* pointer, const char* format, ...)
    __attribute__((format(printf, 2, 3)));

/// The hook for a check of the heap.
/// Required behaviour: does nothing.
VEXA_EXPORT void IfHeapCorrupted(const char* message);

}  // namespace Norvel::UxThrow
