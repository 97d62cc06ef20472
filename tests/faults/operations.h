#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace vexa::faults {

/// Makes a call that may fail; whether it came back without an exception.
using Attempt = std::function<bool(const std::function<void()>& call)>;

/// One operation of the library: prepares, makes one attempt, and checks what is promised for
/// success and for failure. All it makes is gone when it returns.
struct Operation {
  const char* mName;
  void (*mRun)(const Attempt& attempt);
};

std::vector<Operation> managerOperations();
std::vector<Operation> meshOperations();
std::vector<Operation> fileOperations();

inline void require(bool holds, const char* what) {
  if (!holds) throw std::logic_error(what);
}

}  // namespace vexa::faults
