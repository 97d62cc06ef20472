#include "formats/glb.h"

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <utility>

#include "formats/TemporaryFile.h"
#include "formats/glb_arrays_internal.h"
#include "formats/glb_json_internal.h"
#include "formats/glb_materials_internal.h"
#include "formats/glb_shape_internal.h"

namespace vexa::formats {
namespace {

constexpr GlbKind kWords{0, nullptr, 4, 0};  // what a sparse accessor is made of
// The weights are one number per frame and target: more would not fit their 32-bit indices.
constexpr std::size_t kMostFrames = 65536;

}  // namespace

// Where everything is in the file, which is known before the first frame except for the bounds.
//
// The binary chunk: per shape positions, uvs and one index list per material; then, if anything
// moves, the times, the places and values of the weights that are 1; the pictures; then per frame
// and shape the offsets from the rest positions.
class GlbWriter::Layout {
 public:
  Layout(const std::string& name, const std::vector<MovingMesh>& meshes, std::size_t frameCount,
         double framesPerSecond);

  const std::vector<GlbShape>& shapes() const { return mShapes; }
  const std::string& meshName(std::size_t mesh) const { return mMeshNames[mesh]; }
  std::size_t motions() const { return mShapes.empty() ? 0 : mFrameCount - 1; }
  // Offset in the file of the moves of a shape in a frame from 1 on.
  std::size_t movesAt(std::size_t frame, std::size_t shape) const;
  void writeJson(NewFile& file, const std::vector<GlbBounds>& bounds) const;
  void writeFixedArrays(NewFile& file) const;

 private:
  void add(std::size_t mesh, GlbShape shape);
  std::size_t binaryBytes() const { return mArrays.bytes() + motions() * mBytesPerFrame; }
  template <class T>
  void put(NewFile& file, std::size_t array, const std::vector<T>& values) const;
  void writeMotion(NewFile& file) const;

  void putJson(JsonText& json, const std::vector<GlbBounds>& bounds) const;
  void putAccessors(JsonText& json, const std::vector<GlbBounds>& bounds) const;
  void putViews(JsonText& json) const;
  void putTargets(JsonText& json, std::size_t shape) const;
  void putAnimation(JsonText& json) const;
  void putNodes(JsonText& json) const;

