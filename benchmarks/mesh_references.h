#pragma once

#include <cstddef>

/// What the mesh is measured against: meshoptimizer on plain arrays.
namespace vexa::benchmarks {

/// Six indices out for each triangle: its corners and the vertices across its edges.
void meshoptAdjacency(const unsigned int* indices, std::size_t indexCount, const float* positions,
                      std::size_t vertexCount, unsigned int* out);
/// For each of the vertices the number of the first with the same bytes.
void meshoptRemap(const float* positions, std::size_t vertexCount, unsigned int* out);

}  // namespace vexa::benchmarks
