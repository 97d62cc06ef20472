#include <cstdio>
#include <cxxabi.h>
#include <exception>

#include "vexa/animation/entry_point_internal.h"

namespace Norvel::Vexa {

// The unwinding comes as a reference to nothing, which is not to be checked.
__attribute__((no_sanitize("null"))) void reportException(const char* operation) {
  try {
    throw;
  } catch (const abi::__forced_unwind&) {
    throw;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "%s - Caught an exception \"%s\"\n", operation, e.what());
  } catch (...) {
    std::fprintf(stderr, "%s - Caught an exception\n", operation);
  }
}

}  // namespace Norvel::Vexa
