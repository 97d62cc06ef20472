#include "benchmarks/framecollector_references.h"

#include <Eigen/Dense>

namespace vexa::benchmarks {

void eigenSkin(const float* matrices, const std::uint16_t* nodes, const float* weights,
               const float* points, float* out, int vertices) {
  const auto* const palette = reinterpret_cast<const Eigen::Matrix4f*>(matrices);
  for (int v = 0; v < vertices; ++v) {
    const std::uint16_t* n = nodes + 4 * v;
    const float* w = weights + 4 * v;
    // Eigen vectorises a sum of whole matrices; the product is three columns and the last one.
    const Eigen::Matrix4f m =
        w[0] * palette[n[0]] + w[1] * palette[n[1]] + w[2] * palette[n[2]] + w[3] * palette[n[3]];
    const float* p = points + 3 * v;
    const Eigen::Vector4f moved = m.col(0) * p[0] + m.col(1) * p[1] + m.col(2) * p[2] + m.col(3);
    out[3 * v] = moved[0];
    out[3 * v + 1] = moved[1];
    out[3 * v + 2] = moved[2];
  }
}

}  // namespace vexa::benchmarks
