#include "assets/model_import.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <map>
#include <stdexcept>
#include <unordered_map>

#include "assets/model_check.h"
#include "assets/model_pose.h"
#include "assets/model_reader.h"

namespace vexa::assets {

namespace {

[[noreturn]] void refuse(const std::string& reason) { throw std::runtime_error(reason); }

std::string count(std::size_t number, const std::string& what) {
  return std::to_string(number) + " " + what;
}

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

// --- where meshes lie in the rest mesh -------------------------------------------------------

struct Placement {
  Matrix toHost;
  Matrix fromHost;
  bool isMirrored = false;
};

double volume(const Matrix& m) {
  return m(0, 0) * (m(1, 1) * m(2, 2) - m(1, 2) * m(2, 1)) -
         m(0, 1) * (m(1, 0) * m(2, 2) - m(1, 2) * m(2, 0)) +
         m(0, 2) * (m(1, 0) * m(2, 1) - m(1, 1) * m(2, 0));
}

// Whether its inverse is worth anything: a node that is scaled to nothing has none.
bool isSound(const Matrix& m) {
  double edges = 1;
  for (int c = 0; c < 3; ++c) edges *= std::hypot(m(0, c), m(1, c), m(2, c));
  const double size = std::abs(volume(m));
  return std::isfinite(edges) && size > 1e-6 * edges && m.is_invertible();
}

// Whether two places of a mesh differ by less than a thousandth of its size: `extent` is its
// largest coordinate.
constexpr double kNear = 1e-3;

bool areNear(const Matrix& a, const Matrix& b, double extent) {
  double turned = 0, moved = 0, largest = 0;
  for (int r = 0; r < 3; ++r) {
    for (int c = 0; c < 3; ++c) {
      turned = std::max(turned, std::abs(a(r, c) - b(r, c)));
      largest = std::max(largest, std::abs(a(r, c)));
    }
    moved = std::max(moved, std::abs(a(r, 3) - b(r, 3)));
  }
  return turned < kNear * largest && moved < kNear * largest * extent;
}

double extentOf(const SourceModel::Mesh& mesh) {
  float extent = 0;
  for (const auto& p : mesh.points) {
    extent = std::max({extent, std::abs(p.x), std::abs(p.y), std::abs(p.z)});
  }
  return double(extent);
}

// Whether a bone moves any vertex.
bool holds(const SourceModel::Bone& bone) {
  return bone.node != SourceModel::kNone && !bone.influences.empty();
}

// The bone with the largest sum of weights; null when none has a node.
const SourceModel::Bone* chiefBone(const SourceModel::Mesh& mesh) {
  const SourceModel::Bone* chief = nullptr;
  double most = 0;
  for (const SourceModel::Bone& bone : mesh.bones) {
    double sum = 0;
    for (const SourceModel::Influence& influence : bone.influences) sum += influence.weight;
    if (!holds(bone) || sum <= most) continue;
    chief = &bone;
    most = sum;
  }
  return chief;
}

// --- building --------------------------------------------------------------------------------

// Turns the instances of a model into one welded mesh and the joints that its vertices hang on.
class RestMeshBuilder {
 public:
  RestMeshBuilder(const SourceModel& model, const Matrix& worldToHost,
                  std::vector<std::string>& ioNotes)
      : mModel(model),
        mWorldToHost(worldToHost),
        mStored(nodeTransforms(model, nullptr, 0)),
        mNotes(ioNotes) {}

  void addInstances();

  ObjModel mesh;
  std::vector<Joint> joints;
  std::vector<Placement> placements;
  std::vector<ModelReference::Point> points;

 private:
  using Influences = std::vector<ModelReference::Influence>;

  void addInstance(const SourceModel::Instance& instance);
  Matrix placeOf(const SourceModel::Instance& instance) const;
  Matrix placeByBone(const SourceModel::Bone& bone) const;
  std::uint32_t placementOf(const SourceModel::Instance& instance);
  std::uint32_t jointOf(std::int32_t node, const Matrix& offset, std::uint32_t placement);
  std::vector<Influences> influencesOf(const SourceModel::Mesh& source, std::int32_t node,
                                       std::uint32_t placement);
  void addTriangles(const SourceModel::Mesh& source, std::uint32_t placement,
                    const std::vector<Influences>& influences);
  std::uint32_t weld(const SourceModel::Mesh& source, std::uint32_t vertex, std::uint32_t placement,
                     const Influences& influences);

