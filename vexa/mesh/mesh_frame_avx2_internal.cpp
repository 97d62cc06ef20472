// Compiled for AVX2. What is inline in here must not be shared with other sources, or the linker
// might take this copy for all of them; hence no standard headers beyond those of Float8.h.
#include "vexa/math/simd/Float8.h"
#include "vexa/mesh/mesh_frame_lanes_internal.h"

namespace UXS::mesh_frame {

using Norvel::Vexa::AvxFloat8;

void faceNormalsByEight(const float* positions, const unsigned int* triangles, std::size_t count,
                        float* outRows, float* outCorners) {
  faceNormals<AvxFloat8>(positions, triangles, count, outRows, outCorners);
}

std::size_t drawnEdgesByEight(const float* rows, const unsigned int* faces,
                              const unsigned int* edges, std::size_t count,
                              unsigned int* outEdges) {
  return drawnEdges<AvxFloat8>(rows, faces, edges, count, outEdges);
}

}  // namespace UXS::mesh_frame
