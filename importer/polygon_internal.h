#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "importer/SourceModel.h"

namespace vexa::importer {

/// Cuts a polygon into triangles of its corners' numbers, all turned as it is. A convex one becomes
/// a fan around its first corner; from any other, ears are cut off.
std::vector<std::array<std::size_t, 3>> trianglesOf(const std::vector<Vec3>& corners);

}  // namespace vexa::importer
