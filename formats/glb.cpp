#include "formats/glb.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <tuple>

#include "formats/TemporaryFile.h"
#include "formats/finite.h"

namespace vexa::formats {
namespace {

using Float3 = Oru::TVector3D<float>;
using Float2 = Oru::TVector2D<float>;
using Bounds = std::array<float, 6>;  // lows, then highs

// Numbers that the format fixes.
constexpr int kFloat = 5126, kUnsignedInt = 5125;
constexpr int kVertexData = 34962, kIndexData = 34963, kOtherData = 0;
constexpr std::size_t kMostBytes = 0xFFFFFFFF;  // lengths are 32-bit
// The weights are one number per frame and target: more would not fit their 32-bit indices.
constexpr std::size_t kMostFrames = 65536;
constexpr std::size_t kHeaderBytes = 12, kChunkHeaderBytes = 8;

/// A mesh as glTF has it: a vertex is a point with one texture coordinate.
struct Shape {
  std::size_t mMesh = 0;               ///< which of the meshes
  std::vector<std::uint32_t> mPoints;  ///< the point of each vertex
  std::vector<Float2> mUvs;            ///< one per vertex, or empty
  std::map<unsigned int, std::vector<std::uint32_t>> mIndicesByMaterial;
  std::vector<Float3> mRest;
  std::size_t mFirstArray = 0;
};

Shape shapeOf(const MovingMesh& mesh) {
  Shape shape;
  const bool hasUvs = !mesh.mUvs.empty();
  std::map<std::tuple<std::uint32_t, float, float>, std::uint32_t> known;
  const auto vertexOf = [&](std::uint32_t point, Float2 uv) {
    if (!isFinite(uv)) uv = {};
    const auto next = std::uint32_t(shape.mPoints.size());
    const auto [place, isNew] = known.try_emplace({point, uv.x, uv.y}, next);
    if (isNew) {
      shape.mPoints.push_back(point);
      if (hasUvs) shape.mUvs.emplace_back(uv.x, 1 - uv.y);  // the format counts v downwards
    }
    return place->second;
  };
  for (std::size_t t = 0; t < mesh.mTriangles.size(); ++t) {
    const auto& corners = mesh.mTriangles[t];
    const auto uv = hasUvs ? mesh.mUvs[t] : Oru::TVector3D<Float2>();
    auto& indices = shape.mIndicesByMaterial[mesh.mMaterials[t]];
    for (const std::uint32_t vertex :
         {vertexOf(corners.x, uv.x), vertexOf(corners.y, uv.y), vertexOf(corners.z, uv.z)}) {
      indices.push_back(vertex);
    }
  }
  return shape;
}

/// The points of the vertices, from +Z up to +Y up: a quarter turn about x.
void turnInto(const Shape& shape, const MovingMesh::Points& points,
              std::vector<Float3>& outPositions) {
  outPositions.clear();
  for (const std::uint32_t point : shape.mPoints) {
    const Float3& p = points[point];
    outPositions.emplace_back(p.x, p.z, -p.y);
  }
}

Bounds boundsOf(const std::vector<Float3>& points) {
  Float3 low = points[0], high = points[0];
  for (const Float3& p : points) {
    low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
    high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
  }
  return {low.x, low.y, low.z, high.x, high.y, high.z};
}

/// JSON text on its way into a file, or only its length when there is none.
class JsonText {
 public:
  explicit JsonText(NewFile* file) : mFile(file) {}

  JsonText& operator<<(std::string_view text) {
    mBytes += text.size();
    if (mFile != nullptr) mFile->write(text);
    return *this;
  }
  JsonText& operator<<(std::size_t number) { return *this << std::to_string(number); }
  JsonText& operator<<(int number) { return *this << std::to_string(number); }
  /// Of one width whatever the number: the text's length is needed before the numbers are known.
  JsonText& operator<<(float number) {
    char text[24];
    std::fill(std::begin(text), std::end(text), ' ');
    std::to_chars(std::begin(text), std::end(text), double(number));
    return *this << std::string_view(text, sizeof(text));
  }
  /// A comma between elements.
  JsonText& next(bool& ioIsFirst) {
    if (!std::exchange(ioIsFirst, false)) *this << ",";
    return *this;
  }
  std::size_t bytes() const { return mBytes; }

