// vexa.Scene: values, placements and deformed meshes over frames.
#include <algorithm>
#include <cstring>
#include <memory>
#include <mutex>

#include "formats/glb.h"
#include "formats/mesh_surfaces.h"
#include "python/bindings_internal.h"
#include "scene/ScenePlayer.h"
#include "scene/scene_file.h"
#include "scene/value_parts.h"

namespace vexa::python {
namespace {

using formats::MovingMesh;

// A scene that is played. Its lock keeps threads apart that use one scene at once; it is taken
// after the interpreter's lock has been released, never the other way round.
class Scene {
 public:
  explicit Scene(refhost::Scene scene) : mPlayer(std::move(scene)), mMeshes(mPlayer.meshes()) {
    // So that placements and meshes have an answer before the first call.
    mPlayer.setFrame(0);
  }

  std::vector<std::string> values() const {
    std::vector<std::string> names;
    for (const auto& value : mPlayer.scene().mProperties) names.push_back(value.mName);
    return names;
  }

  std::vector<std::string> instances() const {
    std::vector<std::string> names;
    for (const auto& each : mPlayer.scene().mInstances.mElements) names.push_back(each.mName);
    return names;
  }

  std::vector<std::string> meshNames() const {
    std::vector<std::string> names;
    for (const MovingMesh& mesh : mMeshes) names.push_back(mesh.mName);
    return names;
  }

  int timeScale() const { return mPlayer.scene().mSettings.mElements[0].mTimeScale; }

  py::array sample(const std::string& name, const py::object& frames) {
    const std::vector<int> wanted = framesOf(frames);
    const std::size_t value = valueOf(name);
    const refhost::Property& property = mPlayer.scene().mProperties[value];
    // The array is made while the interpreter's lock is held, and filled without it.
    const std::size_t size = scene::partCount(property);
    std::vector<py::ssize_t> shape{py::ssize_t(wanted.size())};
    // A value that is a single number gives one dimension, as numpy users expect.
    if (size > 1) shape.push_back(py::ssize_t(size));
    py::array_t<double> result(shape);
    double* out = result.mutable_data();
    const py::gil_scoped_release released;
    const std::lock_guard<std::mutex> lock(mMutex);
    for (std::size_t i = 0; i < wanted.size(); ++i) {
      // Straight into the array: a million rows need no list in between.
      scene::writeParts(property, mPlayer.sample(value, wanted[i]), out + i * size);
    }
    return std::move(result);
  }

  py::array deform(const std::string& name, const py::object& frames) {
    const std::vector<int> wanted = framesOf(frames);
    const std::size_t mesh = meshOf(name);
    const std::size_t points = pointCount(mesh);
    py::array_t<float> result(
        std::vector<py::ssize_t>{py::ssize_t(wanted.size()), py::ssize_t(points), 3});
    float* out = result.mutable_data();
    const py::gil_scoped_release released;
    const std::lock_guard<std::mutex> lock(mMutex);
    std::vector<MovingMesh> posed = mMeshes;
    for (const int frame : wanted) {
      mPlayer.setFrame(frame);
      mPlayer.appendPoses(posed);
      std::memcpy(out, posed[mesh].mFrames[0].data(), points * sizeof(posed[mesh].mFrames[0][0]));
      // Poses are taken one by one: all frames of a long range would not fit twice into memory.
      for (MovingMesh& each : posed) each.mFrames.clear();
      out += 3 * points;
    }
    return std::move(result);
  }

  py::dict placements(const std::string& name, const py::object& frames) {
    const std::vector<int> wanted = framesOf(frames);
    const auto& all = mPlayer.scene().mInstances.mElements;
    const auto found =
        std::find_if(all.begin(), all.end(), [&](const auto& each) { return each.mName == name; });
    require(found != all.end(), "there is no instance \"" + name + "\"");
    const auto count = py::ssize_t(wanted.size());
    const std::vector<py::ssize_t> threes{count, 3};
    py::array_t<double> position(threes), world(threes), direction(threes), anchor(threes);
    py::array_t<double> rotation(count);
    py::array_t<int> takeFrame(count);
    py::dict result;
    result["position"] = position;
    result["world"] = world;
    result["direction"] = direction;
    result["anchor"] = anchor;
    result["rotation"] = rotation;
    result["take_frame"] = takeFrame;
    double *p = position.mutable_data(), *w = world.mutable_data(), *d = direction.mutable_data();
    double *a = anchor.mutable_data(), *r = rotation.mutable_data();
    int* t = takeFrame.mutable_data();
    const py::gil_scoped_release released;
    const std::lock_guard<std::mutex> lock(mMutex);
    for (const int frame : wanted) {
      mPlayer.setFrame(frame);
      p = put(found->mPosition, p);
      w = put(mPlayer.worldPosition(*found), w);
      d = put(found->mDirection, d);
      a = put(found->mAnchor, a);
      *r++ = found->mRotation;
      *t++ = found->mState.mCurrentFrame;
    }
    return result;
  }

  py::array_t<std::uint32_t> triangles(const std::string& name) const {
    const MovingMesh& mesh = mMeshes[meshOf(name)];
    py::array_t<std::uint32_t> result(
        std::vector<py::ssize_t>{py::ssize_t(mesh.mTriangles.size()), 3});
    std::memcpy(result.mutable_data(), mesh.mTriangles.data(), std::size_t(result.nbytes()));
    return result;
  }

