#include "importer/import_files.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <stdexcept>

#include "formats/JsonTree.h"
#include "formats/OutputFolder.h"
#include "formats/mtl.h"
#include "formats/utf8.h"
#include "formats/write_file.h"

namespace vexa::importer {
namespace {

namespace fs = std::filesystem;
using Json = formats::JsonTree;

// The vertex nearest to the middle of the rest mesh, which moves with the body rather than a limb.
std::size_t middleVertex(const formats::ObjModel& mesh) {
  double sum[3] = {0, 0, 0};
  for (const auto& p : mesh.points) {
    sum[0] += double(p.x), sum[1] += double(p.y), sum[2] += double(p.z);
  }
  const auto n = double(mesh.points.size());
  std::size_t nearest = 0;
  double least = std::numeric_limits<double>::infinity();
  for (std::size_t i = 0; i < mesh.points.size(); ++i) {
    const auto& p = mesh.points[i];
    const double x = double(p.x) - sum[0] / n, y = double(p.y) - sum[1] / n,
                 z = double(p.z) - sum[2] / n;
    const double distance = x * x + y * y + z * z;
    if (distance < least) least = distance, nearest = i;
  }
  return nearest;
}

// Scenes count whole frames per time unit.
int wholeRate(const ImportedModel::Take& take) {
  return std::max(1, int(std::lround(take.mFramesPerSecond)));
}

// One instance that repeats the first take; a host frame is a frame of the take.
Json sceneOf(const ImportedModel& model, const std::string& name) {
  Json takes = Json::list();
  for (const auto& take : model.mTakes) {
    takes.add(Json::object()
                  .with("name", take.mName)
                  .with("frames", take.mFrameCount)
                  .with("rate", wholeRate(take)));
  }
  const auto& first = model.mTakes.front();
  const Json keys = Json::list(
      Json::object().with("frame", 0).with("value", 0),
      Json::object().with("frame", first.mFrameCount).with("value", first.mFrameCount - 1));
  return Json::object()
      .with("settings", Json::object().with("timeScale", wholeRate(first)))
      .with("objects", Json::list(Json::object()
                                      .with("name", name)
                                      .with("mesh", name + ".obj")
                                      .with("animation", name + ".amo")
                                      .with("takes", takes)
                                      .with("anchorVertex", middleVertex(model.mMesh))))
      .with("instances",
            Json::list(
                Json::object().with("name", name).with("object", name).with("take", first.mName)))
      .with("values", Json::list(Json::object()
                                     .with("name", name + " frame")
                                     .with("kind", "takeFrame")
                                     .with("instance", name)
                                     .with("cyclic", true)
                                     .with("repeat", 1000000)
                                     .with("keys", keys)));
}

/// Throws for names that are no UTF-8, which JSON cannot hold.
void requireUtf8(const ImportedModel& model, const std::string& stem) {
  const auto isFit = [](const auto& take) { return formats::isUtf8(take.mName); };
  if (formats::isUtf8(stem) && std::all_of(model.mTakes.begin(), model.mTakes.end(), isFit)) return;
  throw std::runtime_error(stem + ": its name, or that of a take, is no UTF-8");
}

std::string asText(const Json& scene) {
  return scene.dump(Json::Layout::kIndented, Json::Characters::kUtf8) + "\n";
}

void requireFaithful(const ImportCheck& check, const ImportedModel& model,
                     const std::string& file) {
  // The library read something else than was meant: nothing is published then.
  if (check.mLargestDifference <= kImportTolerance) return;
  char text[200];
  std::snprintf(text, sizeof(text),
                "the runtime's pose is %.3g of the model's size off at vertex %zu, frame %zu of ",
                check.mLargestDifference, check.mVertex, check.mFrame);
  throw std::runtime_error(file + ": " + text +
                           ("take \"" + model.mTakes[check.mTake].mName + "\""));
}

// The ending that fits the bytes of a picture.
std::string endingFor(const std::string& picture) {
  return picture.compare(0, 3, "\xff\xd8\xff") == 0 ? ".jpg" : ".png";
}

// Writes the import's files one after the other and remembers their names.
class ImportWriter {
 public:
  ImportWriter(const ImportedModel& model, const fs::path& target)
      : mModel(model),
        mName(target.filename().string()),
        mTarget(target.parent_path()),
        mFolder(mTarget.string()) {}

  // Errors name a file where it was to be.
  ImportFiles write(const std::string& stem, const ImportProgress& progress) try {
    requireUtf8(mModel, mName);
    const std::string animation = add(mName + ".amo"), mesh = add(mName + ".obj");
    formats::writeAnimationFile(mModel.mAnimation, animation);
    formats::writeObj(mesh, mModel.mMesh, writeMaterials());
    formats::writeFile(add(mName + ".json"), asText(sceneOf(mModel, mName)));
    ImportFiles result;
    // What was written is read back and compared before anything reaches the target folder.
    result.mCheck = verifyImport(mModel, animation, formats::readObj(mesh).points, progress);
    requireFaithful(result.mCheck, mModel, stem);
    mFolder.publish();
    for (const std::string& each : mNames) result.mFiles.push_back(mFolder.finalPath(each));
    return result;
  } catch (const std::runtime_error& error) {
    throw std::runtime_error(mFolder.inFinalPaths(error.what()));
  }

 private:
  std::string add(const std::string& name) {
    mNames.push_back(name);
    return mFolder.pathFor(name);
  }

  // The name of the file of materials; empty when the model states neither colour nor picture.
  std::string writeMaterials() {
    const auto& all = mModel.mReference.mSource.mMaterials;
    const bool hasColors = std::any_of(all.begin(), all.end(), [](const auto& material) {
      return material.mHasColor || !material.mTexture.empty();
    });
    if (!hasColors) return "";
    std::vector<formats::MtlMaterial> materials;
    for (std::size_t i = 0; i < all.size(); ++i) {
      formats::MtlMaterial material;
      // As the OBJ file calls it, or the two would not find each other.
      material.name = formats::nameInObj(mModel.mMesh, unsigned(i));
      for (std::size_t c = 0; c < 3; ++c) material.color[c] = all[i].mColor[c];
      material.texture = textureFor(all[i], i);
      materials.push_back(material);
    }
    formats::writeFile(add(mName + ".mtl"), formats::formatMtl(materials));
    return mName + ".mtl";
  }

  // As seen from the target folder.
  std::string textureFor(const SourceModel::Material& material, std::size_t index) {
    if (!material.mTextureBytes.empty()) {
      std::string name =
          mName + "_" + std::to_string(index + 1) + endingFor(material.mTextureBytes);
      formats::writeFile(add(name), material.mTextureBytes);
      return name;
    }
    if (material.mTexture.empty()) return "";
    // Relative, so that the folder can be moved together with the model's.
    return fs::path(material.mTexture)
        .lexically_relative(mTarget.empty() ? fs::current_path() : fs::absolute(mTarget))
        .string();
  }

  const ImportedModel& mModel;
  const std::string mName;
  const fs::path mTarget;
  formats::OutputFolder mFolder;
  std::vector<std::string> mNames;
};

}  // namespace

ImportFiles writeImport(const ImportedModel& model, const std::string& stem,
                        const ImportProgress& progress) {
  const fs::path target(stem);
  if (target.filename().empty()) throw std::runtime_error(stem + ": names no file");
  return ImportWriter(model, target).write(stem, progress);
}

}  // namespace vexa::importer
