#include "vexa/mesh/mesh_frame_internal.h"

#include "vexa/math/simd/Float8.h"
#include "vexa/mesh/mesh_frame_lanes_internal.h"

namespace UXS::mesh_frame {

namespace {

using Norvel::Vexa::PlainFloat1;

// The kernels for this machine.
struct Forms {
  std::size_t mLanes;
  decltype(&faceNormals<PlainFloat1>) mFaceNormals;
  decltype(&drawnEdges<PlainFloat1>) mDrawnEdges;
};
constexpr Forms kPlain{1, faceNormals<PlainFloat1>, drawnEdges<PlainFloat1>};

Forms widestForms() {
#if defined(VEXA_AVX2)
  if (__builtin_cpu_supports("avx2")) return {8, faceNormalsByEight, drawnEdgesByEight};
#endif
  return kPlain;
}

}  // namespace

void fillFaceNormals(const std::vector<Mesh::Position>& positions,
                     const std::vector<Mesh::Corners>& triangles,
                     const std::vector<unsigned int>& apart, FaceNormalRows& outRows,
                     Mesh::CornerPositions* outCorners) {
  const Forms wide = widestForms();
  const std::size_t count = triangles.size();
  outRows[count] = {};
  std::size_t done = 0;
  const auto run = [&](const Forms& forms, std::size_t end) {
    const std::size_t rest = (end - done) / forms.mLanes * forms.mLanes;
    if (rest == 0) return;
    forms.mFaceNormals(&positions[0].x, &triangles[done].x, rest, &outRows[done].x,
                       outCorners ? &outCorners[done].x.x : nullptr);
    done += rest;
  };
  // Wide code also writes past its last triangle, which must therefore not be the last of all.
  for (const unsigned int t : apart) {
    run(wide, t);
    run(kPlain, t + 1);
  }
  if (done < count) run(wide, count - 1);
  run(kPlain, count);
}

void fillEdges(const FaceNormalRows& rows, const EdgeCandidates& candidates,
               std::vector<Edge>& ioEdges) {
  const Forms wide = widestForms();
  const std::size_t count = candidates.mEdges.size(), whole = count / wide.mLanes * wide.mLanes;
  ioEdges.resize(count);
  std::size_t drawn = 0, done = 0;
  const auto run = [&](const Forms& forms, std::size_t end) {
    if (done == end) return;
    drawn += forms.mDrawnEdges(&rows[0].x, &candidates.mFaces[done].mOwn,
                               &candidates.mEdges[done].x, end - done, &ioEdges[drawn].x);
    done = end;
  };
  run(wide, whole);
  run(kPlain, count);
  ioEdges.resize(drawn);
}

}  // namespace UXS::mesh_frame
