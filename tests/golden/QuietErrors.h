#pragma once

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace vexa::tests {

/// While it lives, the standard error stream goes nowhere: entry points print a line for each
/// fault.
class QuietErrors {
 public:
  QuietErrors() : mKept(dup(2)) {
    std::fflush(stderr);
    const int nowhere = open("/dev/null", O_WRONLY);
    if (nowhere >= 0) dup2(nowhere, 2);
    if (nowhere >= 0) close(nowhere);
  }
  ~QuietErrors() {
    std::fflush(stderr);
    if (mKept >= 0) dup2(mKept, 2);
    if (mKept >= 0) close(mKept);
  }
  QuietErrors(const QuietErrors&) = delete;
  QuietErrors& operator=(const QuietErrors&) = delete;

 private:
  int mKept;
};

}  // namespace vexa::tests
