#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "formats/MovingMesh.h"
#include "formats/NewFile.h"
#include "formats/glb_arrays_internal.h"
#include "formats/glb_materials_internal.h"

namespace vexa::formats {

// A mesh as glTF has it: a vertex is a point with one texture coordinate.
struct GlbShape {
  std::size_t mMesh = 0;                    // which of the meshes
  std::vector<std::uint32_t> mPoints;       // the point of each vertex
  std::vector<Oru::TVector2D<float>> mUvs;  // one per vertex, or empty
  std::map<unsigned int, std::vector<std::uint32_t>> mIndicesByMaterial;
  std::map<unsigned int, std::size_t> mMaterials;  // of the file, by the ids of the mesh
  MovingMesh::Points mRest;
  std::size_t mFirstArray = 0;  // positions, uvs if any, then indices per material
};

using GlbBounds = std::array<float, 6>;  // lows, then highs

// The first frame is the rest.
GlbShape shapeOf(const MovingMesh& mesh);

// The points of the vertices, from +Z up to +Y up: a quarter turn about x.
void turnInto(const GlbShape& shape, const MovingMesh::Points& points,
              MovingMesh::Points& outPositions);
GlbBounds boundsOf(const MovingMesh::Points& points);

void addArrays(GlbArrays& ioArrays, GlbShape& ioShape);
void writeArrays(NewFile& file, std::size_t binaryAt, const GlbArrays& arrays,
                 const GlbShape& shape);

// The mesh as an element of "meshes"; `putMore` adds to each primitive's attributes, `putTargets`
// to the primitive.
void putMesh(JsonText& json, const GlbShape& shape, const std::string& name,
             const PutJson& putMoreAttributes, const PutJson& putTargets);

// Throws std::runtime_error that names the first point that is not finite.
void checkPoints(const std::string& name, const MovingMesh::Points& points, const std::string& mesh,
                 std::size_t frame);

}  // namespace vexa::formats
