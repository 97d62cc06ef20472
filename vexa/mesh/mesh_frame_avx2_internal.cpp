// Compiled for AVX2. What is inline in here must not be shared with other sources, or the linker
// might take this copy for all of them; hence no standard headers beyond those of Float8.h.
#include "vexa/math/simd/Float8.h"
#include "vexa/mesh/mesh_frame_lanes_internal.h"

namespace UXS::mesh_frame {

using Norvel::Vexa::AvxFloat8;

void faceNormalsByEight(const float* positions, const unsigned int* triangles, std::size_t count,
                        float* outNormals) {
  faceNormals<AvxFloat8>(positions, triangles, count, outNormals);
}

std::size_t drawnEdgesByEight(const float* normals, const unsigned int* faces,
                              const unsigned char* boundary, const unsigned int* edges,
                              std::size_t count, unsigned int* outEdges) {
  return drawnEdges<AvxFloat8>(normals, faces, boundary, edges, count, outEdges);
}

}  // namespace UXS::mesh_frame
