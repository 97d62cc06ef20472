#include "formats/glb_skin.h"

#include <optional>
#include <utility>

#include "formats/glb_arrays_internal.h"
#include "formats/glb_json_internal.h"
#include "formats/glb_materials_internal.h"
#include "formats/glb_shape_internal.h"

namespace vexa::formats {
namespace {

// So many transforms are gathered before they are written, channel by channel.
constexpr std::size_t kMostGathered = 1 << 13;

enum class Part { kTranslation, kRotation, kScale };

// One part of one node over all frames.
struct Channel {
  std::size_t mNode, mArray;
  Part mPart;
};

template <std::size_t N>
void putNumbers(JsonText& json, const char* name, const std::array<float, N>& values) {
  json << ",\"" << name << R"(":[)";
  for (std::size_t i = 0; i < N; ++i) json << (i > 0 ? "," : "") << values[i];
  json << "]";
}

void append(const GlbTransform& transform, Part part, std::vector<float>& ioNumbers) {
  const auto add = [&](const auto& values) {
    ioNumbers.insert(ioNumbers.end(), values.begin(), values.end());
  };
  if (part == Part::kTranslation) add(transform.mTranslation);
  if (part == Part::kRotation) add(transform.mRotation);
  if (part == Part::kScale) add(transform.mScale);
}

}  // namespace

// Where everything is in the file. The binary chunk: per mesh its positions, uvs, indices, joints,
// weights and inverse bind matrices; the times; an array per channel; the pictures. The nodes: per
// instance the mesh, the node that places it, its joints.
class GlbSkinWriter::Layout {
 public:
  Layout(const std::string& name, const std::vector<GlbSkinnedMesh>& meshes,
         std::vector<GlbSkinInstance> instances, std::size_t frameCount, double framesPerSecond);

  std::size_t nodes() const { return mNodes; }
  void writeFixedArrays(NewFile& file, const std::vector<GlbSkinnedMesh>& meshes) const;
  void writeJson(NewFile& file) const;
  // Frames from `first` on; `transforms` holds those of all nodes, frame after frame.
  void writeFrames(NewFile& file, std::size_t first,
                   const std::vector<GlbTransform>& transforms) const;

 private:
  void addMesh(const GlbSkinnedMesh& mesh);
  void addChannels();
  template <class T>
  void put(NewFile& file, std::size_t array, const std::vector<T>& values,
           std::size_t offset = 0) const;

  void putJson(JsonText& json) const;
  void putNodes(JsonText& json) const;
  void putMeshes(JsonText& json) const;
  void putSkins(JsonText& json) const;
  void putAnimation(JsonText& json) const;

