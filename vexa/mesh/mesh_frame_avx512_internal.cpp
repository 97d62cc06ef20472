// Compiled for AVX-512. What is inline in here must not be shared with other sources, or the linker
// might take this copy for all of them; hence no standard headers beyond those of Float16.h.
#include "vexa/math/simd/Float16.h"
#include "vexa/mesh/mesh_frame_lanes_internal.h"

namespace UXS::mesh_frame {

using Norvel::Vexa::Avx512Float16;

void faceNormalsBySixteen(const float* positions, const unsigned int* triangles, std::size_t count,
                          float* outNormals) {
  faceNormals<Avx512Float16>(positions, triangles, count, outNormals);
}

std::size_t drawnEdgesBySixteen(const float* normals, const unsigned int* faces,
                                const unsigned char* boundary, const unsigned int* edges,
                                std::size_t count, unsigned int* outEdges) {
  return drawnEdges<Avx512Float16>(normals, faces, boundary, edges, count, outEdges);
}

}  // namespace UXS::mesh_frame
