#include "importer/import_files.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "formats/OutputFolder.h"
#include "formats/write_file.h"

namespace vexa::importer {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

/// The vertex nearest to the middle of the rest mesh, which moves with the body rather than a limb.
std::size_t middleVertex(const formats::ObjModel& mesh) {
  double sum[3] = {0, 0, 0};
  for (const auto& p : mesh.points) {
    sum[0] += double(p.x), sum[1] += double(p.y), sum[2] += double(p.z);
  }
  const double n = double(mesh.points.size());
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

/// Scenes count whole frames per time unit.
int wholeRate(const ImportedModel::Take& take) {
  return std::max(1, int(std::lround(take.mFramesPerSecond)));
}

/// One instance that repeats the first take; a host frame is a frame of the take.
Json sceneOf(const ImportedModel& model, const std::string& name) {
  Json takes = Json::array();
  for (const auto& take : model.mTakes) {
    takes.push_back(
        {{"name", take.mName}, {"frames", take.mFrameCount}, {"rate", wholeRate(take)}});
  }
  const auto& first = model.mTakes.front();
  return {{"settings", {{"timeScale", wholeRate(first)}}},
          {"objects",
           {{{"name", name},
             {"mesh", name + ".obj"},
             {"animation", name + ".amo"},
             {"takes", takes},
             {"anchorVertex", middleVertex(model.mMesh)}}}},
          {"instances", {{{"name", name}, {"object", name}, {"take", first.mName}}}},
          {"values",
           {{{"name", name + " frame"},
             {"kind", "takeFrame"},
             {"instance", name},
             {"cyclic", true},
             {"repeat", 1000000},
             {"keys",
              {{{"frame", 0}, {"value", 0}},
               {{"frame", first.mFrameCount}, {"value", first.mFrameCount - 1}}}}}}}};
}

/// Throws for names that are no UTF-8, which JSON cannot hold.
std::string asText(const Json& scene, const std::string& stem) {
  try {
    return scene.dump(2) + "\n";
  } catch (const Json::type_error&) {
    throw std::runtime_error(stem + ": its name, or that of a take, is no UTF-8");
  }
}

void requireFaithful(const ImportCheck& check, const ImportedModel& model,
                     const std::string& file) {
  if (check.mLargestDifference <= kImportTolerance) return;
  char text[200];
  std::snprintf(text, sizeof(text),
                "the runtime's pose is %.3g of the model's size off at vertex %zu, frame %zu of ",
                check.mLargestDifference, check.mVertex, check.mFrame);
  throw std::runtime_error(file + ": " + text +
                           ("take \"" + model.mTakes[check.mTake].mName + "\""));
}

}  // namespace

ImportFiles writeImport(const ImportedModel& model, const std::string& stem) {
  const fs::path target(stem);
  const std::string name = target.filename().string();
  if (name.empty()) throw std::runtime_error(stem + ": names no file");
  const std::string names[] = {name + ".amo", name + ".obj", name + ".json"};
  formats::OutputFolder folder(target.parent_path().string());
  const auto temporary = [&](int i) { return folder.pathFor(names[i]); };

  formats::writeAnimationFile(model.mAnimation, temporary(0));
  formats::writeObj(temporary(1), model.mMesh);
  formats::writeFile(temporary(2), asText(sceneOf(model, name), stem));
  ImportFiles result;
  result.mCheck = verifyImport(model, temporary(0), formats::readObj(temporary(1)).points);
  requireFaithful(result.mCheck, model, stem);

  folder.publish();
  for (const std::string& each : names) result.mFiles.push_back(folder.finalPath(each));
  return result;
}

}  // namespace vexa::importer
