#pragma once

#include <gtest/gtest.h>
#include <string>

namespace vexa::tests {

/// TYPED_TEST_SUITE(Suite, Precisions, PrecisionName) runs each case of a suite in both precisions.
using Precisions = testing::Types<float, double>;
struct PrecisionName {
  template <class T>
  static std::string GetName(int) {
    return sizeof(T) == sizeof(float) ? "float" : "double";
  }
};

}  // namespace vexa::tests
