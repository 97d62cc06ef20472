#pragma once

#include <cstddef>

// What a commit computes per triangle and per edge, written once over the lanes of simd/Float8.h and
// simd/Float16.h, which all give the same bits. No standard headers in here, see
// mesh_frame_avx2_internal.cpp.
namespace UXS::mesh_frame {

// Arrays are plain numbers: positions x, y, z without gaps; three offsets into the positions per
// triangle; rows of four floats x, y, z, 0; pairs of offsets into the rows; edges as pairs of
// vertex indices.

// The face normals of `count` triangles, a multiple of F::kLanes: n = (p2 - p1) x (p0 - p1) over
// its length, zero where n.n is not above 0. 1 / sqrt(1) is 1, so that a squared length of 1 needs
// no branch. As rows, and, unless outCorners is null, three times per triangle.
template <class F>
void faceNormals(const float* positions, const unsigned int* triangles, std::size_t count,
                 float* outRows, float* outCorners) {
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
    const Points normals = Points::join((nx * scale).whereAboveZero(squaredLength),
                                        (ny * scale).whereAboveZero(squaredLength),
                                        (nz * scale).whereAboveZero(squaredLength));
    normals.store(outRows + 4 * t);
    if (outCorners) normals.storeTripled(outCorners + 9 * t);
  }
}

// Of `count` edges, a multiple of F::kLanes, those whose two faces do not lie in one plane:
// 1 - |a.b| >= 1e-5. Gives how many went to outEdges, which has room for all.
template <class F>
std::size_t drawnEdges(const float* rows, const unsigned int* faces, const unsigned int* edges,
                       std::size_t count, unsigned int* outEdges) {
  const F one = F::broadcast(1), limit = F::broadcast(1e-5f);
  std::size_t drawn = 0;
  for (std::size_t i = 0; i < count; i += F::kLanes) {
    const F off = one - F::dotRowsZYX(rows, faces + 2 * i).absolute();
    drawn += F::storeSelected(edges + 2 * i, off.maskOfAtLeast(limit), outEdges + 2 * drawn);
  }
  return drawn;
}

// The AVX2 and the AVX-512 forms.
void faceNormalsByEight(const float* positions, const unsigned int* triangles, std::size_t count,
                        float* outRows, float* outCorners);
std::size_t drawnEdgesByEight(const float* rows, const unsigned int* faces,
                              const unsigned int* edges, std::size_t count, unsigned int* outEdges);
void faceNormalsBySixteen(const float* positions, const unsigned int* triangles, std::size_t count,
                          float* outRows, float* outCorners);
std::size_t drawnEdgesBySixteen(const float* rows, const unsigned int* faces,
                                const unsigned int* edges, std::size_t count,
                                unsigned int* outEdges);

}  // namespace UXS::mesh_frame
