#include "scene/page.h"

#include <algorithm>
#include <filesystem>
#include <limits>
#include <stdexcept>

#include "formats/JsonTree.h"
#include "formats/base64.h"
#include "formats/mesh_surfaces.h"
#include "formats/read_file.h"
#include "scene/recorded_results.h"
#include "scene/value_parts.h"

namespace vexa::scene {
namespace {

using Path = std::filesystem::path;
using Json = formats::JsonTree;

// Numbers that a page keeps for the comparison; 100,000 are about two megabytes of text.
constexpr std::size_t kMostNumbers = 100'000;
// Steps over the frames at which the extent of a scene is taken.
constexpr int kExtentSteps = 8;

// A picture as an address of its own, because a page that was opened from a disk may not read other
// files. Empty when a browser would not show it.
std::string dataAddress(const Path& file) {
  const std::string ending = file.extension().string();
  const char* type = nullptr;
  if (ending == ".png" || ending == ".PNG") type = "image/png";
  if (ending == ".jpg" || ending == ".JPG" || ending == ".jpeg") type = "image/jpeg";
  std::error_code ignored;
  if (type == nullptr || !std::filesystem::is_regular_file(file, ignored)) return "";
  return "data:" + std::string(type) + ";base64," +
         formats::base64Of(formats::readFile(file.string()));
}

/// The materials of a mesh in the order of their ids; none where no material file names a colour.
Json materialsOf(const std::string& objText, const Path& objFile) {
  const Path folder = objFile.parent_path();
  Json list = Json::list();
  for (const auto& material : formats::meshMaterials(objText, objFile.string())) {
    if (!material) {
      list.add({});
      continue;
    }
    const std::string texture =
        material->texture.empty() ? "" : dataAddress(folder / material->texture);
    const auto& c = material->color;
    list.add(Json::object().with("color", Json::list(c[0], c[1], c[2])).with("texture", texture));
  }
  return list;
}

std::size_t numbersPerFrame(const refhost::Scene& scene) {
  // The sixteen numbers are the matrix of a placement.
  std::size_t count = 16 * scene.mInstances.mElements.size();
  for (const refhost::Property& value : scene.mProperties) count += partNames(value).size();
  return count;
}

Json resultsOf(ScenePlayer& player, int first, int last) {
  const std::size_t frames = std::size_t(last - first) + 1;
  const std::size_t numbers = frames * numbersPerFrame(player.scene());
  const auto step = int(numbers / kMostNumbers + 1);
  ResultRecorder recorder(player);
  // The last frame is always compared, whatever the step.
  for (int frame = first; frame <= last - step; frame += step) recorder.add(frame);
  recorder.add(last);
  return recorder.results();
}

// Two opposite corners of the box around all meshes; none without any.
Json extentOf(ScenePlayer& player, int first, int last) {
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  Oru::TVector3D<float> low(kInfinity, kInfinity, kInfinity), high = -low;
  std::vector<formats::MovingMesh::Points> poses;
  for (int i = 0; i <= kExtentSteps; ++i) {
    player.setFrame(int(first + (std::int64_t{last} - first) * i / kExtentSteps));
    player.getPoses(poses);
    for (const auto& points : poses) {
      for (const auto& p : points) {
        low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
        high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
      }
    }
  }
  if (low.x > high.x) return Json::list();
  return Json::list(Json::list(low.x, low.y, low.z), Json::list(high.x, high.y, high.z));
}

void addFile(const std::string& name, const std::string& bytes, Json& ioFiles) {
  if (ioFiles.find(name) == nullptr) ioFiles[name] = formats::base64Of(bytes);
}

}  // namespace

std::string pageData(const std::string& sceneFile, ScenePlayer& player, int first, int last) {
  const Path folder = Path(sceneFile).parent_path();
  const Json document = formats::readJsonFile(sceneFile);
  Json files = Json::object(), materials = Json::object();
  const Json::List* const objects = document["objects"].elements();
  for (const Json& object : objects == nullptr ? Json::List() : *objects) {
    const std::string mesh = *object["mesh"].text(), animation = *object["animation"].text();
    const std::string text = formats::readFile((folder / mesh).string());
    addFile(mesh, text, files);
    addFile(animation, formats::readFile((folder / animation).string()), files);
    materials[mesh] = materialsOf(text, folder / mesh);
  }
  const Json data = Json::object()
                        .with("name", Path(sceneFile).filename().string())
                        .with("scene", document)
                        .with("first", first)
                        .with("last", last)
                        .with("extent", extentOf(player, first, last))
                        .with("results", resultsOf(player, first, last))
                        .with("files", std::move(files))
                        .with("materials", std::move(materials));
  std::string safe;
  for (const char c : data.dump()) {
    // Only texts can hold this character, and "</script" would end the element.
    if (c == '<') {
      safe += "\\u003c";
    } else {
      safe += c;
    }
  }
  return safe;
}

}  // namespace vexa::scene
