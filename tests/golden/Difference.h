#pragma once

#include <string>

namespace vexa::tests {

/// How far apart the results of two mathematics libraries may be.
struct Bound {
  /// In units in the last place of a number, or of mSize for numbers below it: where terms of that
  /// size cancel, a unit of theirs is many units of what is left.
  double mUnits = 1, mSize = 0;
  /// So many numbers may be off by more: where the last bit decides between two results.
  int mMostBeyond = 0;
};

/// How far apart two cases are, each as the recorder wrote it.
struct Difference {
  int mNumbers = 0, mDiffering = 0, mBeyond = 0;
  /// Of those within the bound.
  double mMostUnits = 0;
};

/// A text, an integer or a number of values that differs is beyond every bound.
Difference differenceOf(const std::string& a, const std::string& b, const Bound& bound);

}  // namespace vexa::tests