 private:
  NewFile* mFile;
  std::size_t mBytes = 0;
};

std::string quoted(const std::string& text) {
  return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::size_t paddedTo4(std::size_t bytes) { return (bytes + 3) & ~std::size_t{3}; }

void checkPoints(const std::string& name, const MovingMesh::Points& points, const std::string& mesh,
                 std::size_t frame) {
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (isFinite(points[i])) continue;
    throw std::runtime_error(name + ": vertex " + std::to_string(i) + " of \"" + mesh +
                             "\" is no finite point in sampled frame " + std::to_string(frame) +
                             "; is it linked to a node?");
  }
}

}  // namespace

/// Where everything stands in the file, which is known before the first frame but for the bounds.
///
/// The binary chunk: per shape positions, uvs and one index list per material; then, if anything
/// moves, the times, the places and values of the weights that are 1; then per frame and shape the
/// offsets from the rest positions. Array i is accessor i and view i as far as the times.
class GlbWriter::Layout {
 public:
  Layout(const std::string& name, const std::vector<MovingMesh>& meshes, std::size_t frameCount,
         double framesPerSecond);

  const std::vector<Shape>& shapes() const { return mShapes; }
  const std::string& meshName(std::size_t mesh) const { return mMeshNames[mesh]; }
  std::size_t motions() const { return mShapes.empty() ? 0 : mFrameCount - 1; }
  /// Offset in the file of the moves of a shape in a frame from 1 on.
  std::size_t movesAt(std::size_t frame, std::size_t shape) const;
  void writeJson(NewFile* file, const std::vector<std::array<float, 6>>& bounds) const;
  void writeFixedArrays(NewFile& file) const;

 private:
  struct Array {
    std::size_t mOffset, mCount, mBytesEach;
    int mTarget, mComponentType;
    const char* mType;
  };

  void add(std::size_t mesh, Shape shape);
  void addArray(std::size_t count, std::size_t bytesEach, int target, int type, const char* name);
  std::size_t binaryAt() const { return kHeaderBytes + 2 * kChunkHeaderBytes + mJsonBytes; }
  std::size_t binaryBytes() const { return mFixedBytes + motions() * mBytesPerFrame; }
  template <class T>
  void put(NewFile& file, std::size_t array, const std::vector<T>& values) const;
  void writeMotion(NewFile& file) const;

  void putJson(JsonText& json, const std::vector<Bounds>& bounds) const;
  void putAccessors(JsonText& json, const std::vector<Bounds>& bounds) const;
  void putViews(JsonText& json) const;
  void putMesh(JsonText& json, std::size_t shape) const;
  void putMaterials(JsonText& json) const;
  void putAnimation(JsonText& json) const;
  void putNodes(JsonText& json) const;

  std::vector<std::string> mMeshNames;
  const std::size_t mFrameCount;
  const double mFramesPerSecond;
  std::vector<Shape> mShapes;
  std::vector<std::size_t> mOffsetInFrame;  ///< of the moves of each shape
  std::map<unsigned int, std::size_t> mMaterials;
  std::vector<unsigned int> mMaterialIds;
  std::vector<Array> mArrays;
  std::size_t mTimes = 0;  ///< its array
  std::size_t mFixedBytes = 0, mBytesPerFrame = 0, mJsonBytes = 0;
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
    Shape shape = shapeOf(mesh);
    turnInto(shape, mesh.mFrames[0], shape.mRest);
    add(mMeshNames.size(), std::move(shape));
    mMeshNames.push_back(mesh.mName);
  }
  mTimes = mArrays.size();
  if (motions() > 0) {
    addArray(mFrameCount, sizeof(float), kOtherData, kFloat, "SCALAR");
    addArray(motions(), sizeof(std::uint32_t), kOtherData, kUnsignedInt, nullptr);
    addArray(motions(), sizeof(float), kOtherData, kFloat, nullptr);
  }
  JsonText length(nullptr);
  putJson(length, std::vector<Bounds>(motions() * mShapes.size()));
  mJsonBytes = paddedTo4(length.bytes());
  const std::size_t all = binaryAt() + binaryBytes();
  if (all > kMostBytes) {
    throw std::runtime_error(name + ": the file would have " + std::to_string(all) +
                             " bytes, and the format ends at 4 GiB; write fewer frames");
  }
}

void GlbWriter::Layout::add(std::size_t mesh, Shape shape) {
  if (shape.mPoints.empty()) return;
  shape.mMesh = mesh;
  shape.mFirstArray = mArrays.size();
  mOffsetInFrame.push_back(mBytesPerFrame);
  mBytesPerFrame += shape.mPoints.size() * sizeof(Float3);
  addArray(shape.mPoints.size(), sizeof(Float3), kVertexData, kFloat, "VEC3");
  if (!shape.mUvs.empty()) {
    addArray(shape.mUvs.size(), sizeof(Float2), kVertexData, kFloat, "VEC2");
  }
  for (const auto& [material, indices] : shape.mIndicesByMaterial) {
    if (mMaterials.try_emplace(material, mMaterials.size()).second) {
      mMaterialIds.push_back(material);
    }
    addArray(indices.size(), sizeof(std::uint32_t), kIndexData, kUnsignedInt, "SCALAR");
  }
  mShapes.push_back(std::move(shape));
}

