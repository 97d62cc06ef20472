#include <algorithm>

#include "importer/fbx_parts_internal.h"

namespace vexa::importer {

namespace {

std::string fileName(const std::string& path) { return path.substr(path.find_last_of("/\\") + 1); }

// The picture's bytes, when the file holds them.
std::string contentOf(const FbxScene& scene, const FbxObject& texture) {
  const FbxObject* video = scene.firstBelow(texture.mId, "Video");
  const FbxRecord* content = video == nullptr ? nullptr : video->mRecord->find("Content");
  // Text files hold pictures as base64, which is not read here.
  return content == nullptr || !scene.document().mIsBinary ? std::string() : content->text(0);
}

void addTexture(const FbxScene& scene, const FbxObject& texture,
                SourceModel::Material& outMaterial) {
  std::string path;
  for (const char* name : {"RelativeFilename", "FileName"}) {
    const FbxRecord* record = texture.mRecord->find(name);
    if (path.empty() && record != nullptr) path = record->text(0);
  }
  outMaterial.mTextureBytes = contentOf(scene, texture);
  // Programs on Windows write backslashes.
  std::replace(path.begin(), path.end(), '\\', '/');
  outMaterial.mTexture = outMaterial.mTextureBytes.empty() ? path : fileName(path);
}

}  // namespace

void addFbxMaterials(FbxParts& ioParts, SourceModel& ioModel) {
  for (const FbxObject& object : ioParts.mScene.objects()) {
    if (object.mClass != "Material") continue;
    SourceModel::Material material;
    material.mName = object.mName;
    if (const auto color = fbxVector(object, "DiffuseColor")) {
      const double factor = fbxNumber(object, "DiffuseFactor").value_or(1);
      const double parts[3] = {color->x, color->y, color->z};
      for (std::size_t i = 0; i < 3; ++i) {
        material.mColor[i] = std::clamp(factor * parts[i], 0.0, 1.0);
      }
      material.mHasColor = true;
    }
    for (const FbxScene::Link& link : ioParts.mScene.below(object.mId)) {
      // Textures of other properties (normals, gloss) hang on the material as well.
      const bool isColor = link.mProperty == "DiffuseColor" && link.mObject->mClass == "Texture";
      if (isColor && material.mTexture.empty()) {
        addTexture(ioParts.mScene, *link.mObject, material);
      }
    }
    ioParts.mMaterials.emplace(object.mId, std::uint32_t(ioModel.mMaterials.size()));
    ioModel.mMaterials.push_back(std::move(material));
  }
}

}  // namespace vexa::importer
