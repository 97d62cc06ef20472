#pragma once

#include "vexa/host/IZelInterpolatedValue.h"

namespace vexa::benchmarks {

/// The calls that any search of the nearest keys must make; apart from the host, whose classes the
/// compiler would see through here. The sum of the keys' frames.
int sumOfKeyFrames(const UxZel::IZelInterpolatedValue& value);

}  // namespace vexa::benchmarks
