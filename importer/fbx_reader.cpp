#include "importer/fbx_parts_internal.h"
#include "importer/fbx_reader_internal.h"
#include "importer/unique_names_internal.h"

namespace vexa::importer {

namespace {

double settingOf(const FbxScene& scene, const char* name, double otherwise) {
  const FbxRecord* property = fbxProperty(scene.settings(), name);
  return property == nullptr || property->mValues.size() < 5 ? otherwise
                                                             : property->mValues[4].number();
}

// The settings say which of the file's axes lead right, up and to the front.
Matrix axesOf(const FbxScene& scene) {
  const char* const names[] = {"CoordAxis", "UpAxis", "FrontAxis"};
  Matrix stated;
  for (int row = 0; row < 3; ++row) {
    const double axis = settingOf(scene, names[row], -1);
    const double sign = settingOf(scene, (std::string(names[row]) + "Sign").c_str(), 1);
    for (int c = 0; c < 3; ++c) stated(row, c) = axis == c ? (sign < 0 ? -1 : 1) : 0;
  }
  // Two axes may be stated as the same: nothing can be made of that.
  return stated.is_invertible() ? stated : Matrix();
}

}  // namespace

SourceModel readFbx(const std::string& bytes) {
  const FbxDocument document = parseFbx(bytes);
  const FbxScene scene(document);
  FbxParts parts{scene, {}, {}};
  SourceModel model;
  model.mAxes = axesOf(scene);
  // The factor is in centimetres.
  model.mMetresPerUnit = 0.01 * settingOf(scene, "UnitScaleFactor", 1);
  addFbxNodes(parts, model);
  addFbxMaterials(parts, model);
  addFbxMeshes(parts, model);
  addFbxClips(parts, model);
  makeNamesUnique(model.mClips, "clip");
  makeNamesUnique(model.mMaterials, "material");
  return model;
}

}  // namespace vexa::importer
