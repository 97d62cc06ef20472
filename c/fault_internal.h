#pragma once

#include <cxxabi.h>
#include <new>
#include <stdexcept>
#include <string>

#include "c/vexa_c.h"

// How a fault becomes a status and a text.
namespace vexa::c {

struct Fault : std::runtime_error {
  Fault(vexa_status status, const std::string& text) : std::runtime_error(text), mStatus(status) {}
  vexa_status mStatus;
};

[[noreturn]] inline void refuse(const std::string& text) { throw Fault(VEXA_BAD_ARGUMENT, text); }

inline void require(bool holds, const char* text) {
  if (!holds) refuse(text);
}

// Keeps the text for vexa_error and returns the status. Allocates nothing.
vexa_status keepFault(vexa_status status, const char* text);

// Runs the body of a function of the interface and turns an exception into a status, by its type:
//
//   Fault               its own status: the interface found the fault itself
//   bad_alloc           VEXA_NO_MEMORY, and length_error, which a vector throws before it asks
//   runtime_error       VEXA_BAD_INPUT: the library throws it for files and scenes
//   anything else       VEXA_INTERNAL
//
// Only the unwinding of a cancelled thread goes on: stopping it would end the process.
template <class Body>
vexa_status guarded(Body body) {
  try {
    body();
    return VEXA_OK;
  } catch (const abi::__forced_unwind&) {
    throw;
  } catch (const Fault& fault) {
    return keepFault(fault.mStatus, fault.what());
  } catch (const std::bad_alloc&) {
    return keepFault(VEXA_NO_MEMORY, "out of memory");
  } catch (const std::length_error&) {
    return keepFault(VEXA_NO_MEMORY, "an array is too long");
  } catch (const std::runtime_error& error) {
    return keepFault(VEXA_BAD_INPUT, error.what());
  } catch (const std::exception& error) {
    return keepFault(VEXA_INTERNAL, error.what());
  } catch (...) {
    return keepFault(VEXA_INTERNAL, "unknown exception");
  }
}

}  // namespace vexa::c