  const SourceModel& mModel;
  const Matrix mWorldToHost;
  const std::vector<Matrix> mStored;
  std::vector<std::string>& mNotes;
  std::map<std::string, std::uint32_t> mJointsByBytes;
  std::unordered_map<std::string, std::uint32_t> mPointsByBytes;
};

Oru::TVector3D<float> toFloat(const Norvel::Vexa::ux_point3<double>& p) {
  constexpr double kLargest = double(std::numeric_limits<float>::max());
  if (!(std::abs(p.x) <= kLargest && std::abs(p.y) <= kLargest && std::abs(p.z) <= kLargest)) {
    refuse("its mesh reaches further than the runtime's numbers do");
  }
  return {float(p.x), float(p.y), float(p.z)};
}

template <class T>
void appendBytes(std::string& bytes, const T& value) {
  bytes.append(reinterpret_cast<const char*>(&value), sizeof(value));
}

void RestMeshBuilder::addInstances() {
  std::vector<bool> isPlaced(mModel.meshes.size(), false);
  for (const SourceModel::Instance& instance : mModel.instances) {
    const auto index = static_cast<std::size_t>(instance.mesh);
    // Bones alone say where a skinned mesh is: hung on a second node it is in the same place.
    if (isPlaced[index] && !mModel.meshes[index].bones.empty()) continue;
    isPlaced[index] = true;
    addInstance(instance);
  }
  const auto unused = std::count(isPlaced.begin(), isPlaced.end(), false);
  if (unused > 0) {
    mNotes.push_back(count(std::size_t(unused), "meshes hang on no node and are left out"));
  }
  if (mesh.triangles.empty()) refuse("it has no triangles");
}

void RestMeshBuilder::addInstance(const SourceModel::Instance& instance) {
  const SourceModel::Mesh& source = mModel.meshes[static_cast<std::size_t>(instance.mesh)];
  if (source.triangles.empty()) return;
  const std::uint32_t placement = placementOf(instance);
  addTriangles(source, placement, influencesOf(source, instance.node, placement));
}

// Where a mesh lies in the rest mesh. Rigid: where its node is in the stored pose. Skinned: where
// its bones then have it, if they agree, as they do in the pose of binding; that need not be where
// its node is. Otherwise at its node, unless that is mirrored against the bones.
Matrix RestMeshBuilder::placeOf(const SourceModel::Instance& instance) const {
  const SourceModel::Mesh& source = mModel.meshes[static_cast<std::size_t>(instance.mesh)];
  const Matrix atNode = mWorldToHost * mStored[static_cast<std::size_t>(instance.node)];
  const SourceModel::Bone* chief = chiefBone(source);
  if (chief == nullptr) return atNode;
  const Matrix atChief = placeByBone(*chief);
  const bool agree =
      std::all_of(source.bones.begin(), source.bones.end(), [&](const SourceModel::Bone& bone) {
        return !holds(bone) || areNear(placeByBone(bone), atChief, extentOf(source));
      });
  return agree || volume(atNode) * volume(atChief) <= 0 ? atChief : atNode;
}

Matrix RestMeshBuilder::placeByBone(const SourceModel::Bone& bone) const {
  return mWorldToHost * mStored[static_cast<std::size_t>(bone.node)] * bone.offset;
}

// Nearly the same place is taken as the same, so that meshes with one skeleton are welded; the
// joints make up for the difference.
std::uint32_t RestMeshBuilder::placementOf(const SourceModel::Instance& instance) {
  const SourceModel::Mesh& source = mModel.meshes[static_cast<std::size_t>(instance.mesh)];
  const double extent = extentOf(source);
  Matrix place = placeOf(instance);
  if (!isSound(place)) {
    mNotes.push_back("mesh '" + source.name +
                     "' is scaled to nothing and lies at the origin of the rest mesh");
    place = mWorldToHost;
  }
  const auto isHere = [&](const Placement& p) { return areNear(p.toHost, place, extent); };
  const auto found = std::find_if(placements.begin(), placements.end(), isHere);
  if (found != placements.end()) return static_cast<std::uint32_t>(found - placements.begin());
  const Matrix toHost = areNear(mWorldToHost, place, extent) ? mWorldToHost : place;
  placements.push_back({toHost, toHost.invert(), volume(toHost) < 0});
  return static_cast<std::uint32_t>(placements.size() - 1);
}

std::uint32_t RestMeshBuilder::jointOf(std::int32_t node, const Matrix& offset,
                                       std::uint32_t placement) {
  std::string bytes;
  appendBytes(bytes, node);
  appendBytes(bytes, offset);
  appendBytes(bytes, placement);
  const auto index = static_cast<std::uint32_t>(joints.size());
  const auto [found, isNew] = mJointsByBytes.emplace(bytes, index);
  if (isNew) joints.push_back({node, offset, placement});
  return found->second;
}

// Per vertex of the mesh; a vertex that no bone holds hangs on the mesh's own node.
std::vector<RestMeshBuilder::Influences> RestMeshBuilder::influencesOf(
    const SourceModel::Mesh& source, std::int32_t node, std::uint32_t placement) {
  std::vector<Influences> influences(source.points.size());
  for (const SourceModel::Bone& bone : source.bones) {
    if (bone.influences.empty()) continue;
    const bool isLost = bone.node == SourceModel::kNone;
    if (isLost) {
      mNotes.push_back("bone '" + bone.name + "' names no node: its vertices go with mesh '" +
                       source.name + "'");
    }
    const std::uint32_t joint =
        isLost ? jointOf(node, {}, placement) : jointOf(bone.node, bone.offset, placement);
    for (const SourceModel::Influence& influence : bone.influences) {
      influences[influence.vertex].push_back({joint, influence.weight});
    }
  }
  std::size_t unheld = 0;
  for (Influences& own : influences) {
    if (!own.empty()) continue;
    own.push_back({jointOf(node, {}, placement), 1.0});
    ++unheld;
  }
  if (unheld > 0 && !source.bones.empty()) {
    mNotes.push_back("mesh '" + source.name +
                     "': " + count(unheld, "vertices have no weights and go with the mesh"));
  }
  return influences;
}

void RestMeshBuilder::addTriangles(const SourceModel::Mesh& source, std::uint32_t placement,
                                   const std::vector<Influences>& influences) {
  for (const auto& triangle : source.triangles) {
    std::array<std::uint32_t, 3> corners = {triangle.x, triangle.y, triangle.z};
    if (placements[placement].isMirrored) std::swap(corners[1], corners[2]);
    ObjTriangle added;
    added.material = source.material;
    for (std::size_t i = 0; i < 3; ++i) {
      added.corners[i].point = weld(source, corners[i], placement, influences[corners[i]]);
      if (source.uvs.empty()) continue;
      added.corners[i].u = source.uvs[corners[i]].x;
      added.corners[i].v = source.uvs[corners[i]].y;
    }
    mesh.triangles.push_back(added);
  }
}

std::uint32_t RestMeshBuilder::weld(const SourceModel::Mesh& source, std::uint32_t vertex,
                                    std::uint32_t placement, const Influences& influences) {
  const Oru::TVector3D<float>& p = source.points[vertex];
  std::string bytes;
  appendBytes(bytes, placement);
  // Adding 0 makes -0 and 0 the same.
  for (const float v : {p.x + 0.0f, p.y + 0.0f, p.z + 0.0f}) appendBytes(bytes, v);
  for (const ModelReference::Influence& influence : influences) {
    appendBytes(bytes, influence.joint);
    appendBytes(bytes, influence.weight);
  }
  const auto index = static_cast<std::uint32_t>(points.size());
  const auto [found, isNew] = mPointsByBytes.emplace(std::move(bytes), index);
  if (isNew) {
    points.push_back({p, influences});
    mesh.points.push_back(
        toFloat(placements[placement].toHost *
                Norvel::Vexa::ux_point3<double>(double(p.x), double(p.y), double(p.z))));
  }
  return found->second;
}

// --- the animation file ----------------------------------------------------------------------

AnimationFile::Matrix toFile(const Matrix& m) {
  AnimationFile::Matrix result;
  for (std::size_t i = 0; i < 16; ++i) {
    if (!(std::abs(m.e[i]) <= double(std::numeric_limits<float>::max()))) {
      refuse("its motion leads further away than the runtime's numbers reach");
    }
    result[i] = m.e[i];
  }
  return result;
}

void requireSize(const std::vector<ImportedModel::Take>& takes, std::size_t jointCount,
                 std::uint64_t largest) {
  double bytes = 0;
  for (const auto& take : takes) bytes += double(take.frameCount);
  bytes *= double(jointCount) * double(sizeof(AnimationFile::Matrix));
  if (bytes > double(largest)) {
    refuse("its animation would take " + std::to_string(std::llround(bytes / 1e6)) +
           " MB; choose fewer clips or frames per second");
  }
}

// One matrix per joint: from the rest mesh in host space, by way of the moved node, to the file's
// space without its last step, which is the global matrix.
std::vector<Matrix> bindsOf(const RestMeshBuilder& rest) {
  std::vector<Matrix> binds;
  for (const Joint& joint : rest.joints) {
    binds.push_back(joint.offset * rest.placements[joint.placement].fromHost);
  }
  return binds;
}

void addFrame(const SourceModel& model, const SourceModel::Clip& clip, double seconds,
              const Matrix& worldToUpright, const RestMeshBuilder& rest,
              const std::vector<Matrix>& binds, AnimationFile& ioFile) {
  const std::vector<Matrix> nodes = nodeTransforms(model, &clip, seconds);
  for (std::size_t i = 0; i < binds.size(); ++i) {
    const Matrix& node = nodes[static_cast<std::size_t>(rest.joints[i].node)];
    ioFile.mNodes[i].mMatrices.push_back(toFile(worldToUpright * node * binds[i]));
  }
}

void addLinks(const std::vector<ModelReference::Point>& points, AnimationFile& ioFile) {
  for (std::size_t v = 0; v < points.size(); ++v) {
    for (const ModelReference::Influence& influence : points[v].influences) {
      ioFile.mNodes[influence.joint].mLinks.push_back(
          {static_cast<std::uint32_t>(v), influence.weight});
    }
  }
}

AnimationFile bake(const SourceModel& model, const std::vector<std::size_t>& clips,
                   const std::vector<ImportedModel::Take>& takes, const Matrix& worldToUpright,
                   const RestMeshBuilder& rest) {
  AnimationFile file;
  file.mGlobal = toFile(uprightToFile());
  file.mNodes.resize(rest.joints.size());
  const std::vector<Matrix> binds = bindsOf(rest);
  for (std::size_t take = 0; take < takes.size(); ++take) {
    file.mFrameCounts.push_back(static_cast<std::uint32_t>(takes[take].frameCount));
    for (int frame = 0; frame < takes[take].frameCount; ++frame) {
      const double seconds = double(frame) / double(takes[take].framesPerSecond);
      addFrame(model, model.clips[clips[take]], seconds, worldToUpright, rest, binds, file);
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
  ImportedModel result;
  result.notes = model.notes;
  result.reference.clips = chooseClips(model, options, result.notes);
  result.reference.framesPerSecond = options.framesPerSecond;
  result.takes = takesOf(model, result.reference.clips, options.framesPerSecond);

  const Matrix toUpright = worldToUpright(model, options.up);
  result.reference.toHost = uprightToHost() * toUpright;
  RestMeshBuilder rest(model, result.reference.toHost, result.notes);
  rest.addInstances();
  requireSize(result.takes, rest.joints.size(), options.largestAnimation);
  noteStillness(model, result.reference.clips, rest.joints, result.notes);
  result.animation = bake(model, result.reference.clips, result.takes, toUpright, rest);
  result.mesh = std::move(rest.mesh);
  result.mesh.materials = model.materials;
  result.reference.joints = std::move(rest.joints);
  result.reference.points = std::move(rest.points);
  result.reference.source = std::move(model);
  return result;
}

}  // namespace vexa::assets
