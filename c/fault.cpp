#include <cstdio>

#include "c/fault_internal.h"

namespace vexa::c {
namespace {

// A fixed size, so that "out of memory" needs none; a longer text is cut. One per thread, because
// two threads may fail at the same time. A call that succeeds leaves the text of the last failure.
thread_local char lastText[2048] = "";

}  // namespace

vexa_status keepFault(vexa_status status, const char* text) {
  std::snprintf(lastText, sizeof(lastText), "%s", text);
  return status;
}

}  // namespace vexa::c

const char* vexa_error(void) { return vexa::c::lastText; }

const char* vexa_version(void) { return VEXA_VERSION; }
