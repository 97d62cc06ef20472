#include "importer/model_import.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <stdexcept>

#include "importer/model_check.h"
#include "importer/model_motion.h"
#include "importer/model_pose.h"
#include "importer/model_reader.h"
#include "importer/model_textures.h"
#include "importer/model_travel.h"
#include "importer/nearest_name.h"
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

Matrix turnUpright(const SourceModel& model, UpAxis up) {
  if (up == UpAxis::Y) return {};
  if (up == UpAxis::Z) return fromRows({{{1, 0, 0}, {0, 0, 1}, {0, -1, 0}}});
  return model.mAxes;
}

Matrix worldToUpright(const SourceModel& model, const ImportOptions& options) {
  Matrix scale;
  for (int i = 0; i < 3; ++i) scale(i, i) = options.mScale;
  return scale * turnUpright(model, options.mUp);
}

Matrix uprightToHost() { return fromRows({{{1, 0, 0}, {0, 0, -1}, {0, 1, 0}}}); }

Matrix uprightToFile() { return fromRows({{{1, 0, 0}, {0, 1, 0}, {0, 0, -1}}}); }

// --- clips -----------------------------------------------------------------------------------

[[noreturn]] void refuseClip(const SourceModel& model, const std::string& name) {
  std::vector<std::string> names;
  std::string list;
  for (const SourceModel::Clip& clip : model.mClips) {
    names.push_back(clip.mName);
    list += (list.empty() ? "'" : ", '") + clip.mName + "'";
  }
  const std::string nearest = nearestName(name, names);
  refuse("it has no clip '" + name + "'" +
         (nearest.empty() ? "" : "; did you mean '" + nearest + "'?") +
         (nearest.empty() ? ";" : "") + " its clips are " + list);
}

void requireAnimation(const SourceModel& model) {
  const bool hasBones = std::any_of(model.mMeshes.begin(), model.mMeshes.end(),
                                    [](const SourceModel::Mesh& m) { return !m.mBones.empty(); });
  if (!model.mUnreadAnimation.empty()) refuse(model.mUnreadAnimation);
  if (model.mClips.empty()) {
    refuse(hasBones ? "it has bones but no animation" : "it has neither bones nor animation");
  }
  const bool moves = std::any_of(model.mClips.begin(), model.mClips.end(),
                                 [](const SourceModel::Clip& c) { return !c.mChannels.empty(); });
  if (!moves) refuse("its animation moves neither bones nor other nodes");
}

std::vector<std::size_t> allClips(const SourceModel& model, std::vector<std::string>& ioNotes) {
  std::vector<std::size_t> chosen;
  for (std::size_t i = 0; i < model.mClips.size(); ++i) {
    if (model.mClips[i].mChannels.empty()) {
      ioNotes.push_back("clip '" + model.mClips[i].mName + "' moves no node and is left out");
    } else {
      chosen.push_back(i);
    }
  }
  return chosen;
}

std::vector<std::size_t> chooseClips(const SourceModel& model,
                                     const std::vector<std::string>& names,
                                     std::vector<std::string>& ioNotes) {
  if (names.empty()) return allClips(model, ioNotes);
  std::vector<std::size_t> chosen;
  for (const std::string& name : names) {
    const auto found =
        std::find_if(model.mClips.begin(), model.mClips.end(),
                     [&](const SourceModel::Clip& clip) { return clip.mName == name; });
    if (found == model.mClips.end()) refuseClip(model, name);
    chosen.push_back(std::size_t(found - model.mClips.begin()));
  }
  return chosen;
}

// A clip that ends a rounding error before a frame still has it.
constexpr double kFrameTolerance = 1e-4;
// Nearly four days of animation at thirty frames per second.
constexpr double kMostFrames = 1e7;