  std::vector<GlbSkinInstance> mInstances;
  std::vector<GlbShape> mShapes;
  std::vector<std::string> mMeshNames;
  std::vector<std::size_t> mJointArrays;  // of each mesh: joints, weights, inverse bind matrices
  std::size_t mNodes = 0;                 // of all instances, without the meshes' own
  std::size_t mFrameCount;
  double mFramesPerSecond;
  std::size_t mTimes = 0;
  std::vector<Channel> mChannels;
  GlbMaterials mMaterials;
  GlbArrays mArrays;
  std::optional<GlbFrame> mFrame;
};

GlbSkinWriter::Layout::Layout(const std::string& name, const std::vector<GlbSkinnedMesh>& meshes,
                              std::vector<GlbSkinInstance> instances, std::size_t frameCount,
                              double framesPerSecond)
    : mInstances(std::move(instances)), mFrameCount(frameCount), mFramesPerSecond(framesPerSecond) {
  for (const GlbSkinnedMesh& mesh : meshes) addMesh(mesh);
  addChannels();
  mMaterials.addArrays(mArrays);
  mFrame.emplace(
      name, [this](JsonText& json) { putJson(json); }, mArrays.bytes());
}

void GlbSkinWriter::Layout::addMesh(const GlbSkinnedMesh& mesh) {
  GlbShape shape = shapeOf(mesh.mMesh);
  for (const auto& [id, indices] : shape.mIndicesByMaterial) {
    shape.mMaterials[id] = mMaterials.indexOf(mesh.mMesh, id);
  }
  addArrays(mArrays, shape);
  mJointArrays.push_back(mArrays.add(kVertexJoints, shape.mPoints.size()));
  mArrays.add(kVertexWeights, shape.mPoints.size());
  mArrays.add(kMatrices, mesh.mInverseBinds.size());
  mShapes.push_back(std::move(shape));
  mMeshNames.push_back(mesh.mMesh.mName);
}

void GlbSkinWriter::Layout::addChannels() {
  const auto last = float(double(mFrameCount - 1) / mFramesPerSecond);
  mTimes = mArrays.size();
  for (const GlbSkinInstance& instance : mInstances) {
    for (const GlbNode& node : instance.mNodes) {
      const bool isAnimated = node.mMoves || node.mTurns || node.mScales;
      if (isAnimated && mChannels.empty()) mArrays.add(kNumbers, mFrameCount, {0, last});
      const auto add = [&](bool isWanted, const GlbKind& kind, Part part) {
        if (isWanted) mChannels.push_back({mNodes, mArrays.add(kind, mFrameCount), part});
      };
      add(node.mMoves, kPlaces, Part::kTranslation);
      add(node.mTurns, kRotations, Part::kRotation);
      add(node.mScales, kPlaces, Part::kScale);
      ++mNodes;
    }
  }
}

template <class T>
void GlbSkinWriter::Layout::put(NewFile& file, std::size_t array, const std::vector<T>& values,
                                std::size_t offset) const {
  file.writeAt(mFrame->binaryAt() + mArrays.offsetOf(array) + offset, values.data(),
               values.size() * sizeof(T));
}

void GlbSkinWriter::Layout::writeFixedArrays(NewFile& file,
                                             const std::vector<GlbSkinnedMesh>& meshes) const {
  for (std::size_t m = 0; m < mShapes.size(); ++m) {
    writeArrays(file, mFrame->binaryAt(), mArrays, mShapes[m]);
    std::vector<std::array<std::uint16_t, 4>> joints;
    std::vector<std::array<float, 4>> weights;
    for (const std::uint32_t point : mShapes[m].mPoints) {
      joints.push_back(meshes[m].mInfluences[point].mJoints);
      weights.push_back(meshes[m].mInfluences[point].mWeights);
    }
    put(file, mJointArrays[m], joints);
    put(file, mJointArrays[m] + 1, weights);
    put(file, mJointArrays[m] + 2, meshes[m].mInverseBinds);
  }
  if (!mChannels.empty()) {
    std::vector<float> times;
    for (std::size_t k = 0; k < mFrameCount; ++k) {
      times.push_back(float(double(k) / mFramesPerSecond));
    }
    put(file, mTimes, times);
  }
  mMaterials.writeArrays(file, mFrame->binaryAt(), mArrays);
}

void GlbSkinWriter::Layout::writeFrames(NewFile& file, std::size_t first,
                                        const std::vector<GlbTransform>& transforms) const {
  std::vector<float> numbers;
  for (const Channel& channel : mChannels) {
    numbers.clear();
    for (std::size_t i = channel.mNode; i < transforms.size(); i += mNodes) {
      append(transforms[i], channel.mPart, numbers);
    }
    const std::size_t frames = transforms.size() / mNodes;
    put(file, channel.mArray, numbers, first * (numbers.size() / frames) * sizeof(float));
  }
}

void GlbSkinWriter::Layout::writeJson(NewFile& file) const {
  mFrame->write(file, [this](JsonText& json) { putJson(json); });
}

void GlbSkinWriter::Layout::putJson(JsonText& json) const {
  json << R"({"asset":{"version":"2.0","generator":"Vexa"},"scene":0)";
  putNodes(json);
  putMeshes(json);
  putSkins(json);
  mMaterials.putJson(json);
  if (!mChannels.empty()) putAnimation(json);
  json << R"(,"accessors":[)";
  mArrays.putAccessors(json);
  json << R"(],"bufferViews":[)";
  mArrays.putViews(json);
  json << R"(],"buffers":[{"byteLength":)" << mArrays.bytes() << "}]}";
}

void GlbSkinWriter::Layout::putNodes(JsonText& json) const {
  json << R"(,"scenes":[{"nodes":[)";
  std::size_t next = 0;
  for (const GlbSkinInstance& instance : mInstances) {
    json << (next > 0 ? "," : "") << next << "," << next + 1;
    next += 1 + instance.mNodes.size();
  }
  json << R"(]}],"nodes":[)";
  next = 0;
  for (std::size_t i = 0; i < mInstances.size(); ++i) {
    const GlbSkinInstance& instance = mInstances[i];
    json << (i > 0 ? "," : "") << R"({"name":)" << quoted(instance.mName) << R"(,"mesh":)"
         << instance.mMesh << R"(,"skin":)" << i << "}";
    for (std::size_t n = 0; n < instance.mNodes.size(); ++n) {
      const std::string ending = n == 0 ? " skeleton" : " joint " + std::to_string(n);
      const GlbTransform& first = instance.mNodes[n].mFirst;
      json << R"(,{"name":)" << quoted(instance.mName + ending);
      putNumbers(json, "translation", first.mTranslation);
      putNumbers(json, "rotation", first.mRotation);
      putNumbers(json, "scale", first.mScale);
      if (n == 0) {
        json << R"(,"children":[)";
        for (std::size_t c = 1; c < instance.mNodes.size(); ++c) {
          json << (c > 1 ? "," : "") << next + 1 + c;
        }
        json << "]";
      }
      json << "}";
    }
    next += 1 + instance.mNodes.size();
  }
  json << "]";
}

void GlbSkinWriter::Layout::putMeshes(JsonText& json) const {
  json << R"(,"meshes":[)";
  bool isFirst = true;
  for (std::size_t m = 0; m < mShapes.size(); ++m) {
    const auto putJoints = [&](JsonText& attributes) {
      attributes << R"(,"JOINTS_0":)" << mJointArrays[m] << R"(,"WEIGHTS_0":)"
                 << mJointArrays[m] + 1;
    };
    putMesh(json.next(isFirst), mShapes[m], mMeshNames[m], putJoints, [](JsonText&) {});
  }
  json << "]";
}

void GlbSkinWriter::Layout::putSkins(JsonText& json) const {
  json << R"(,"skins":[)";
  std::size_t next = 0;
  for (const GlbSkinInstance& instance : mInstances) {
    json << (next > 0 ? "," : "") << R"({"inverseBindMatrices":)"
         << mJointArrays[instance.mMesh] + 2 << R"(,"skeleton":)" << next + 1 << R"(,"joints":[)";
    for (std::size_t n = 1; n < instance.mNodes.size(); ++n) {
      json << (n > 1 ? "," : "") << next + 1 + n;
    }
    json << "]}";
    next += 1 + instance.mNodes.size();
  }
  json << "]";
}

void GlbSkinWriter::Layout::putAnimation(JsonText& json) const {
  json << R"(,"animations":[{"samplers":[)";
  bool isFirst = true;
  for (const Channel& channel : mChannels) {
    json.next(isFirst) << R"({"input":)" << mTimes << R"(,"output":)" << channel.mArray << "}";
  }
  // The nodes of an instance follow its mesh.
  std::vector<std::size_t> inFile;
  for (std::size_t i = 0; i < mInstances.size(); ++i) {
    for (std::size_t n = 0; n < mInstances[i].mNodes.size(); ++n) {
      inFile.push_back(inFile.size() + i + 1);
    }
  }
  json << R"(],"channels":[)";
  for (std::size_t c = 0; c < mChannels.size(); ++c) {
    constexpr const char* kPaths[] = {"translation", "rotation", "scale"};
    json << (c > 0 ? "," : "") << R"({"sampler":)" << c << R"(,"target":{"path":")"
         << kPaths[int(mChannels[c].mPart)] << R"(","node":)" << inFile[mChannels[c].mNode] << "}}";
  }
  json << "]}]";
}

GlbSkinWriter::GlbSkinWriter(NewFile& file, const std::string& name,
                             const std::vector<GlbSkinnedMesh>& meshes,
                             std::vector<GlbSkinInstance> instances, std::size_t frameCount,
                             double framesPerSecond)
    : mLayout(std::make_unique<Layout>(name, meshes, std::move(instances), frameCount,
                                       framesPerSecond)),
      mFile(file) {
  mLayout->writeFixedArrays(mFile, meshes);
}

GlbSkinWriter::~GlbSkinWriter() = default;

void GlbSkinWriter::writeFrame(const std::vector<GlbTransform>& nodes) {
  mGathered.insert(mGathered.end(), nodes.begin(), nodes.end());
  if (mGathered.size() + nodes.size() > kMostGathered) flush();
}

void GlbSkinWriter::flush() {
  if (mGathered.empty()) return;
  mLayout->writeFrames(mFile, mWritten, mGathered);
  mWritten += mGathered.size() / mLayout->nodes();
  mGathered.clear();
}

void GlbSkinWriter::finish() {
  flush();
  mLayout->writeJson(mFile);
}

}  // namespace vexa::formats