void GlbWriter::Layout::addArray(std::size_t count, std::size_t bytesEach, int target, int type,
                                 const char* name) {
  mArrays.push_back({mFixedBytes, count, bytesEach, target, type, name});
  mFixedBytes += count * bytesEach;
}

std::size_t GlbWriter::Layout::movesAt(std::size_t frame, std::size_t shape) const {
  return binaryAt() + mFixedBytes + (frame - 1) * mBytesPerFrame + mOffsetInFrame[shape];
}

template <class T>
void GlbWriter::Layout::put(NewFile& file, std::size_t array, const std::vector<T>& values) const {
  file.writeAt(binaryAt() + mArrays[array].mOffset, values.data(), values.size() * sizeof(T));
}

void GlbWriter::Layout::writeFixedArrays(NewFile& file) const {
  for (const Shape& shape : mShapes) {
    std::size_t array = shape.mFirstArray;
    put(file, array++, shape.mRest);
    if (!shape.mUvs.empty()) put(file, array++, shape.mUvs);
    for (const auto& [material, indices] : shape.mIndicesByMaterial) put(file, array++, indices);
  }
  if (motions() > 0) writeMotion(file);
}

// In frame k the weight of target k - 1 is 1; all others are the zeros of a sparse accessor.
void GlbWriter::Layout::writeMotion(NewFile& file) const {
  std::vector<float> times;
  std::vector<std::uint32_t> ones;
  for (std::size_t k = 0; k < mFrameCount; ++k) {
    times.push_back(float(double(k) / mFramesPerSecond));
    if (k > 0) ones.push_back(std::uint32_t(k * motions() + k - 1));
  }
  put(file, mTimes, times);
  put(file, mTimes + 1, ones);
  put(file, mTimes + 2, std::vector<float>(motions(), 1.0f));
}

void GlbWriter::Layout::writeJson(NewFile* file, const std::vector<Bounds>& bounds) const {
  const auto word = [file](std::size_t number) {
    const auto value = std::uint32_t(number);
    file->write({reinterpret_cast<const char*>(&value), sizeof(value)});
  };
  file->write("glTF");
  word(2);
  word(binaryBytes() > 0 ? binaryAt() + binaryBytes() : binaryAt() - kChunkHeaderBytes);
  word(mJsonBytes);
  file->write("JSON");
  JsonText json(file);
  putJson(json, bounds);
  file->write(std::string(mJsonBytes - json.bytes(), ' '));
  if (binaryBytes() == 0) return;
  word(binaryBytes());
  file->write({"BIN", 4});  // with its final zero
}