std::vector<ImportedModel::Take> takesOf(const SourceModel& model,
                                         const std::vector<std::size_t>& clips,
                                         double framesPerSecond) {
  std::vector<ImportedModel::Take> takes;
  for (const std::size_t index : clips) {
    const SourceModel::Clip& clip = model.mClips[index];
    const double last = std::floor(clipLength(clip) * framesPerSecond + kFrameTolerance);
    if (!(last < kMostFrames)) refuse("clip '" + clip.mName + "' is too long to be sampled");
    takes.push_back({clip.mName, int(last) + 1, framesPerSecond});
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
  for (const auto& take : takes) frames += double(take.mFrameCount);
  // As real numbers: these products of numbers from a file can exceed 64 bits.
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
  for (std::size_t i = 0; i < rest.mJoints.size(); ++i) {
    const Matrix& node = nodes[std::size_t(rest.mJoints[i].mNode)];
    ioFile.mNodes[i].mMatrices.push_back(toFile(worldToUpright * node * rest.mBinds[i]));
  }
}

void addLinks(const std::vector<ModelReference::Bound>& points, formats::AnimationFile& ioFile) {
  for (std::size_t v = 0; v < points.size(); ++v) {
    for (const ModelReference::Influence& influence : points[v].mInfluences) {
      ioFile.mNodes[influence.mJoint].mLinks.push_back({std::uint32_t(v), influence.mWeight});
    }
  }
}

formats::AnimationFile bake(const SourceModel& model, const std::vector<std::size_t>& clips,
                            const std::vector<ImportedModel::Take>& takes,
                            const Matrix& worldToUpright, const RestMesh& rest) {
  formats::AnimationFile file;
  file.mGlobal = toFile(uprightToFile());
  file.mNodes.resize(rest.mJoints.size());
  for (std::size_t take = 0; take < takes.size(); ++take) {
    const SourceModel::Clip& clip = model.mClips[clips[take]];
    file.mFrameCounts.push_back(std::uint32_t(takes[take].mFrameCount));
    for (int frame = 0; frame < takes[take].mFrameCount; ++frame) {
      // From the number of the frame: adding up steps would drift.
      const double seconds = double(frame) / takes[take].mFramesPerSecond;
      addFrame(rest, worldToUpright, nodeTransforms(model, &clip, seconds), file);
    }
  }
  addLinks(rest.mBound, file);
  return file;
}

void noteStillness(const SourceModel& model, const std::vector<std::size_t>& clips,
                   const std::vector<Joint>& joints, std::vector<std::string>& ioNotes) {
  std::vector<bool> isMoved(model.mNodes.size(), false);
  for (const std::size_t clip : clips) {
    for (const SourceModel::Channel& channel : model.mClips[clip].mChannels) {
      isMoved[std::size_t(channel.mNode)] = true;
    }
  }
  // Parents come first, so one pass carries motion down the tree.
  for (std::size_t i = 1; i < isMoved.size(); ++i) {
    if (isMoved[std::size_t(model.mNodes[i].mParent)]) isMoved[i] = true;
  }
  const bool moves = std::any_of(joints.begin(), joints.end(), [&](const Joint& joint) {
    return isMoved[std::size_t(joint.mNode)];
  });
  if (!moves) ioNotes.emplace_back("its animation moves no mesh: every frame shows the same pose");
}

// What a file of clips says, checked; faults name it.
SourceModel readMotion(const std::string& file, const ImportOptions& options) {
  try {
    SourceModel motion = readModel(file, options.mLimits, options.mTicksPerSecond);
    checkModel(motion);
    return motion;
  } catch (const std::runtime_error& e) {
    refuse("'" + file + "': " + e.what());
  }
}

// The clips of other files, which then are those to be taken unless some are named.
void addMotions(const ImportOptions& options, SourceModel& ioModel,
                std::vector<std::string>& outClips) {
  outClips = options.mClips;
  const std::size_t own = ioModel.mClips.size();
  for (const std::string& file : options.mMotions) {
    addMotion(readMotion(file, options), file, ioModel);
  }
  if (options.mMotions.empty() || !outClips.empty()) return;
  for (std::size_t i = own; i < ioModel.mClips.size(); ++i) {
    outClips.push_back(ioModel.mClips[i].mName);
  }
}

void requireSoundOptions(const ImportOptions& options) {
  if (!(options.mFramesPerSecond > 0) || options.mFramesPerSecond > 1e6) {
    refuse("frames per second must be above 0 and at most 1000000");
  }
  if (!(options.mScale > 0) || !std::isfinite(options.mScale)) {
    refuse("the scale must be a number above 0");
  }
}

void requireNoNotes(const std::vector<std::string>& notes) {
  if (notes.empty()) return;
  const std::string more =
      notes.size() > 1 ? " (and " + std::to_string(notes.size() - 1) + " more)" : "";
  refuse("it cannot be shown exactly as the file means it: " + notes.front() + more);
}

void applyTravel(const Vec3& travel, const Matrix& toHost, SourceModel& ioModel) {
  if (travel == Vec3()) return;
  // Travel is given in host space, and the new root node is in the world.
  const auto inWorld =
      toHost.invert() * Norvel::Vexa::ux_vect3<double>(travel.x, travel.y, travel.z);
  addTravel(ioModel, {inWorld.x, inWorld.y, inWorld.z});
}

}  // namespace

ImportedModel importModel(const std::string& file, const ImportOptions& options) {
  SourceModel model = readModel(file, options.mLimits, options.mTicksPerSecond);
  findTextures(file, model);
  return importModel(std::move(model), options);
}

ImportedModel importModel(SourceModel model, const ImportOptions& options) {
  requireSoundOptions(options);
  checkModel(model);
  std::vector<std::string> clips;
  addMotions(options, model, clips);
  requireAnimation(model);
  const Matrix toUpright = worldToUpright(model, options);
  ImportedModel result;
  result.mReference.mToHost = uprightToHost() * toUpright;
  applyTravel(options.mTravel, result.mReference.mToHost, model);
  result.mNotes = model.mNotes;
  result.mReference.mClips = chooseClips(model, clips, result.mNotes);
  result.mReference.mFramesPerSecond = options.mFramesPerSecond;
  result.mTakes = takesOf(model, result.mReference.mClips, options.mFramesPerSecond);

  RestMesh rest = buildRestMesh(model, result.mReference.mToHost, result.mNotes);
  requireSize(result.mTakes, model.mNodes.size(), rest.mJoints.size(), options.mLargestAnimation);
  noteStillness(model, result.mReference.mClips, rest.mJoints, result.mNotes);
  // After the last step that adds a note, before the long work.
  if (options.mStrict) requireNoNotes(result.mNotes);
  result.mAnimation = bake(model, result.mReference.mClips, result.mTakes, toUpright, rest);
  result.mMesh = std::move(rest.mMesh);
  for (const auto& material : model.mMaterials) result.mMesh.materials.push_back(material.mName);
  result.mReference.mJoints = std::move(rest.mJoints);
  result.mReference.mBound = std::move(rest.mBound);
  result.mReference.mSource = std::move(model);
  return result;
}

}  // namespace vexa::importer
