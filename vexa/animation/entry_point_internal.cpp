#include "vexa/animation/entry_point_internal.h"

#include <cstdio>
#include <exception>

#include "vexa/support/forced_unwind_internal.h"

namespace Norvel::Vexa {

// Thread cancellation is caught through a null reference; the undefined-behaviour sanitizer must
// not stop on it.
__attribute__((no_sanitize("null"))) void reportException(const char* operation) {
  try {
    throw;
  } catch (const ForcedUnwind&) {
    throw;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "%s - Caught an exception \"%s\"\n", operation, e.what());
  } catch (...) {
    std::fprintf(stderr, "%s - Caught an exception\n", operation);
  }
}

}  // namespace Norvel::Vexa
