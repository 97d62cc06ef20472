#pragma once

#include <vector>

#include "refhost/Path.h"

namespace vexa::scene {

/// Points along a path for drawing it, evenly spaced by its length; none for fewer than two points.
std::vector<UxZel::CZelPoint> curveOf(const refhost::Path& path);

}  // namespace vexa::scene