  std::vector<std::string> mMeshNames;
  const std::size_t mFrameCount;
  const double mFramesPerSecond;
  std::vector<GlbShape> mShapes;
  std::vector<std::size_t> mOffsetInFrame;  // of the moves of each shape
  GlbMaterials mMaterials;
  GlbArrays mArrays;
  std::size_t mTimes = 0;  // its array
  std::size_t mBytesPerFrame = 0;
  std::optional<GlbFrame> mFrame;
};

GlbWriter::Layout::Layout(const std::string& name, const std::vector<MovingMesh>& meshes,
                          std::size_t frameCount, double framesPerSecond)
    : mFrameCount(frameCount), mFramesPerSecond(framesPerSecond) {
  if (frameCount > kMostFrames) {
    throw std::runtime_error(name + ": " + std::to_string(frameCount) +
                             " frames are more than one file can hold, which is " +
                             std::to_string(kMostFrames));
  }
  for (const MovingMesh& mesh : meshes) {
    if (mesh.mFrames.empty()) throw std::runtime_error(name + ": there is no frame to write");
    checkPoints(name, mesh.mFrames[0], mesh.mName, 0);
    GlbShape shape = shapeOf(mesh);
    for (const auto& [id, indices] : shape.mIndicesByMaterial) {
      shape.mMaterials[id] = mMaterials.indexOf(mesh, id);
    }
    add(mMeshNames.size(), std::move(shape));
    mMeshNames.push_back(mesh.mName);
  }
  mTimes = mArrays.size();
  if (motions() > 0) {
    mArrays.add(kNumbers, mFrameCount, {0, float(double(motions()) / mFramesPerSecond)});
    mArrays.add(kWords, motions());
    mArrays.add(kWords, motions());
  }
  mMaterials.addArrays(mArrays);
  const std::vector<GlbBounds> unknown(motions() * mShapes.size());
  mFrame.emplace(
      name, [&](JsonText& json) { putJson(json, unknown); }, binaryBytes());
}

void GlbWriter::Layout::add(std::size_t mesh, GlbShape shape) {
  if (shape.mPoints.empty()) return;
  shape.mMesh = mesh;
  mOffsetInFrame.push_back(mBytesPerFrame);
  mBytesPerFrame += shape.mPoints.size() * kVertexPlaces.mBytesEach;
  addArrays(mArrays, shape);
  mShapes.push_back(std::move(shape));
}

std::size_t GlbWriter::Layout::movesAt(std::size_t frame, std::size_t shape) const {
  return mFrame->binaryAt() + mArrays.bytes() + (frame - 1) * mBytesPerFrame +
         mOffsetInFrame[shape];
}

template <class T>
void GlbWriter::Layout::put(NewFile& file, std::size_t array, const std::vector<T>& values) const {
  file.writeAt(mFrame->binaryAt() + mArrays.offsetOf(array), values.data(),
               values.size() * sizeof(T));
}

void GlbWriter::Layout::writeFixedArrays(NewFile& file) const {
  for (const GlbShape& shape : mShapes) writeArrays(file, mFrame->binaryAt(), mArrays, shape);
  if (motions() > 0) writeMotion(file);
  mMaterials.writeArrays(file, mFrame->binaryAt(), mArrays);
}

// In frame k the weight of target k - 1 is 1; all others are the zeros of a sparse accessor.
void GlbWriter::Layout::writeMotion(NewFile& file) const {
  std::vector<float> times;
  // All weights are frameCount x motions numbers, nearly all 0. The sparse accessor states the ones
  // alone, which keeps the file from growing with the square of the frames:
  //
  //            target 0  1  2
  //   frame 0         0  0  0
  //   frame 1         1  0  0     the one is at index 3
  //   frame 2         0  1  0                         7
  //   frame 3         0  0  1                         11
  std::vector<std::uint32_t> ones;
  for (std::size_t k = 0; k < mFrameCount; ++k) {
    times.push_back(float(double(k) / mFramesPerSecond));
    if (k > 0) ones.push_back(std::uint32_t(k * motions() + k - 1));
  }
  put(file, mTimes, times);
  put(file, mTimes + 1, ones);
  put(file, mTimes + 2, std::vector<float>(motions(), 1.0f));
}

void GlbWriter::Layout::writeJson(NewFile& file, const std::vector<GlbBounds>& bounds) const {
  mFrame->write(file, [&](JsonText& json) { putJson(json, bounds); });
}

void GlbWriter::Layout::putJson(JsonText& json, const std::vector<GlbBounds>& bounds) const {
  json << R"({"asset":{"version":"2.0","generator":"Vexa"},"scene":0)";
  if (mShapes.empty()) {
    json << R"(,"scenes":[{}]})";
    return;
  }
  putNodes(json);
  json << R"(,"meshes":[)";
  bool isFirst = true;
  for (std::size_t s = 0; s < mShapes.size(); ++s) {
    putMesh(
        json.next(isFirst), mShapes[s], mMeshNames[mShapes[s].mMesh], [](JsonText&) {},
        [&](JsonText& primitive) { putTargets(primitive, s); });
  }
  json << "]";
  mMaterials.putJson(json);
  if (motions() > 0) putAnimation(json);
  putAccessors(json, bounds);
  putViews(json);
  json << R"(,"buffers":[{"byteLength":)" << binaryBytes() << "}]}";
}

void GlbWriter::Layout::putNodes(JsonText& json) const {
  json << R"(,"scenes":[{"nodes":[)";
  bool isFirst = true;
  for (std::size_t s = 0; s < mShapes.size(); ++s) json.next(isFirst) << s;
  json << R"(]}],"nodes":[)";
  isFirst = true;
  for (std::size_t s = 0; s < mShapes.size(); ++s) {
    json.next(isFirst) << R"({"name":)" << quoted(mMeshNames[mShapes[s].mMesh]) << R"(,"mesh":)"
                       << s << "}";
  }
  json << "]";
}

void GlbWriter::Layout::putTargets(JsonText& json, std::size_t shape) const {
  for (std::size_t k = 0; k < motions(); ++k) {
    // The times and the weights are the two accessors before those of the targets.
    json << (k > 0 ? "," : R"(,"targets":[)") << R"({"POSITION":)"
         << mTimes + 2 + k * mShapes.size() + shape << "}";
  }
  if (motions() > 0) json << "]";
}

void GlbWriter::Layout::putAnimation(JsonText& json) const {
  json << R"(,"animations":[{"samplers":[{"interpolation":"LINEAR","input":)" << mTimes
       << R"(,"output":)" << mTimes + 1 << R"(}],"channels":[)";
  bool isFirst = true;
  for (std::size_t s = 0; s < mShapes.size(); ++s) {
    json.next(isFirst) << R"({"sampler":0,"target":{"path":"weights","node":)" << s << "}}";
  }
  json << "]}]";
}

void GlbWriter::Layout::putAccessors(JsonText& json, const std::vector<GlbBounds>& bounds) const {
  // In this order: the arrays, the weights (which have no view of their own), the moves frame by
  // frame. putTargets and putAnimation count on it.
  json << R"(,"accessors":[)";
  mArrays.putAccessors(json);
  if (motions() > 0) {
    json << R"(,{"componentType":5126,"type":"SCALAR","count":)" << mFrameCount * motions()
         << R"(,"sparse":{"count":)" << motions()
         << R"(,"indices":{"componentType":5125,"bufferView":)" << mTimes + 1
         << R"(},"values":{"bufferView":)" << mTimes + 2 << "}}}";
  }
  for (std::size_t i = 0; i < bounds.size(); ++i) {
    json << R"(,{"bufferView":)" << mArrays.size() + i << R"(,"componentType":5126,"count":)"
         << mShapes[i % mShapes.size()].mPoints.size() << R"(,"type":"VEC3")";
    putBounds(json, bounds[i].data(), bounds[i].size());
    json << "}";
  }
  json << "]";
}

void GlbWriter::Layout::putViews(JsonText& json) const {
  json << R"(,"bufferViews":[)";
  mArrays.putViews(json);
  for (std::size_t k = 0; k < motions(); ++k) {
    for (std::size_t s = 0; s < mShapes.size(); ++s) {
      json << ",";
      putView(json, mArrays.bytes() + k * mBytesPerFrame + mOffsetInFrame[s],
              mShapes[s].mPoints.size() * kVertexPlaces.mBytesEach, kVertexPlaces.mTarget);
    }
  }
  json << "]";
}

GlbWriter::GlbWriter(NewFile& file, std::string name, const std::vector<MovingMesh>& meshes,
                     std::size_t frameCount, double framesPerSecond)
    : mLayout(std::make_unique<Layout>(name, meshes, frameCount, framesPerSecond)),
      mFile(file),
      mName(std::move(name)),
      mBounds(mLayout->motions() * mLayout->shapes().size()) {
  mLayout->writeFixedArrays(mFile);
}

GlbWriter::~GlbWriter() = default;

void GlbWriter::writeFrame(std::size_t frame, const std::vector<MovingMesh::Points>& points) {
  const std::vector<GlbShape>& shapes = mLayout->shapes();
  MovingMesh::Points moves;
  for (std::size_t s = 0; s < shapes.size(); ++s) {
    checkPoints(mName, points[shapes[s].mMesh], mLayout->meshName(shapes[s].mMesh), frame);
    turnInto(shapes[s], points[shapes[s].mMesh], moves);
    for (std::size_t i = 0; i < moves.size(); ++i) moves[i] = moves[i] - shapes[s].mRest[i];
    mBounds[(frame - 1) * shapes.size() + s] = boundsOf(moves);
    mFile.writeAt(mLayout->movesAt(frame, s), moves.data(),
                  moves.size() * kVertexPlaces.mBytesEach);
  }
}

void GlbWriter::finish() { mLayout->writeJson(mFile, mBounds); }

void writeGlb(const std::string& path, const std::vector<MovingMesh>& meshes,
              double framesPerSecond) {
  TemporaryFile file(path);
  const std::size_t frames = meshes.empty() ? 1 : meshes[0].mFrames.size();
  GlbWriter writer(file.file(), path, meshes, frames, framesPerSecond);
  for (std::size_t frame = 1; frame < frames; ++frame) {
    std::vector<MovingMesh::Points> points;
    points.reserve(meshes.size());
    for (const MovingMesh& mesh : meshes) points.push_back(mesh.mFrames[frame]);
    writer.writeFrame(frame, points);
  }
  writer.finish();
  file.commit();
}

}  // namespace vexa::formats
