#pragma once

#include <cstdio>
#include <cxxabi.h>
#include <exception>

namespace Norvel::Vexa {

/// Runs the body of an entry point that lets nothing out: any exception becomes a line on the
/// standard error stream, and the result is the neutral one.
///
/// Only the unwinding of a cancelled thread passes; to stop it would end the process. It comes as a
/// reference to nothing, which is not to be checked.
template <class Result, class Body>
__attribute__((no_sanitize("null"))) Result guardEntryPoint(const char* operation,
                                                            const Result& neutral, Body body) {
  try {
    return body();
  } catch (const abi::__forced_unwind&) {
    throw;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "%s - Caught an exception \"%s\"\n", operation, e.what());
  } catch (...) {
    std::fprintf(stderr, "%s - Caught an exception\n", operation);
  }
  return neutral;
}

}  // namespace Norvel::Vexa
