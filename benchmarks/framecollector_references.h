#pragma once

#include <cstdint>

namespace vexa::benchmarks {

/// What deformation is measured against, called E in the table: a plain Eigen loop over vertices,
/// each the weighted sum of four matrices, times x, y, z, plus the last column.
///
/// Matrices are 16 floats column by column, aligned to 16 bytes; nodes and weights are four per
/// vertex, points three.
void eigenSkin(const float* matrices, const std::uint16_t* nodes, const float* weights,
               const float* points, float* out, int vertices);

}  // namespace vexa::benchmarks
