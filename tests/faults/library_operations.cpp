// Runs one operation of the library again and again in one process, with one fault each time. For
// scripts/faults.
//
// usage: library_operations                          prints the names of the operations
//        library_operations NAME STEP CALL:ERROR...  tries every STEP-th fault; an ERROR is an
//                                                    errno, 0 for a short count or no memory
// Prints "tried CALL NUMBER" per call, "bad CALL NUMBER ERROR ONWARDS: what" per finding.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <map>

#include "tests/faults/fault_shim.h"
#include "tests/faults/operations.h"
#include "vexa/support/XStPushReporter.h"

namespace {

using vexa::faults::Operation;

struct Fault {
  std::string mCall;
  long mNumber = -1;
  int mError = 0;
  bool mOnwards = false;
};

struct SilentReporter : Norvel::XIReporter {
  void ReportMsg(EMsgType /*type*/, const char* /*text*/) override {}
};

struct Outcome {
  long mCalls = 0;   // of that name in the attempt
  long mBlocks = 0;  // kept
  std::ptrdiff_t mDescriptors = 0;
  std::string mBad;  // what is not as promised
};

std::ptrdiff_t openDescriptors() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

Outcome run(const Operation& operation, const Fault& fault) {
  Outcome outcome;
  const std::ptrdiff_t descriptors = openDescriptors();
  const long blocks = blocksInUse();
  try {
    operation.mRun([&](const std::function<void()>& call) {
      bool isDone = true;
      setFault(fault.mCall.c_str(), fault.mNumber, fault.mError, fault.mOnwards);
      try {
        call();
      } catch (const std::exception&) {
        isDone = false;
      }
      outcome.mCalls = endFault();
      return isDone;
    });
  } catch (const std::exception& error) {
    outcome.mBad = error.what();
  }
  outcome.mBlocks = blocksInUse() - blocks - (outcome.mBad.size() > 15 ? 1 : 0);
  outcome.mDescriptors = openDescriptors() - descriptors;
  return outcome;
}

// What an undisturbed run keeps is required: the records of registered objects.
void tryFault(const Operation& operation, const Fault& fault, long kept) {
  if (std::getenv("VEXA_FAULT_TRACE") != nullptr) {
    std::fprintf(stderr, "%s %ld %d %d\n", fault.mCall.c_str(), fault.mNumber, fault.mError,
                 int(fault.mOnwards));
  }
  Outcome outcome = run(operation, fault);
  if (outcome.mBad.empty() && outcome.mBlocks > kept) outcome.mBad = "memory is lost";
  if (outcome.mBad.empty() && outcome.mDescriptors != 0) outcome.mBad = "a descriptor stays open";
  if (outcome.mBad.empty()) return;
  std::printf("bad %s %ld %d %d: %s\n", fault.mCall.c_str(), fault.mNumber, fault.mError,
              int(fault.mOnwards), outcome.mBad.c_str());
}

int tryAll(const Operation& operation, int step, char** calls) {
  run(operation, {"none"});  // statics
  const Outcome normal = run(operation, {"none"});
  if (!normal.mBad.empty()) return std::fprintf(stderr, "%s\n", normal.mBad.c_str()), 1;
  std::map<std::string, int> tried;
  int index = 0;
  for (; *calls != nullptr; ++calls) {
    const std::string call = *calls;
    const std::size_t colon = call.find(':');
    Fault fault{call.substr(0, colon), -1, std::atoi(call.c_str() + colon + 1)};
    const long count = run(operation, fault).mCalls;
    for (fault.mNumber = 0; fault.mNumber < count; ++fault.mNumber) {
      for (const bool onwards : {false, true}) {
        fault.mOnwards = onwards;
        if (onwards && fault.mError == EINTR) continue;  // it would be repeated for ever
        if (index++ % step != 0) continue;
        tryFault(operation, fault, normal.mBlocks);
        ++tried[fault.mCall];
      }
    }
  }
  for (const auto& [call, number] : tried) std::printf("tried %s %d\n", call.c_str(), number);
  return 0;
}

}  // namespace

int main(int count, char** arguments) {
  using namespace vexa::faults;
  SilentReporter silent;
  const Norvel::XStPushReporter scope(&silent, true);
  std::setvbuf(stdout, nullptr, _IOLBF, 0);
  for (const auto& list : {managerOperations(), meshOperations(), fileOperations()}) {
    for (const Operation& operation : list) {
      if (count < 2) std::puts(operation.mName);
      if (count < 4 || std::strcmp(arguments[1], operation.mName) != 0) continue;
      return tryAll(operation, std::atoi(arguments[2]), arguments + 3);
    }
  }
  return count < 2 ? 0 : 2;
}
