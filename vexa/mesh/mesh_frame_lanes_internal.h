#pragma once

#include <cstddef>

// What a commit computes per triangle and per edge, written once over the lanes of simd/Float8.h
// and simd/Float16.h, which all give the same bits. No standard headers in here, see
// mesh_frame_avx2_internal.cpp.
namespace UXS::mesh_frame {

// Arrays are plain numbers: positions x, y, z without gaps; three offsets into the positions per
// triangle; nine floats of corner normals per triangle; pairs of offsets into these; edges as pairs
// of vertex indices; one bit for each edge.

// The face normals of `count` triangles, a multiple of F::kLanes: n = (p2 - p1) x (p0 - p1) over
// its length, zero where n.n is not above 0. 1 / sqrt(1) is 1, so that a squared length of 1 needs
// no branch. All three corners get it.
template <class F>
void faceNormals(const float* positions, const unsigned int* triangles, std::size_t count,
                 float* outNormals) {
  using Points = typename F::Points;
  const F one = F::broadcast(1);
  for (std::size_t t = 0; t < count; t += F::kLanes) {
    const unsigned int* const offsets = triangles + 3 * t;
    const Points p1 = Points::gather(positions, offsets + 1);
    F ax, ay, az, bx, by, bz;
    (Points::gather(positions, offsets + 2) - p1).split(ax, ay, az);
    (Points::gather(positions, offsets) - p1).split(bx, by, bz);
    const F nx = ay * bz - az * by, ny = az * bx - ax * bz, nz = ax * by - ay * bx;
    const F squaredLength = nx * nx + ny * ny + nz * nz;  // order: exact floats
    const F scale = one / squaredLength.squareRoot();
    Points::join((nx * scale).whereAboveZero(squaredLength),
                 (ny * scale).whereAboveZero(squaredLength),
                 (nz * scale).whereAboveZero(squaredLength))
        .storeTripled(outNormals + 9 * t);
  }
}

// The bits of the lanes from i on; i is a multiple of F::kLanes.
template <class F>
unsigned int bitsAt(const unsigned char* bits, std::size_t i) {
  if (F::kLanes == 1) return bits[i / 8] >> (i % 8) & 1U;
  if (F::kLanes == 8) return bits[i / 8];
  return bits[i / 8] | unsigned(bits[i / 8 + 1]) << 8;
}

// Of `count` edges, a multiple of F::kLanes, the boundary edges and those whose two faces do not
// lie in one plane: 1 - |a.b| >= 1e-5. Gives how many went to outEdges, which has room for all.
template <class F>
std::size_t drawnEdges(const float* normals, const unsigned int* faces,
                       const unsigned char* boundary, const unsigned int* edges, std::size_t count,
                       unsigned int* outEdges) {
  const F one = F::broadcast(1), limit = F::broadcast(1e-5f);
  std::size_t drawn = 0;
  for (std::size_t i = 0; i < count; i += F::kLanes) {
    const F off = one - F::dotRowsZYX(normals, faces + 2 * i).absolute();
    const unsigned int isDrawn = off.maskOfAtLeast(limit) | bitsAt<F>(boundary, i);
    drawn += F::storeSelected(edges + 2 * i, isDrawn, outEdges + 2 * drawn);
  }
  return drawn;
}

// The AVX2 and the AVX-512 forms.
void faceNormalsByEight(const float* positions, const unsigned int* triangles, std::size_t count,
                        float* outNormals);
std::size_t drawnEdgesByEight(const float* normals, const unsigned int* faces,
                              const unsigned char* boundary, const unsigned int* edges,
                              std::size_t count, unsigned int* outEdges);
void faceNormalsBySixteen(const float* positions, const unsigned int* triangles, std::size_t count,
                          float* outNormals);
std::size_t drawnEdgesBySixteen(const float* normals, const unsigned int* faces,
                                const unsigned char* boundary, const unsigned int* edges,
                                std::size_t count, unsigned int* outEdges);

}  // namespace UXS::mesh_frame
