#pragma once

#include <gtest/gtest.h>
#include <string>

namespace vexa::tests {

/// What a call writes on the standard error stream.
template <class Call>
std::string stderrOf(Call call) {
  testing::internal::CaptureStderr();
  call();
  return testing::internal::GetCapturedStderr();
}

}  // namespace vexa::tests
