#pragma once

#include <cstddef>

// What a commit computes per triangle and per edge, written once over the lanes of simd/Float8.h:
// PlainFloat1 and AvxFloat8 give the same bits. No standard headers in here, see
// mesh_frame_avx2_internal.cpp.
namespace UXS::mesh_frame {

// Arrays as plain numbers: positions x, y, z without gaps; triangles as three indices; rows of four
// floats x, y, z, 0; faces and edges as pairs of indices.

// The face normals of `count` triangles, a multiple of F::kLanes: n = (p2 - p1) x (p0 - p1) over
// its length, zero where n.n is not above 0. 1 / sqrt(1) is 1, so that a squared length of 1 needs
// no branch. As rows, and, unless outCorners is null, three times per triangle.
template <class F>
void faceNormals(const float* positions, const unsigned int* triangles, std::size_t count,
                 float* outRows, float* outCorners) {
  const F one = F::broadcast(1);
  for (std::size_t t = 0; t < count; t += F::kLanes) {
    const unsigned int* const corners = triangles + 3 * t;
    F x0, y0, z0, x1, y1, z1, x2, y2, z2;
    F::gatherPoints(positions, corners, x0, y0, z0);
    F::gatherPoints(positions, corners + 1, x1, y1, z1);
    F::gatherPoints(positions, corners + 2, x2, y2, z2);
    const F ax = x2 - x1, ay = y2 - y1, az = z2 - z1;
    const F bx = x0 - x1, by = y0 - y1, bz = z0 - z1;
    const F nx = ay * bz - az * by, ny = az * bx - ax * bz, nz = ax * by - ay * bx;
    const F squaredLength = nx * nx + ny * ny + nz * nz;  // order: exact floats
    const F scale = one / squaredLength.squareRoot();
    const auto normals = F::points((nx * scale).whereAboveZero(squaredLength),
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

// The AVX2 forms.
void faceNormalsByEight(const float* positions, const unsigned int* triangles, std::size_t count,
                        float* outRows, float* outCorners);
std::size_t drawnEdgesByEight(const float* rows, const unsigned int* faces,
                              const unsigned int* edges, std::size_t count, unsigned int* outEdges);

}  // namespace UXS::mesh_frame
