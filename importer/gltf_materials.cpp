#include <algorithm>
#include <cmath>

#include "importer/gltf_numbers_internal.h"
#include "importer/gltf_parts_internal.h"

namespace vexa::importer {

namespace {

// glTF states linear light; screens and .mtl files have it compressed.
double toScreen(double linear) {
  const double v = std::clamp(linear, 0.0, 1.0);
  // The curve of sRGB: a straight line near black, then a power.
  return v <= 0.0031308 ? 12.92 * v : 1.055 * std::pow(v, 1 / 2.4) - 0.055;
}

std::string endingOf(const tinygltf::Image& image) {
  return image.mimeType == "image/jpeg" ? ".jpg" : ".png";
}

void addTexture(const tinygltf::Model& file, int index, SourceModel::Material& outMaterial) {
  const auto& texture = gltfItem(file.textures, index, "texture");
  if (texture.source < 0) return;
  const auto& image = gltfItem(file.images, texture.source, "image");
  // Either the bytes are within the file, or the picture is a file of its own.
  if (!image.image.empty()) {
    outMaterial.mTexture =
        gltfName(image.name, "image", std::size_t(texture.source)) + endingOf(image);
    outMaterial.mTextureBytes.assign(image.image.begin(), image.image.end());
  } else {
    outMaterial.mTexture = image.uri;
  }
}

}  // namespace

void addGltfMaterials(const tinygltf::Model& file, SourceModel& ioModel) {
  for (const tinygltf::Material& material : file.materials) {
    SourceModel::Material result;
    result.mName = material.name;
    // The format multiplies it with the picture; an MTL file does the same with Kd and map_Kd.
    const auto& factor = material.pbrMetallicRoughness.baseColorFactor;
    for (std::size_t i = 0; i < 4 && factor.size() == 4; ++i) {
      result.mColor[i] = i < 3 ? toScreen(factor[i]) : std::clamp(factor[i], 0.0, 1.0);
    }
    // White is the default that the format itself states.
    result.mHasColor = true;
    const int texture = material.pbrMetallicRoughness.baseColorTexture.index;
    if (texture >= 0) addTexture(file, texture, result);
    ioModel.mMaterials.push_back(std::move(result));
  }
}

}  // namespace vexa::importer
