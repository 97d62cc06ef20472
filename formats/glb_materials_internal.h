#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "formats/MovingMesh.h"
#include "formats/NewFile.h"
#include "formats/glb_arrays_internal.h"

namespace vexa::formats {

// The materials of a GLB file with their pictures.
class GlbMaterials {
 public:
  // The file's index of a material of a mesh; a new one is added. Meshes of one file share theirs.
  std::size_t indexOf(const MovingMesh& mesh, unsigned int id);

  // The pictures become the last arrays of the file.
  void addArrays(GlbArrays& ioArrays);
  void writeArrays(NewFile& file, std::size_t binaryAt, const GlbArrays& arrays) const;

  // ,"materials":[...] and what these need.
  void putJson(JsonText& json) const;

 private:
  struct Image {
    std::string mBytes;
    const char* mType;
    std::size_t mArray;
  };
  struct Material {
    std::string mName;
    std::array<float, 3> mColor;
    std::size_t mImage;  // kNoImage for none
  };
  static constexpr std::size_t kNoImage = std::size_t(-1);

  std::size_t imageOf(const std::string& path);

  std::map<std::tuple<std::string, unsigned int, bool>, std::size_t> mIndices;
  std::map<std::string, std::size_t> mImageIndices;
  std::vector<Material> mMaterials;
  std::vector<Image> mImages;
};

}  // namespace vexa::formats
