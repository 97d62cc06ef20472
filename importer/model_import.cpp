#include "importer/model_import.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <stdexcept>

#include "importer/model_check.h"
#include "importer/model_pose.h"
#include "importer/model_reader.h"
#include "importer/model_travel.h"
#include "importer/rest_mesh_internal.h"

namespace vexa::importer {

namespace {

[[noreturn]] void refuse(const std::string& reason) { throw std::runtime_error(reason); }

// --- spaces ----------------------------------------------------------------------------------
//
// world   the model's scene as its reader gives it
// upright world turned so that +Y is up: right-handed, as the model was made
// host    (x, y, z) upright is (x, -z, y) here: a turn about X, so nothing is mirrored
// file    (x, y, z) upright is (x, y, -z) here: what becomes host when the runtime, which takes
//         result.y from the matrix's third row and result.z from its second, exchanges Y and Z

Matrix fromRows(const std::array<std::array<double, 3>, 3>& rows) {
  Matrix result;
  for (int r = 0; r < 3; ++r) {
    for (int c = 0; c < 3; ++c) result(r, c) = rows[std::size_t(r)][std::size_t(c)];
  }
  return result;
}

Matrix worldToUpright(const SourceModel& model, UpAxis up) {
  if (up == UpAxis::Y) return {};
  if (up == UpAxis::Z) return fromRows({{{1, 0, 0}, {0, 0, 1}, {0, -1, 0}}});
  return model.axes;
}

Matrix uprightToHost() { return fromRows({{{1, 0, 0}, {0, 0, -1}, {0, 1, 0}}}); }

Matrix uprightToFile() { return fromRows({{{1, 0, 0}, {0, 1, 0}, {0, 0, -1}}}); }

// --- clips -----------------------------------------------------------------------------------

std::string clipNames(const SourceModel& model) {
  std::string names;
  for (const SourceModel::Clip& clip : model.clips) {
    names += (names.empty() ? "'" : ", '") + clip.name + "'";
  }
  return names;
}

void requireAnimation(const SourceModel& model) {
  const bool hasBones = std::any_of(model.meshes.begin(), model.meshes.end(),
                                    [](const SourceModel::Mesh& m) { return !m.bones.empty(); });
  if (model.clips.empty()) {
    refuse(hasBones ? "it has bones but no animation" : "it has neither bones nor animation");
  }
  const bool moves = std::any_of(model.clips.begin(), model.clips.end(),
                                 [](const SourceModel::Clip& c) { return !c.channels.empty(); });
  if (!moves) refuse("its animation moves neither bones nor other nodes");
}

std::vector<std::size_t> allClips(const SourceModel& model, std::vector<std::string>& notes) {
  std::vector<std::size_t> chosen;
  for (std::size_t i = 0; i < model.clips.size(); ++i) {
    if (model.clips[i].channels.empty()) {
      notes.push_back("clip '" + model.clips[i].name + "' moves no node and is left out");
    } else {
      chosen.push_back(i);
    }
  }
  return chosen;
}

std::vector<std::size_t> chooseClips(const SourceModel& model, const ImportOptions& options,
                                     std::vector<std::string>& notes) {
  if (options.clips.empty()) return allClips(model, notes);
  std::vector<std::size_t> chosen;
  for (const std::string& name : options.clips) {
    const auto found =
        std::find_if(model.clips.begin(), model.clips.end(),
                     [&](const SourceModel::Clip& clip) { return clip.name == name; });
    if (found == model.clips.end()) {
      refuse("it has no clip '" + name + "'; its clips are " + clipNames(model));
    }
    chosen.push_back(static_cast<std::size_t>(found - model.clips.begin()));
  }
  return chosen;
}

// A clip that ends a rounding error before a frame still has it.
constexpr double kFrameTolerance = 1e-4;
constexpr double kMostFrames = 1e7;

std::vector<ImportedModel::Take> takesOf(const SourceModel& model,
                                         const std::vector<std::size_t>& clips,
                                         int framesPerSecond) {
  std::vector<ImportedModel::Take> takes;
  for (const std::size_t index : clips) {
    const SourceModel::Clip& clip = model.clips[index];
    const double last = std::floor(clipLength(clip) * framesPerSecond + kFrameTolerance);
    if (!(last < kMostFrames)) refuse("clip '" + clip.name + "' is too long to be sampled");
    takes.push_back({clip.name, static_cast<int>(last) + 1, framesPerSecond});
  }
  return takes;
}

// --- the animation file ----------------------------------------------------------------------

formats::AnimationFile::Matrix toFile(const Matrix& m) {
  formats::AnimationFile::Matrix result;
  for (std::size_t i = 0; i < 16; ++i) {
    if (!(std::abs(m.e[i]) <= double(std::numeric_limits<float>::max()))) {
      refuse("its motion leads further away than the runtime's numbers reach");
    }
    result[i] = m.e[i];
  }
  return result;
}

// How many nodes may be placed in all frames: about a minute's work.
constexpr double kMostNodeFrames = 1e9;

void requireSize(const std::vector<ImportedModel::Take>& takes, std::size_t nodeCount,
                 std::size_t jointCount, std::uint64_t largest) {
  double frames = 0;
  for (const auto& take : takes) frames += double(take.frameCount);
  const double bytes = frames * double(jointCount) * double(sizeof(formats::AnimationFile::Matrix));
  if (bytes > double(largest) || frames * double(nodeCount) > kMostNodeFrames) {
    refuse("its animation of " + std::to_string(std::llround(frames)) + " frames would take " +
           std::to_string(std::llround(bytes / 1e6)) +
           " MB; choose fewer clips or frames per second");
  }
}

// The matrices of one frame: from host space, by way of the moved nodes, to upright; the last step,
// to the file's space, is the global matrix.
void addFrame(const RestMesh& rest, const Matrix& worldToUpright, const std::vector<Matrix>& nodes,
              formats::AnimationFile& ioFile) {
  for (std::size_t i = 0; i < rest.joints.size(); ++i) {
    const Matrix& node = nodes[static_cast<std::size_t>(rest.joints[i].node)];
    ioFile.mNodes[i].mMatrices.push_back(toFile(worldToUpright * node * rest.binds[i]));
  }
}

void addLinks(const std::vector<ModelReference::Point>& points, formats::AnimationFile& ioFile) {
  for (std::size_t v = 0; v < points.size(); ++v) {
    for (const ModelReference::Influence& influence : points[v].influences) {
      ioFile.mNodes[influence.joint].mLinks.push_back(
          {static_cast<std::uint32_t>(v), influence.weight});
    }
  }
}

formats::AnimationFile bake(const SourceModel& model, const std::vector<std::size_t>& clips,
                            const std::vector<ImportedModel::Take>& takes,
                            const Matrix& worldToUpright, const RestMesh& rest) {
  formats::AnimationFile file;
  file.mGlobal = toFile(uprightToFile());
  file.mNodes.resize(rest.joints.size());
  for (std::size_t take = 0; take < takes.size(); ++take) {
    const SourceModel::Clip& clip = model.clips[clips[take]];
    file.mFrameCounts.push_back(static_cast<std::uint32_t>(takes[take].frameCount));
    for (int frame = 0; frame < takes[take].frameCount; ++frame) {
      const double seconds = double(frame) / double(takes[take].framesPerSecond);
      addFrame(rest, worldToUpright, nodeTransforms(model, &clip, seconds), file);
    }
  }
  addLinks(rest.points, file);
  return file;
}

void noteStillness(const SourceModel& model, const std::vector<std::size_t>& clips,
                   const std::vector<Joint>& joints, std::vector<std::string>& notes) {
  std::vector<bool> isMoved(model.nodes.size(), false);
  for (const std::size_t clip : clips) {
    for (const SourceModel::Channel& channel : model.clips[clip].channels) {
      isMoved[static_cast<std::size_t>(channel.node)] = true;
    }
  }
  for (std::size_t i = 1; i < isMoved.size(); ++i) {
    if (isMoved[static_cast<std::size_t>(model.nodes[i].parent)]) isMoved[i] = true;
  }
  const bool moves = std::any_of(joints.begin(), joints.end(), [&](const Joint& joint) {
    return isMoved[static_cast<std::size_t>(joint.node)];
  });
  if (!moves) notes.push_back("its animation moves no mesh: every frame shows the same pose");
}

}  // namespace

ImportedModel importModel(const std::string& file, const ImportOptions& options) {
  return importModel(readModel(file, options.limits), options);
}

ImportedModel importModel(SourceModel model, const ImportOptions& options) {
  if (options.framesPerSecond < 1 || options.framesPerSecond > 1000) {
    refuse("frames per second must be 1 to 1000");
  }
  checkModel(model);
  requireAnimation(model);
  const Matrix toUpright = worldToUpright(model, options.up);
  const Matrix toHost = uprightToHost() * toUpright;
  if (options.travel != Oru::TVector3D<double>()) {
    const auto& t = options.travel;
    const auto inWorld = toHost.invert() * Norvel::Vexa::ux_vect3<double>(t.x, t.y, t.z);
    addTravel(model, {inWorld.x, inWorld.y, inWorld.z});
  }
  ImportedModel result;
  result.notes = model.notes;
  result.reference.clips = chooseClips(model, options, result.notes);
  result.reference.framesPerSecond = options.framesPerSecond;
  result.takes = takesOf(model, result.reference.clips, options.framesPerSecond);

  result.reference.toHost = toHost;
  RestMesh rest = buildRestMesh(model, result.reference.toHost, result.notes);
  requireSize(result.takes, model.nodes.size(), rest.joints.size(), options.largestAnimation);
  noteStillness(model, result.reference.clips, rest.joints, result.notes);
  result.animation = bake(model, result.reference.clips, result.takes, toUpright, rest);
  result.mesh = std::move(rest.mesh);
  result.mesh.materials = model.materials;
  result.reference.joints = std::move(rest.joints);
  result.reference.points = std::move(rest.points);
  result.reference.source = std::move(model);
  return result;
}

}  // namespace vexa::importer
