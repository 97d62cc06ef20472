#pragma once

#include <cstddef>
#include <vector>

#include "vexa/math/simd/Float8.h"
#include "vexa/mesh/mesh_frame_lanes_internal.h"
#include "vexa/mesh/mesh_topology_internal.h"

// What a commit derives from the positions; wide where the machine allows it.
namespace UXS::mesh_frame {

// The kernels of mesh_frame_lanes_internal.h for one kind of machine.
struct Forms {
  std::size_t mLanes;
  decltype(&faceNormals<Norvel::Vexa::PlainFloat1>) mFaceNormals;
  decltype(&drawnEdges<Norvel::Vexa::PlainFloat1>) mDrawnEdges;
};

// The widest that this machine can run, of at most so many lanes.
Forms formsFor(std::size_t mostLanes);

// The face normal of each triangle, for all of its corners. outNormals has an entry per triangle.
void fillFaceNormals(const std::vector<Mesh::Position>& positions, const FrameTopology& topology,
                     std::vector<Mesh::CornerPositions>& outNormals, const Forms& forms);

// The edges that are drawn, of all that may be. ioEdges has capacity for all of them.
void fillEdges(const std::vector<Mesh::CornerPositions>& faceNormals,
               const EdgeCandidates& candidates, std::vector<Edge>& ioEdges, const Forms& forms);

}  // namespace UXS::mesh_frame
