#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "formats/mtl.h"
#include "vexa/math/TVector2D.h"
#include "vexa/math/TVector3D.h"

namespace vexa::formats {

/// A mesh whose points move from frame to frame: what is drawn and exported.
///
/// Points are in world space, scene units, +Z up.
struct MovingMesh {
  using Points = std::vector<Oru::TVector3D<float>>;

  std::string mName;
  std::vector<Oru::TVector3D<unsigned int>> mTriangles;
  std::vector<unsigned int> mMaterials;  ///< one per triangle
  /// Three (u, v) pairs per triangle, or empty.
  std::vector<Oru::TVector3D<Oru::TVector2D<float>>> mUvs;
  std::string mFile;  ///< the OBJ file whose materials the mesh has; empty for none
  /// How the materials look, by their ids; no value where that is not known. Textures are paths.
  std::vector<std::optional<MtlMaterial>> mSurfaces;
  /// Red, green and blue in 0..1 per triangle, or empty: what pictures show.
  std::vector<Oru::TVector3D<float>> mColors;
  std::vector<Points> mFrames;  ///< all of one length
};

}  // namespace vexa::formats
