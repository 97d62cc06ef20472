#pragma once

#include <array>
#include <string>
#include <vector>

namespace vexa::formats {

/// What we keep of one material of an MTL file.
struct MtlMaterial {
  std::string name;
  std::array<double, 3> color = {1, 1, 1};  ///< Kd: red, green and blue from 0 to 1
  std::string texture;                      ///< map_Kd: a file beside the MTL file, or empty
};

/// The materials of the files that an OBJ text names after "mtllib", which are in `folder`. A file
/// that cannot be read is skipped: colours are only decoration.
std::vector<MtlMaterial> readMaterialsOf(const std::string& objText, const std::string& folder);

/// The text of an MTL file, of which readMaterialsOf gives the same materials.
std::string formatMtl(const std::vector<MtlMaterial>& materials);

}  // namespace vexa::formats
