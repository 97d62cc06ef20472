#include "importer/describe_model.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

#include "importer/assimp_reader_internal.h"
#include "importer/file_name_internal.h"
#include "importer/model_check.h"
#include "importer/model_import.h"
#include "importer/model_pose.h"
#include "importer/model_reader.h"
#include "importer/model_textures.h"

namespace vexa::importer {

namespace {

using Json = formats::JsonTree;

std::size_t keysOf(const SourceModel::Clip& clip) {
  std::size_t keys = 0;
  for (const SourceModel::Channel& channel : clip.mChannels) {
    keys += channel.mTranslations.mKeys.size() + channel.mRotations.mKeys.size() +
            channel.mScales.mKeys.size();
    for (const SourceModel::Curve& curve : channel.mCurves) keys += curve.mKeys.size();
  }
  return keys;
}

Json clipsOf(const SourceModel& model) {
  Json clips = Json::list();
  for (const SourceModel::Clip& clip : model.mClips) {
    clips.add(Json::object()
                  .with("name", clip.mName)
                  .with("seconds", clipLength(clip))
                  .with("nodes", clip.mChannels.size())
                  .with("keys", keysOf(clip)));
  }
  return clips;
}

// Bones are nodes that some mesh is bound to; influences are counted per vertex.
void describeSkin(const SourceModel& model, Json& ioFacts) {
  // Several meshes share a skeleton: a bone counts once.
  std::vector<bool> isBone(model.mNodes.size(), false);
  std::size_t influences = 0, most = 0;
  for (const SourceModel::Mesh& mesh : model.mMeshes) {
    std::vector<std::size_t> perVertex(mesh.mPoints.size(), 0);
    for (const SourceModel::Bone& bone : mesh.mBones) {
      if (bone.mNode != SourceModel::kNone) isBone[std::size_t(bone.mNode)] = true;
      influences += bone.mInfluences.size();
      for (const auto& influence : bone.mInfluences) ++perVertex[influence.mVertex];
    }
    for (const std::size_t count : perVertex) most = std::max(most, count);
  }
  ioFacts["bones"] = std::count(isBone.begin(), isBone.end(), true);
  ioFacts["influences"] = influences;
  ioFacts["mostInfluencesPerVertex"] = most;
}

void describeMeshes(const SourceModel& model, Json& ioFacts) {
  std::size_t vertices = 0, triangles = 0;
  for (const SourceModel::Mesh& mesh : model.mMeshes) {
    vertices += mesh.mPoints.size();
    triangles += mesh.mTriangles.size();
  }
  ioFacts["meshes"] = model.mMeshes.size();
  ioFacts["vertices"] = vertices;
  ioFacts["triangles"] = triangles;
  ioFacts["nodes"] = model.mNodes.size();
}

// The axis of the file that becomes the upright one.
std::string upAxisOf(const SourceModel& model) {
  int largest = 0;
  for (int c = 1; c < 3; ++c) {
    if (std::abs(model.mAxes(1, c)) > std::abs(model.mAxes(1, largest))) largest = c;
  }
  return std::string(model.mAxes(1, largest) < 0 ? "-" : "+") + "XYZ"[largest];
}

// Width, depth and height of the box around the first pose, or around the rest mesh of a model that
// cannot be played.
Json sizeOf(const std::vector<Vec3>& points) {
  constexpr double kFar = std::numeric_limits<double>::infinity();
  Vec3 low(kFar, kFar, kFar), high(-kFar, -kFar, -kFar);
  for (const Vec3& p : points) {
    low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
    high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
  }
  if (points.empty()) return {};
  return Json::list(high.x - low.x, high.y - low.y, high.z - low.z);
}

// What an import would say about it.
void describeImport(SourceModel model, Json& ioFacts) {
  try {
    const ImportedModel imported = importModel(std::move(model));
    ioFacts["size"] = sizeOf(imported.mReference.pose(0, 0));
    ioFacts["notes"] = imported.mNotes;
  } catch (const std::runtime_error& e) {
    ioFacts["faults"].add(std::string("it would not be imported: ") + e.what());
  }
}

}  // namespace

bool isModelFile(const std::string& file) {
  const std::string ending = endingOf(file);
  // libassimp reads these endings, too, but here they are files of a scene.
  if (ending == "obj" || ending == "json" || ending == "amo") return false;
  return ending == "gltf" || ending == "glb" || ending == "fbx" || isKnownToAssimp(ending);
}

Json describeModel(const std::string& file) {
  SourceModel model;
  try {
    model = readModel(file);
    // The same steps as an import, so that its notes are the ones an import would give.
    findTextures(file, model);
    checkModel(model);
  } catch (const std::runtime_error& e) {
    throw std::runtime_error(file + ": " + e.what());
  }
  Json facts = Json::object().with("formatVersion", 1).with("kind", "model");
  describeMeshes(model, facts);
  describeSkin(model, facts);
  Json materials = Json::list();
  for (const auto& material : model.mMaterials) materials.add(material.mName);
  facts["materials"] = materials;
  facts["clips"] = clipsOf(model);
  facts["up"] = upAxisOf(model);
  if (model.mMetresPerUnit > 0) facts["metresPerUnit"] = model.mMetresPerUnit;
  facts["notes"] = model.mNotes;
  facts["faults"] = Json::list();
  describeImport(std::move(model), facts);
  return facts;
}

}  // namespace vexa::importer