  py::array_t<std::uint32_t> materials(const std::string& name) const {
    const MovingMesh& mesh = mMeshes[meshOf(name)];
    return py::array_t<std::uint32_t>(py::ssize_t(mesh.mMaterials.size()), mesh.mMaterials.data());
  }

  void writeGlb(const std::string& path, const py::object& frames) {
    const std::vector<int> wanted = framesOf(frames);
    require(!wanted.empty(), "there is no frame to write");
    // A GLB has one time per frame, evenly spaced from 0.
    const double step = wanted.size() < 2 ? 1 : double(wanted[1]) - wanted[0];
    require(step > 0, "the frames do not rise");
    const py::gil_scoped_release released;
    const std::lock_guard<std::mutex> lock(mMutex);
    // All poses at once: the writer takes whole meshes.
    std::vector<MovingMesh> moving = mMeshes;
    formats::addSurfaces(moving);
    for (const int frame : wanted) {
      mPlayer.setFrame(frame);
      mPlayer.appendPoses(moving);
    }
    formats::writeGlb(path, moving, timeScale() / step);
  }

 private:
  // Returns the place behind the three numbers, for the next ones.
  template <class Triple>
  static double* put(const Triple& triple, double* out) {
    out[0] = triple.x;
    out[1] = triple.y;
    out[2] = triple.z;
    return out + 3;
  }

  std::size_t valueOf(const std::string& name) const {
    const auto& all = mPlayer.scene().mProperties;
    const auto found =
        std::find_if(all.begin(), all.end(), [&](const auto& each) { return each.mName == name; });
    require(found != all.end(), "there is no value \"" + name + "\"");
    return std::size_t(found - all.begin());
  }

  std::size_t meshOf(const std::string& name) const {
    const auto found = std::find_if(mMeshes.begin(), mMeshes.end(),
                                    [&](const auto& each) { return each.mName == name; });
    require(found != mMeshes.end(), "there is no instance \"" + name + "\" with a mesh");
    return std::size_t(found - mMeshes.begin());
  }

  std::size_t pointCount(std::size_t mesh) {
    const py::gil_scoped_release released;
    const std::lock_guard<std::mutex> lock(mMutex);
    // Of frame 0: all frames have the same number of points.
    std::vector<MovingMesh> posed = mMeshes;
    mPlayer.appendPoses(posed);
    return posed[mesh].mFrames[0].size();
  }

  // A player shows one frame at a time, so two threads would see each other's.
  std::mutex mMutex;
  scene::ScenePlayer mPlayer;
  const std::vector<MovingMesh> mMeshes;  // without poses
};

std::unique_ptr<Scene> sceneOfDocument(const py::object& document, const std::string& folder) {
  const std::string text =
      // A dict goes through Python's own json, so whatever it holds is checked like a file.
      py::isinstance<py::str>(document)
          ? document.cast<std::string>()
          : py::module_::import("json").attr("dumps")(document).cast<std::string>();
  const py::gil_scoped_release released;
  return std::make_unique<Scene>(scene::readSceneText(text, folder));
}

}  // namespace

void bindScene(py::module_& module) {
  py::class_<Scene>(module, "Scene",
                    "A scene that is played through the animation manager.\n\n"
                    "What a frame gives depends on the scene and the frame alone. A scene may be\n"
                    "used by several threads; it serves one at a time.")
      .def(py::init(&sceneOfDocument), py::arg("document"), py::arg("folder") = ".",
           "A scene from a dict or a JSON text in the form of a scene file; file names in it are\n"
           "relative to folder.")
      .def_property_readonly("values", &Scene::values, "Names of the values.")
      .def_property_readonly("instances", &Scene::instances, "Names of the instances.")
      .def_property_readonly("meshes", &Scene::meshNames, "Names of the instances with a mesh.")
      .def_property_readonly("time_scale", &Scene::timeScale, "Scene frames per second.")
      .def("sample", &Scene::sample, py::arg("name"), py::arg("frames"),
           "A value at frames (a whole number, a range or a sequence), as float64: shape (n,), or\n"
           "(n, 3) for a vector, (n, 4) for a colour, (n, 6) for a position and its direction.\n"
           "Dates are seconds since 1970-01-01 00:00 UTC.")
      .def("deform", &Scene::deform, py::arg("instance"), py::arg("frames"),
           "The points of an instance's mesh in world space, as float32 of shape\n"
           "(frames, points, 3).")
      .def("placements", &Scene::placements, py::arg("instance"), py::arg("frames"),
           "Where an instance is: a dict of arrays position, world, direction and anchor of shape\n"
           "(n, 3), rotation (radians about +Z) and take_frame of shape (n,).")
      .def("triangles", &Scene::triangles, py::arg("instance"),
           "The triangles of an instance's mesh: indices of points, uint32 of shape (n, 3).")
      .def("materials", &Scene::materials, py::arg("instance"),
           "The material of each triangle, uint32 of shape (n,).")
      .def("write_glb", &Scene::writeGlb, py::arg("path"), py::arg("frames"),
           "Writes all meshes over evenly spaced frames as one binary glTF file with a morph "
           "target\n"
           "per frame.");

  module.def(
      "load",
      [](const std::string& path) { return std::make_unique<Scene>(scene::readSceneFile(path)); },
      py::arg("path"), py::call_guard<py::gil_scoped_release>(),
      "Loads a scene file (JSON). Raises RuntimeError with the file, the place in it and what was\n"
      "expected.");
}

}  // namespace vexa::python
