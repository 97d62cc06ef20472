// Models imported, and animation files as arrays.
#include <cstring>

#include "formats/AnimationFile.h"
#include "importer/import_files.h"
#include "importer/model_import.h"
#include "python/bindings_internal.h"

namespace vexa::python {
namespace {

using formats::AnimationFile;
static_assert(sizeof(AnimationFile::Matrix) == 16 * sizeof(double), "16 numbers and nothing else");

// Stored column by column; as an array m[..., row, column].
void putMatrix(const AnimationFile::Matrix& matrix, double* out) {
  for (std::size_t i = 0; i < 16; ++i) out[4 * (i % 4) + i / 4] = matrix[i];
}

AnimationFile::Matrix matrixAt(const double* numbers) {
  AnimationFile::Matrix matrix;
  for (std::size_t i = 0; i < 16; ++i) matrix[i] = numbers[4 * (i % 4) + i / 4];
  return matrix;
}

py::dict nodeOf(const AnimationFile::Node& node) {
  // Arrays of their own, not views: the file's structure ends with this call.
  Doubles matrices(std::vector<py::ssize_t>{py::ssize_t(node.mMatrices.size()), 4, 4});
  for (std::size_t i = 0; i < node.mMatrices.size(); ++i) {
    putMatrix(node.mMatrices[i], matrices.mutable_data() + 16 * i);
  }
  const auto count = py::ssize_t(node.mLinks.size());
  Indices vertices(count);
  Doubles weights(count);
  for (std::size_t i = 0; i < node.mLinks.size(); ++i) {
    vertices.mutable_data()[i] = node.mLinks[i].mVertex;
    weights.mutable_data()[i] = node.mLinks[i].mWeight;
  }
  py::dict result;
  result["matrices"] = matrices;
  result["vertices"] = vertices;
  result["weights"] = weights;
  return result;
}

py::dict readAnimation(const std::string& path) {
  AnimationFile file;
  {
    const py::gil_scoped_release released;
    file = formats::readAnimationFile(path);
  }
  Doubles global({4, 4});
  putMatrix(file.mGlobal, global.mutable_data());
  py::list nodes;
  for (const auto& node : file.mNodes) nodes.append(nodeOf(node));
  py::dict result;
  result["frame_counts"] = file.mFrameCounts;
  result["global_matrix"] = global;
  result["nodes"] = nodes;
  return result;
}

AnimationFile::Node nodeOf(const py::handle& from) {
  const auto matrices = from["matrices"].cast<Doubles>();
  const auto vertices = from["vertices"].cast<Indices>();
  const auto weights = from["weights"].cast<Doubles>();
  require(matrices.ndim() == 3 && matrices.shape(1) == 4 && matrices.shape(2) == 4,
          "matrices: expected an array of shape (frames, 4, 4)");
  require(vertices.ndim() == 1 && weights.ndim() == 1 && vertices.size() == weights.size(),
          "vertices and weights: expected two arrays of the same length");
  AnimationFile::Node node;
  for (py::ssize_t i = 0; i < matrices.shape(0); ++i) {
    node.mMatrices.push_back(matrixAt(matrices.data() + 16 * i));
  }
  for (py::ssize_t i = 0; i < vertices.size(); ++i) {
    node.mLinks.push_back({vertices.data()[i], weights.data()[i]});
  }
  return node;
}

void writeAnimation(const std::string& path, const std::vector<std::uint32_t>& frameCounts,
                    const Doubles& global, const py::list& nodes) {
  require(global.ndim() == 2 && global.shape(0) == 4 && global.shape(1) == 4,
          "global_matrix: expected an array of shape (4, 4)");
  AnimationFile file;
  file.mFrameCounts = frameCounts;
  file.mGlobal = matrixAt(global.data());
  // encodeAnimationFile checks that each node has as many matrices as the counts say.
  for (const auto& node : nodes) file.mNodes.push_back(nodeOf(node));
  const py::gil_scoped_release released;
  formats::writeAnimationFile(file, path);
}

// Writes a model as STEM.amo, STEM.obj and STEM.json; returns what the command prints.
py::dict importModel(const std::string& path, const std::string& stem,
                     const std::vector<std::string>& clips, double framesPerSecond,
                     const std::string& up, const std::array<double, 3>& travel) {
  importer::ImportOptions options;
  options.mClips = clips;
  options.mFramesPerSecond = framesPerSecond;
  options.mTravel = {travel[0], travel[1], travel[2]};
  require(framesPerSecond > 0 && framesPerSecond <= 1000, "fps: expected more than 0, up to 1000");
  require(up.empty() || up == "y" || up == "z", R"(up: expected "y", "z" or nothing)");
  if (up == "y") options.mUp = importer::UpAxis::Y;
  if (up == "z") options.mUp = importer::UpAxis::Z;
  // The import itself runs without the interpreter's lock: it takes seconds, and other threads of
  // the program go on. Nothing inside the braces touches a Python object.
  importer::ImportedModel model;
  importer::ImportFiles files;
  {
    const py::gil_scoped_release released;
    try {
      model = importer::importModel(path, options);
    } catch (const std::exception& error) {
      throw std::runtime_error(path + ": " + error.what());
    }
    files = importer::writeImport(model, stem);
  }
  py::list takes;
  for (const auto& take : model.mTakes) {
    takes.append(py::make_tuple(take.mName, take.mFrameCount, take.mFramesPerSecond));
  }
  py::dict result;
  result["files"] = files.mFiles;
  result["takes"] = takes;
  result["notes"] = model.mNotes;
  result["vertices"] = model.mMesh.points.size();
  result["triangles"] = model.mMesh.triangles.size();
  result["largest_difference"] = files.mCheck.mLargestDifference;
  return result;
}

}  // namespace

void bindFiles(py::module_& module) {
  module.def("read_animation", &readAnimation, py::arg("path"),
             "An animation file as a dict: frame_counts (one per take), global_matrix (4, 4) and\n"
             "nodes, each a dict of matrices (frames, 4, 4), vertices (n,) and weights (n,).");
  module.def("write_animation", &writeAnimation, py::arg("path"), py::arg("frame_counts"),
             py::arg("global_matrix"), py::arg("nodes"),
             "Writes what read_animation returns. The file appears whole or not at all.");
  module.def("import_model", &importModel, py::arg("path"), py::arg("stem"),
             py::arg("clips") = std::vector<std::string>(), py::arg("fps") = 30.0,
             py::arg("up") = "", py::arg("travel") = std::array<double, 3>{0, 0, 0},
             "Imports a skinned model as STEM.amo, STEM.obj and STEM.json, as `vexa import` does,\n"
             "and returns a dict of files, takes (name, frames, rate), notes, vertices, triangles\n"
             "and largest_difference.");
}

}  // namespace vexa::python
