#include "scene/describe.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>
#include <set>
#include <stdexcept>

#include "formats/AnimationFile.h"
#include "formats/finite.h"
#include "formats/obj.h"
#include "scene/scene_file.h"

namespace vexa::scene {
namespace {

// Files store weights as doubles that were often single-precision numbers before. Sums of these
// miss 1 by less than that.
constexpr double kWeightTolerance = 1e-5;

std::string count(std::size_t number, const char* what) {
  return std::to_string(number) + " " + what + (number == 1 ? "" : "s");
}

// What the links of an animation file say about its vertices.
struct LinkFigures {
  struct Vertex {
    double sum = 0;
    std::uint32_t influences = 0;
  };
  std::map<std::uint32_t, Vertex> mVertices;  // the linked ones; an index may be any number
  std::size_t mLinks = 0;
  std::size_t mToAbsentNodes = 0;  // links of a node that has no matrix
  std::size_t mBadWeights = 0;     // negative or not finite

  // How many vertices a mesh needs to hold them all.
  std::size_t vertexCount() const {
    return mVertices.empty() ? 0 : std::size_t{mVertices.rbegin()->first} + 1;
  }
};

// Negated comparisons below also catch NaN.
LinkFigures figuresOf(const formats::AnimationFile& file) {
  LinkFigures figures;
  for (const formats::AnimationFile::Node& node : file.mNodes) {
    // A node without matrices is absent; the library skips its links with a warning.
    figures.mLinks += node.mLinks.size();
    if (node.mMatrices.empty()) figures.mToAbsentNodes += node.mLinks.size();
    for (const formats::AnimationFile::Link& link : node.mLinks) {
      LinkFigures::Vertex& vertex = figures.mVertices[link.mVertex];
      vertex.sum += link.mWeight;
      ++vertex.influences;
      if (!(link.mWeight >= 0) || !std::isfinite(link.mWeight)) ++figures.mBadWeights;
    }
  }
  return figures;
}

std::size_t badMatrices(const formats::AnimationFile& file) {
  const auto isBad = [](const formats::AnimationFile::Matrix& matrix) {
    return !formats::isFinite(matrix);
  };
  std::size_t bad = isBad(file.mGlobal) ? 1 : 0;
  for (const auto& node : file.mNodes) {
    bad += static_cast<std::size_t>(
        std::count_if(node.mMatrices.begin(), node.mMatrices.end(), isBad));
  }
  return bad;
}

// The bytes that a frame collector accounts for: 28 a link and 72 more for the first link of a
// vertex, 32 a node and 48 for each of its takes, 64 a matrix of sixteen floats.
std::uint64_t sizeInMemory(const formats::AnimationFile& file, const LinkFigures& figures) {
  std::uint64_t size = 28 * figures.mLinks + 72 * figures.mVertices.size();
  for (const auto& node : file.mNodes) {
    if (!node.mMatrices.empty()) size += 32 + 48 * file.mFrameCounts.size();
    size += 64 * node.mMatrices.size();
  }
  return size;
}

void describeWeights(const LinkFigures& figures, Description& ioDescription) {
  // A sum other than 1 is a note, because the library divides by it. A vertex without links, or
  // with a sum of 0, is a fault: its position would be 0 / 0.
  const std::size_t unlinked = figures.vertexCount() - figures.mVertices.size();
  std::size_t weightless = 0, offOne = 0;
  double farthest = 0;
  std::uint32_t most = 0;
  for (const auto& [index, vertex] : figures.mVertices) {
    most = std::max(most, vertex.influences);
    const double off = std::abs(vertex.sum - 1);
    // The weighted sum of a vertex is divided by this, so 0 leaves no position.
    if (vertex.sum == 0) {
      ++weightless;
    } else if (off > kWeightTolerance) {
      ++offOne;
      farthest = std::max(farthest, off);
    }
  }
  ioDescription["links"] = figures.mLinks;
  ioDescription["vertices"] = figures.vertexCount();
  ioDescription["mostInfluencesPerVertex"] = most;
  ioDescription["unlinkedVertices"] = unlinked;
  ioDescription["weightSumsNotOne"] = offOne;
  ioDescription["farthestWeightSumFromOne"] = farthest;
  if (offOne > 0) {
    ioDescription["notes"].add("weights of " + count(offOne, "vertex sum") +
                               " differ from 1; they are divided by their sum");
  }
  if (unlinked > 0) ioDescription["faults"].add(count(unlinked, "vertex index") + " unlinked");
  if (weightless > 0) {
    ioDescription["faults"].add(count(weightless, "weight sum") + " of 0");
  }
}

Description newDescription(const char* kind) {
  Description description;
  description["formatVersion"] = 1;  // docs/info.schema.json
  description["kind"] = kind;
  description["notes"] = Description::list();
  description["faults"] = Description::list();
  return description;
}

Description describeAnimation(const formats::AnimationFile& file) {
  Description description = newDescription("animation file");
  const LinkFigures figures = figuresOf(file);
  description["takes"] = file.mFrameCounts.size();
  description["framesPerTake"] = file.mFrameCounts;
  description["nodes"] = file.mNodes.size();
  describeWeights(figures, description);
  description["linksToAbsentNodes"] = figures.mToAbsentNodes;
  description["bytesInMemory"] = sizeInMemory(file, figures);
  auto& faults = description["faults"];
  if (figures.mToAbsentNodes > 0) {
    faults.add(count(figures.mToAbsentNodes, "link") + " to absent nodes");
  }
  if (figures.mBadWeights > 0) {
    faults.add(count(figures.mBadWeights, "weight") + " negative or not finite");
  }
  if (const std::size_t bad = badMatrices(file); bad > 0) {
    faults.add(count(bad, "matrix") + " not finite");
  }
  return description;
}

Description describeMesh(const std::string& file) {
  const formats::ObjModel model = formats::readObj(file);
  Description description = newDescription("mesh");
  std::set<unsigned int> materials;
  std::vector<bool> used(model.points.size(), false);
  std::size_t degenerate = 0, bad = 0;
  for (const auto& triangle : model.triangles) {
    materials.insert(triangle.material);
    const auto& c = triangle.corners;
    for (const auto& corner : c) used[corner.point] = true;
    // Two equal corners leave no area and no normal.
    const bool repeats =
        c[0].point == c[1].point || c[1].point == c[2].point || c[2].point == c[0].point;
    degenerate += repeats ? 1 : 0;
  }
  for (const auto& p : model.points) {
    bad += formats::isFinite(p) ? 0 : 1;
  }
  // Links count points by their numbers, so an unused point is kept and only noted.
  const auto unused = static_cast<std::size_t>(std::count(used.begin(), used.end(), false));
  description["points"] = model.points.size();
  description["triangles"] = model.triangles.size();
  description["materials"] = materials.size();
  description["unusedPoints"] = unused;
  description["degenerateTriangles"] = degenerate;
  if (unused > 0) description["notes"].add(count(unused, "point") + " in no triangle");
  if (degenerate > 0) description["notes"].add(count(degenerate, "degenerate triangle"));
  if (bad > 0) description["faults"].add(count(bad, "point") + " not finite");
  return description;
}

// Whether an object's animation file fits its mesh. The file does not say for which mesh it was
// made; a file of another one shows by its number of vertices.
void describeObject(const refhost::Definition& definition, Description& ioDescription) {
  const refhost::AnimatedObject& object = *definition.mAnimatedObject;
  const std::string name = "object \"" + definition.mName + "\": ";
  try {
    const formats::AnimationFile file = formats::readAnimationFile(object.mAnimationFile);
    const LinkFigures figures = figuresOf(file);
    const std::size_t points = object.mPoints.mElements.size();
    auto& faults = ioDescription["faults"];
    if (figures.vertexCount() > points) {
      faults.add(name + "links to vertex " + std::to_string(figures.vertexCount() - 1) +
                 " of a mesh of " + count(points, "point"));
    } else if (figures.vertexCount() < points) {
      faults.add(name + count(points - figures.vertexCount(), "point") + " unlinked");
    }
    const auto& takes = object.mTakes.mElements;
    for (std::size_t t = 0; t < std::min(takes.size(), file.mFrameCounts.size()); ++t) {
      if (std::uint32_t(takes[t].mFrameCount) <= file.mFrameCounts[t]) continue;
      faults.add(name + "take \"" + takes[t].mName + "\" has " +
                 count(std::size_t(takes[t].mFrameCount), "frame") + ", its file has " +
                 std::to_string(file.mFrameCounts[t]));
    }
    if (object.mTakes.mElements.size() > file.mFrameCounts.size()) {
      faults.add(name + "more takes than the animation file has");
    }
    const Description animation = describeAnimation(file);
    for (const Description& fault : *animation["faults"].elements()) {
      faults.add(name + *fault.text());
    }
    // A file that is not there is a fault of the scene; the other facts are still of use.
  } catch (const std::runtime_error& error) {
    ioDescription["faults"].add(name + error.what());
  }
}

// Keys of a value that stand at one frame: only one of them can be seen.
void describeKeys(const refhost::Property& value, Description& ioDescription) {
  std::set<int> frames;
  for (const refhost::Key& key : value.mKeys.mElements) {
    if (frames.insert(key.mFrame).second) continue;
    ioDescription["faults"].add("value \"" + value.mName + "\" has two keys at frame " +
                                std::to_string(key.mFrame));
  }
}

void describeInstance(const refhost::Instance& instance, Description& ioDescription) {
  const double* s = instance.mScale;
  if (s[0] != 0 && s[1] != 0 && s[2] != 0) return;
  ioDescription["faults"].add("instance \"" + instance.mName + "\" has a scale of 0");
}

/// The manager finds the first instance of a scene alone as the parent of a walker.
void describeWalk(const refhost::Scene& scene, const refhost::Property& value,
                  Description& ioDescription) {
  const bool isWalk = value.mPropertyType == UxZel::kPropertyAnimatedWalk;
  if (!isWalk || value.mInstance == refhost::kNone) return;
  const auto& instances = scene.mInstances.mElements;
  const refhost::Instance& walker = instances[value.mInstance];
  if (UxZel::isNone(walker.mParent) || walker.mParent == instances[0].mIdentity.mUUID) return;
  ioDescription["notes"].add("instance \"" + walker.mName +
                             "\" walks beside its path: its parent is not the first instance");
}

Description describeScene(const std::string& file) {
  const refhost::Scene scene = readSceneFile(file);
  Description description = newDescription("scene");
  description["timeScale"] = scene.mSettings.mElements[0].mTimeScale;
  description["paths"] = scene.mPaths.mElements.size();
  description["objects"] = scene.mDefinitions.size();
  description["instances"] = scene.mInstances.mElements.size();
  description["values"] = Description::list();
  for (const auto& property : scene.mProperties) {
    description["values"].add(property.mName);
    if (property.mKeys.mElements.empty()) {
      description["faults"].add("value \"" + property.mName + "\" has no key");
    }
    describeKeys(property, description);
    describeWalk(scene, property, description);
  }
  for (const auto& instance : scene.mInstances.mElements) describeInstance(instance, description);
  for (const auto& definition : scene.mDefinitions) describeObject(definition, description);
  return description;
}

}  // namespace

Description describeFile(const std::string& file) {
  const std::string extension = std::filesystem::path(file).extension().string();
  if (extension == ".json") return describeScene(file);
  if (extension == ".obj") return describeMesh(file);
  // Models are described by the importer, which the command asks first.
  return describeAnimation(formats::readAnimationFile(file));
}

}  // namespace vexa::scene
