#pragma once

#include <cstddef>
#include <vector>

#include "vexa/mesh/MeshTopology_internal.h"

// What a commit derives from the positions; wide where the machine allows it.
namespace UXS::mesh_frame {

// The face normal of each triangle, for all of its corners. outNormals has an entry per triangle.
void fillFaceNormals(const std::vector<Mesh::Position>& positions, const FrameTopology& topology,
                     std::vector<Mesh::CornerPositions>& outNormals);

// The edges that are drawn, of all that may be. ioEdges has capacity for all of them.
void fillEdges(const std::vector<Mesh::CornerPositions>& faceNormals,
               const EdgeCandidates& candidates, std::vector<Edge>& ioEdges);

}  // namespace UXS::mesh_frame
