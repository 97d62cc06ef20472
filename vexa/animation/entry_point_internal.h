#pragma once

namespace Norvel::Vexa {

// Called in a handler of an entry point: prints the exception in flight as a line on the standard
// error stream.
//
// Only the unwinding of a cancelled thread goes on from here; to stop it would end the process.
void reportException(const char* operation);

// Runs the body of an entry point that lets nothing out; its result is the neutral one when an
// exception came.
template <class Result, class Body>
Result guardEntryPoint(const char* operation, const Result& neutral, Body body) {
  try {
    return body();
  } catch (...) {
    reportException(operation);
  }
  return neutral;
}

}  // namespace Norvel::Vexa
