#include <cstdio>

#include "c/fault_internal.h"

namespace vexa::c {
namespace {

// A fixed size, so that "out of memory" needs none.
thread_local char lastText[2048] = "";

}  // namespace

vexa_status keepFault(vexa_status status, const char* text) {
  std::snprintf(lastText, sizeof(lastText), "%s", text);
  return status;
}

}  // namespace vexa::c

const char* vexa_error(void) { return vexa::c::lastText; }

const char* vexa_version(void) { return VEXA_VERSION; }