void GlbWriter::Layout::putJson(JsonText& json, const std::vector<Bounds>& bounds) const {
  json << R"({"asset":{"version":"2.0","generator":"Vexa"},"scene":0)";
  if (mShapes.empty()) {
    json << R"(,"scenes":[{}]})";
    return;
  }
  putNodes(json);
  json << R"(,"meshes":[)";
  bool isFirst = true;
  for (std::size_t s = 0; s < mShapes.size(); ++s) {
    json.next(isFirst);
    putMesh(json, s);
  }
  json << "]";
  putMaterials(json);
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

void GlbWriter::Layout::putMesh(JsonText& json, std::size_t shape) const {
  const Shape& each = mShapes[shape];
  const std::size_t uvs = each.mUvs.empty() ? 0 : 1;
  std::size_t indices = each.mFirstArray + 1 + uvs;
  json << R"({"name":)" << quoted(mMeshNames[each.mMesh]) << R"(,"primitives":[)";
  bool isFirst = true;
  for (const auto& [material, list] : each.mIndicesByMaterial) {
    json.next(isFirst) << R"({"attributes":{"POSITION":)" << each.mFirstArray;
    if (uvs > 0) json << R"(,"TEXCOORD_0":)" << each.mFirstArray + 1;
    json << R"(},"indices":)" << indices++ << R"(,"material":)" << mMaterials.at(material);
    if (motions() > 0) json << R"(,"targets":[)";
    for (std::size_t k = 0; k < motions(); ++k) {
      // The times and the weights are the two accessors before those of the targets.
      json << (k > 0 ? "," : "") << R"({"POSITION":)" << mTimes + 2 + k * mShapes.size() + shape
           << "}";
    }
    json << (motions() > 0 ? "]}" : "}");
  }
  json << "]}";
}

// One glTF material per material id, in shades that tell them apart.
void GlbWriter::Layout::putMaterials(JsonText& json) const {
  constexpr const char* kShades[] = {"0.72,0.60,0.46", "0.45,0.60,0.72", "0.62,0.70,0.45",
                                     "0.75,0.50,0.50", "0.60,0.52,0.70", "0.70,0.70,0.70"};
  json << R"(,"materials":[)";
  bool isFirst = true;
  for (const unsigned int id : mMaterialIds) {
    json.next(isFirst) << R"({"name":"material_)" << std::size_t{id}
                       << R"(","doubleSided":true,"pbrMetallicRoughness":{"baseColorFactor":[)"
                       << kShades[id % std::size(kShades)] << R"(,1],"metallicFactor":0}})";
  }
  json << "]";
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

void GlbWriter::Layout::putAccessors(JsonText& json, const std::vector<Bounds>& bounds) const {
  const auto putBounds = [&json](const Bounds& b) {
    json << R"(,"min":[)" << b[0] << "," << b[1] << "," << b[2] << R"(],"max":[)" << b[3] << ","
         << b[4] << "," << b[5] << "]";
  };
  json << R"(,"accessors":[)";
  bool isFirst = true;
  for (std::size_t a = 0; a < mArrays.size(); ++a) {
    const Array& array = mArrays[a];
    if (array.mType == nullptr) continue;
    json.next(isFirst) << R"({"bufferView":)" << a << R"(,"componentType":)" << array.mComponentType
                       << R"(,"count":)" << array.mCount << R"(,"type":")" << array.mType << "\"";
    for (const Shape& shape : mShapes) {
      if (shape.mFirstArray == a) putBounds(boundsOf(shape.mRest));
    }
    if (motions() > 0 && a == mTimes) {
      json << R"(,"min":[0],"max":[)" << float(double(motions()) / mFramesPerSecond) << "]";
    }
    json << "}";
  }
  if (motions() > 0) {
    json << R"(,{"componentType":5126,"type":"SCALAR","count":)" << mFrameCount * motions()
         << R"(,"sparse":{"count":)" << motions()
         << R"(,"indices":{"componentType":5125,"bufferView":)" << mTimes + 1
         << R"(},"values":{"bufferView":)" << mTimes + 2 << "}}}";
  }
  for (std::size_t i = 0; i < bounds.size(); ++i) {
    json << R"(,{"bufferView":)" << mArrays.size() + i << R"(,"componentType":5126,"count":)"
         << mShapes[i % mShapes.size()].mPoints.size() << R"(,"type":"VEC3")";
    putBounds(bounds[i]);
    json << "}";
  }
  json << "]";
}

void GlbWriter::Layout::putViews(JsonText& json) const {
  const auto putView = [&json](std::size_t offset, std::size_t bytes, int target) {
    json << R"({"buffer":0,"byteOffset":)" << offset << R"(,"byteLength":)" << bytes;
    if (target != kOtherData) json << R"(,"target":)" << target;
    json << "}";
  };
  json << R"(,"bufferViews":[)";
  bool isFirst = true;
  for (const Array& array : mArrays) {
    json.next(isFirst);
    putView(array.mOffset, array.mCount * array.mBytesEach, array.mTarget);
  }
  for (std::size_t k = 0; k < motions(); ++k) {
    for (std::size_t s = 0; s < mShapes.size(); ++s) {
      json.next(isFirst);
      putView(mFixedBytes + k * mBytesPerFrame + mOffsetInFrame[s],
              mShapes[s].mPoints.size() * sizeof(Float3), kVertexData);
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
  const std::vector<Shape>& shapes = mLayout->shapes();
  std::vector<Float3> moves;
  for (std::size_t s = 0; s < shapes.size(); ++s) {
    checkPoints(mName, points[shapes[s].mMesh], mLayout->meshName(shapes[s].mMesh), frame);
    turnInto(shapes[s], points[shapes[s].mMesh], moves);
    for (std::size_t i = 0; i < moves.size(); ++i) moves[i] = moves[i] - shapes[s].mRest[i];
    mBounds[(frame - 1) * shapes.size() + s] = boundsOf(moves);
    mFile.writeAt(mLayout->movesAt(frame, s), moves.data(), moves.size() * sizeof(Float3));
  }
}

void GlbWriter::finish() { mLayout->writeJson(&mFile, mBounds); }

void writeGlb(const std::string& path, const std::vector<MovingMesh>& meshes,
              double framesPerSecond) {
  TemporaryFile file(path);
  const std::size_t frames = meshes.empty() ? 1 : meshes[0].mFrames.size();
  GlbWriter writer(file.file(), path, meshes, frames, framesPerSecond);
  for (std::size_t frame = 1; frame < frames; ++frame) {
    std::vector<MovingMesh::Points> points;
    for (const MovingMesh& mesh : meshes) points.push_back(mesh.mFrames[frame]);
    writer.writeFrame(frame, points);
  }
  writer.finish();
  file.commit();
}

}  // namespace vexa::formats
