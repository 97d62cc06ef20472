#pragma once

#include "vexa/host/IZelInterpolatedValue.h"

namespace vexa::benchmarks {

/// The calls that any search of the nearest keys must make, from a library of its own: beside the
/// host, the compiler would see through its classes. The sum of the keys' frames.
int sumOfKeyFrames(const UxZel::IZelInterpolatedValue& value);

}  // namespace vexa::benchmarks
