#include "vexa/mesh/mesh_frame_internal.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace UXS::mesh_frame {

namespace {

using Norvel::Vexa::PlainFloat1;

constexpr Forms kPlain{1, faceNormals<PlainFloat1>, drawnEdges<PlainFloat1>};

}  // namespace

Forms formsFor(std::size_t mostLanes) {
#if defined(VEXA_WIDE_FRAMES)
  if (mostLanes >= 16 && __builtin_cpu_supports("avx512f")) {
    return {16, faceNormalsBySixteen, drawnEdgesBySixteen};
  }
  if (mostLanes >= 8 && __builtin_cpu_supports("avx2")) {
    return {8, faceNormalsByEight, drawnEdgesByEight};
  }
#else
  (void)mostLanes;
#endif
  return kPlain;
}

void fillFaceNormals(const std::vector<Mesh::Position>& positions, const FrameTopology& topology,
                     std::vector<Mesh::CornerPositions>& outNormals, const Forms& forms) {
  const std::vector<Mesh::Corners>& offsets = topology.mOffsets;
  const std::size_t count = offsets.size();
  std::size_t done = 0;
  const auto run = [&](const Forms& some, std::size_t end) {
    const std::size_t rest = (end - done) / some.mLanes * some.mLanes;
    if (rest == 0) return;
    some.mFaceNormals(&positions[0].x, &offsets[done].x, rest, &outNormals[done].x.x);
    done += rest;
  };
  // Wide code reads one float past each position and writes one past its last triangle:
  //
  //   triangles   0 ........ t  t+1 ...... u  u+1 ....... last
  //   code        wide       plain  wide   plain  wide    plain
  //
  // t and u use the highest vertex, behind which there may be nothing to read.
  for (const unsigned int t : topology.mAtHighestVertex) {
    run(forms, t);
    run(kPlain, t + 1);
  }
  if (done < count) run(forms, count - 1);
  run(kPlain, count);
}

// In pieces that stay in the nearest cache where the array is too short: making it longer before it
// is known by how much would clear memory for edges that are not drawn.
void fillEdges(const std::vector<Mesh::CornerPositions>& faceNormals,
               const EdgeCandidates& candidates, std::vector<Edge>& ioEdges, const Forms& forms) {
  constexpr std::size_t kPiece = 1024;
  const std::size_t count = candidates.mEdges.size();
  std::array<Edge, kPiece> piece;
  std::size_t drawn = 0;
  for (std::size_t done = 0; done < count; done += kPiece) {
    const std::size_t size = std::min(kPiece, count - done), whole = size - size % forms.mLanes;
    const auto run = [&](const Forms& some, std::size_t first, std::size_t end, Edge* to) {
      return some.mDrawnEdges(&faceNormals[0].x.x, &candidates.mFaces[done + first].mOwn,
                              &candidates.mIsBoundary[(done + first) / 8],
                              &candidates.mEdges[done + first].x, end - first, &to->x);
    };
    const bool hasRoom = drawn + size <= ioEdges.size();
    Edge* const to = hasRoom ? &ioEdges[drawn] : piece.data();
    std::size_t found = run(forms, 0, whole, to);
    if (whole < size) found += run(kPlain, whole, size, to + found);
    if (!hasRoom) {
      ioEdges.resize(drawn);
      ioEdges.insert(ioEdges.end(), to, to + found);
    }
    drawn += found;
  }
  ioEdges.resize(drawn);
}

}  // namespace UXS::mesh_frame
