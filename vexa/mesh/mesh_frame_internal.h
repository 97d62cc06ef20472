#pragma once

#include <cstddef>
#include <vector>

#include "vexa/mesh/MeshTopology_internal.h"

// What a commit derives from the positions; wide where the machine allows it.
namespace UXS::mesh_frame {

// The face normals, as rows and, unless outCorners is null, for each corner. outRows has a row per
// triangle and one more, which becomes zero.
void fillFaceNormals(const std::vector<Mesh::Position>& positions, const FrameTopology& topology,
                     FaceNormalRows& outRows, Mesh::CornerPositions* outCorners);

// The edges that are drawn, of all that may be. ioEdges has capacity for all of them.
void fillEdges(const FaceNormalRows& rows, const EdgeCandidates& candidates,
               std::vector<Edge>& ioEdges);

}  // namespace UXS::mesh_frame
