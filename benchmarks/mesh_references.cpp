#include "benchmarks/mesh_references.h"

#include <meshoptimizer.h>

namespace vexa::benchmarks {

namespace {
constexpr std::size_t kPositionBytes = 3 * sizeof(float);
}

void meshoptAdjacency(const unsigned int* indices, std::size_t indexCount, const float* positions,
                      std::size_t vertexCount, unsigned int* out) {
  meshopt_generateAdjacencyIndexBuffer(out, indices, indexCount, positions, vertexCount,
                                       kPositionBytes);
}

void meshoptRemap(const float* positions, std::size_t vertexCount, unsigned int* out) {
  meshopt_generateVertexRemap(out, nullptr, vertexCount, positions, vertexCount, kPositionBytes);
}

}  // namespace vexa::benchmarks
