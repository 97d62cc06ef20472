#pragma once

#include "formats/AnimationFile.h"

namespace vexa::tests {

/// A matrix of one number, which shows where it went.
inline formats::AnimationFile::Matrix filled(double value) {
  formats::AnimationFile::Matrix matrix;
  matrix.fill(value);
  return matrix;
}

}  // namespace vexa::tests
