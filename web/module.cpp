// What the page calls. Functions that can fail return a text: what is wrong, or "" when all went
// well. Pointers stay valid until the next call.
#include <emscripten/emscripten.h>
#include <memory>
#include <string>
#include <vector>

#include "formats/JsonTree.h"
#include "scene/ScenePlayer.h"
#include "scene/path_curve.h"
#include "scene/recorded_results.h"
#include "scene/scene_file.h"
#include "scene/value_parts.h"
#include "vexa/mesh/Mesh.h"

namespace {

using Json = vexa::formats::JsonTree;
using vexa::scene::ScenePlayer;

// One page plays one scene, so its state is global. The results below stay here until the next
// call, because JavaScript reads them from the module's memory.
std::unique_ptr<ScenePlayer> player;
std::unique_ptr<vexa::scene::ResultRecorder> recorder;
std::string text;
std::vector<double> numbers;
std::vector<float> uvs;
std::vector<unsigned int> materials;

// A C++ exception that reached JavaScript would be a bare number without a text.
template <class Action>
const char* guarded(Action action) {
  text.clear();
  try {
    action();
  } catch (const std::exception& error) {
    text = error.what();
  } catch (...) {
    text = "an unknown error";
  }
  return text.c_str();
}

const vexa::refhost::Instance& instanceAt(int index) {
  return player->scene().mInstances.mElements.at(std::size_t(index));
}

}  // namespace

extern "C" {

EMSCRIPTEN_KEEPALIVE const char* vexa_open(const char* file) {
  return guarded([file] {
    // It borrows the player.
    recorder.reset();
    player.reset();
    player = std::make_unique<ScenePlayer>(vexa::scene::readSceneFile(file));
  });
}

EMSCRIPTEN_KEEPALIVE const char* vexa_edit(const char* scene) {
  return guarded([scene] {
    recorder.reset();
    player->edit(vexa::scene::readEditedScene(scene));
  });
}

EMSCRIPTEN_KEEPALIVE const char* vexa_set_frame(int frame) {
  return guarded([frame] { player->setFrame(frame); });
}

// {"values": [{"name", "parts", "date", "color"}], "instances": [{"name", "object", "points"}]}
EMSCRIPTEN_KEEPALIVE const char* vexa_describe() {
  return guarded([] {
    Json values = Json::list(), instances = Json::list();
    for (const auto& value : player->scene().mProperties) {
      values.add(Json::object()
                     .with("name", value.mName)
                     .with("parts", vexa::scene::partNames(value))
                     .with("date", vexa::scene::isDate(value))
                     .with("color", vexa::scene::isColor(value)));
    }
    for (const auto& instance : player->scene().mInstances.mElements) {
      const UXS::Mesh* mesh = player->mesh(instance);
      instances.add(Json::object()
                        .with("name", instance.mName)
                        .with("object", int(instance.mDefinition))
                        .with("points", mesh == nullptr ? 0 : mesh->GetVerticesArray().size()));
    }
    text = Json::object().with("values", values).with("instances", instances).dump();
  });
}

// All parts of all values, in their order.
EMSCRIPTEN_KEEPALIVE const double* vexa_values() {
  numbers.clear();
  const auto& values = player->scene().mProperties;
  for (std::size_t i = 0; i < values.size(); ++i) {
    const auto parts = vexa::scene::parts(values[i], player->samples()[i]);
    numbers.insert(numbers.end(), parts.begin(), parts.end());
  }
  return numbers.data();
}

// Per instance the take, its frame, and the matrix into the world, column by column.
EMSCRIPTEN_KEEPALIVE const double* vexa_placements() {
  numbers.clear();
  for (const auto& instance : player->scene().mInstances.mElements) {
    const auto matrix = player->toWorld(instance);
    numbers.push_back(double(instance.mState.mTakeIndex));
    numbers.push_back(double(instance.mState.mCurrentFrame));
    numbers.insert(numbers.end(), std::begin(matrix.e), std::end(matrix.e));
  }
  return numbers.data();
}

// The deformed points of an instance in its own space, three floats each.
EMSCRIPTEN_KEEPALIVE const float* vexa_points(int instance) {
  return &player->mesh(instanceAt(instance))->GetVerticesArray().data()->x;
}

EMSCRIPTEN_KEEPALIVE int vexa_triangle_count(int instance) {
  return int(player->mesh(instanceAt(instance))->GetTrianglesArray().size());
}

// Three corners per triangle.
EMSCRIPTEN_KEEPALIVE const unsigned int* vexa_triangles(int instance) {
  return &player->mesh(instanceAt(instance))->GetTrianglesArray().data()->x;
}

// One per triangle.
EMSCRIPTEN_KEEPALIVE const unsigned int* vexa_materials(int instance) {
  const UXS::Mesh* mesh = player->mesh(instanceAt(instance));
  materials.clear();
  for (unsigned int t = 0; t < mesh->GetTrianglesArray().size(); ++t) {
    materials.push_back(mesh->GetTriangleMaterialID(t));
  }
  return materials.data();
}

// Three (u, v) per triangle, or null.
EMSCRIPTEN_KEEPALIVE const float* vexa_uvs(int instance) {
  const UXS::Mesh* mesh = player->mesh(instanceAt(instance));
  if (!mesh->HasUVCoords()) return nullptr;
  uvs.clear();
  for (unsigned int t = 0; t < mesh->GetTrianglesArray().size(); ++t) {
    const auto& corners = mesh->GetTriangleUVCoords(t);
    for (const auto& corner : {corners.x, corners.y, corners.z}) {
      uvs.push_back(corner.x);
      uvs.push_back(corner.y);
    }
  }
  return uvs.data();
}

EMSCRIPTEN_KEEPALIVE int vexa_curve_size(int path) {
  numbers.clear();
  for (const auto& p :
       vexa::scene::curveOf(player->scene().mPaths.mElements.at(std::size_t(path)))) {
    numbers.insert(numbers.end(), {p.x, p.y, p.z});
  }
  return int(numbers.size() / 3);
}

// The points that vexa_curve_size has counted, three numbers each.
EMSCRIPTEN_KEEPALIVE const double* vexa_curve() { return numbers.data(); }

EMSCRIPTEN_KEEPALIVE const char* vexa_record_begin() {
  return guarded([] { recorder = std::make_unique<vexa::scene::ResultRecorder>(*player); });
}

EMSCRIPTEN_KEEPALIVE const char* vexa_record(int frame) {
  return guarded([frame] { recorder->add(frame); });
}

// The results as JSON.
EMSCRIPTEN_KEEPALIVE const char* vexa_record_results() {
  return guarded([] { text = recorder->results().dump(); });
}

}  // extern "C"
