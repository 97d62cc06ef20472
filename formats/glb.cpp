#include "formats/glb.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <sstream>
#include <stdexcept>
#include <tuple>

#include "formats/finite.h"
#include "formats/tinygltf_internal.h"
#include "formats/write_file.h"

namespace vexa::formats {
namespace {

using Vec3 = Oru::TVector3D<float>;

/// The corners of a mesh as glTF has them: a vertex is a point with one texture coordinate.
struct Vertices {
  std::vector<std::uint32_t> mPoints;       ///< the point of each vertex
  std::vector<Oru::TVector2D<float>> mUvs;  ///< one per vertex, or empty
  std::map<unsigned int, std::vector<std::uint32_t>> mIndicesByMaterial;
};

Vertices splitByUv(const MovingMesh& mesh) {
  Vertices vertices;
  const bool hasUvs = !mesh.mUvs.empty();
  std::map<std::tuple<std::uint32_t, float, float>, std::uint32_t> known;
  const auto vertexOf = [&](std::uint32_t point, Oru::TVector2D<float> uv) {
    if (!isFinite(uv)) uv = {};
    const auto next = static_cast<std::uint32_t>(vertices.mPoints.size());
    const auto [place, isNew] = known.try_emplace({point, uv.x, uv.y}, next);
    if (isNew) {
      vertices.mPoints.push_back(point);
      if (hasUvs) vertices.mUvs.push_back(uv);
    }
    return place->second;
  };
  for (std::size_t t = 0; t < mesh.mTriangles.size(); ++t) {
    const auto& corners = mesh.mTriangles[t];
    const auto uv = hasUvs ? mesh.mUvs[t] : Oru::TVector3D<Oru::TVector2D<float>>();
    auto& indices = vertices.mIndicesByMaterial[mesh.mMaterials[t]];
    for (const std::uint32_t vertex :
         {vertexOf(corners.x, uv.x), vertexOf(corners.y, uv.y), vertexOf(corners.z, uv.z)}) {
      indices.push_back(vertex);
    }
  }
  return vertices;
}

/// From +Z up to +Y up: a quarter turn about x.
Vec3 turned(const Vec3& p) { return {p.x, p.z, -p.y}; }

/// Fills a glTF model: one buffer, one view and one accessor per array.
class GlbBuilder {
 public:
  explicit GlbBuilder(double framesPerSecond) : mFramesPerSecond(framesPerSecond) {
    mModel.asset.version = "2.0";
    mModel.asset.generator = "Vexa";
    mModel.buffers.emplace_back();
    mModel.scenes.emplace_back();
    mModel.defaultScene = 0;
  }

  void add(const MovingMesh& mesh) {
    const Vertices vertices = splitByUv(mesh);
    if (vertices.mPoints.empty()) return;
    tinygltf::Primitive shape;
    shape.mode = TINYGLTF_MODE_TRIANGLES;
    shape.attributes["POSITION"] = addPositions(positionsOf(mesh, vertices, 0));
    if (!vertices.mUvs.empty()) shape.attributes["TEXCOORD_0"] = addUvs(vertices.mUvs);
    for (std::size_t frame = 1; frame < mesh.mFrames.size(); ++frame) {
      shape.targets.push_back({{"POSITION", addPositions(movesOf(mesh, vertices, frame))}});
    }
    tinygltf::Mesh shaped;
    shaped.name = mesh.mName;
    shaped.weights.assign(mesh.mFrames.size() - 1, 0.0);
    for (const auto& [material, indices] : vertices.mIndicesByMaterial) {
      shape.indices = addIndices(indices);
      shape.material = materialOf(material);
      shaped.primitives.push_back(shape);
    }
    addNode(mesh, std::move(shaped));
  }

  std::string bytes() {
    std::ostringstream stream;
    tinygltf::TinyGLTF().WriteGltfSceneToStream(&mModel, stream, false, true);
    return stream.str();
  }

 private:
  static std::vector<Vec3> positionsOf(const MovingMesh& mesh, const Vertices& vertices,
                                       std::size_t frame) {
    std::vector<Vec3> positions;
    for (const std::uint32_t point : vertices.mPoints) {
      positions.push_back(turned(mesh.mFrames[frame][point]));
    }
    return positions;
  }

  static std::vector<Vec3> movesOf(const MovingMesh& mesh, const Vertices& vertices,
                                   std::size_t frame) {
    std::vector<Vec3> moves = positionsOf(mesh, vertices, frame);
    const std::vector<Vec3> rest = positionsOf(mesh, vertices, 0);
    for (std::size_t i = 0; i < moves.size(); ++i) moves[i] = moves[i] - rest[i];
    return moves;
  }

  template <class T>
  int addAccessor(const std::vector<T>& values, int type, int componentType, std::size_t count,
                  int target) {
    std::vector<unsigned char>& data = mModel.buffers[0].data;
    tinygltf::BufferView view;
    view.buffer = 0;
    view.byteOffset = data.size();
    view.byteLength = values.size() * sizeof(T);
    view.target = target;
    data.resize(data.size() + view.byteLength);
    if (!values.empty()) std::memcpy(&data[view.byteOffset], values.data(), view.byteLength);
    mModel.bufferViews.push_back(view);
    tinygltf::Accessor accessor;
    accessor.bufferView = static_cast<int>(mModel.bufferViews.size()) - 1;
    accessor.componentType = componentType;
    accessor.type = type;
    accessor.count = count;
    mModel.accessors.push_back(accessor);
    return static_cast<int>(mModel.accessors.size()) - 1;
  }

  int addPositions(const std::vector<Vec3>& positions) {
    const int index = addAccessor(positions, TINYGLTF_TYPE_VEC3, TINYGLTF_COMPONENT_TYPE_FLOAT,
                                  positions.size(), TINYGLTF_TARGET_ARRAY_BUFFER);
    Vec3 low = positions[0], high = positions[0];
    for (const Vec3& p : positions) {
      low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
      high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
    }
    mModel.accessors.back().minValues = {double(low.x), double(low.y), double(low.z)};
    mModel.accessors.back().maxValues = {double(high.x), double(high.y), double(high.z)};
    return index;
  }

  int addUvs(std::vector<Oru::TVector2D<float>> uvs) {
    for (auto& uv : uvs) uv.y = 1 - uv.y;  // the format counts v downwards
    return addAccessor(uvs, TINYGLTF_TYPE_VEC2, TINYGLTF_COMPONENT_TYPE_FLOAT, uvs.size(),
                       TINYGLTF_TARGET_ARRAY_BUFFER);
  }

  int addIndices(const std::vector<std::uint32_t>& indices) {
    return addAccessor(indices, TINYGLTF_TYPE_SCALAR, TINYGLTF_COMPONENT_TYPE_UNSIGNED_INT,
                       indices.size(), TINYGLTF_TARGET_ELEMENT_ARRAY_BUFFER);
  }

  /// One glTF material per material id, in shades that tell them apart.
  int materialOf(unsigned int id) {
    const auto [place, isNew] = mMaterials.try_emplace(id, static_cast<int>(mMaterials.size()));
    if (isNew) {
      constexpr double kShades[][3] = {{0.72, 0.60, 0.46}, {0.45, 0.60, 0.72}, {0.62, 0.70, 0.45},
                                       {0.75, 0.50, 0.50}, {0.60, 0.52, 0.70}, {0.70, 0.70, 0.70}};
      const auto& shade = kShades[id % std::size(kShades)];
      tinygltf::Material material;
      material.name = "material_" + std::to_string(id);
      material.pbrMetallicRoughness.baseColorFactor = {shade[0], shade[1], shade[2], 1};
      material.pbrMetallicRoughness.metallicFactor = 0;
      material.doubleSided = true;
      mModel.materials.push_back(material);
    }
    return place->second;
  }

  void addNode(const MovingMesh& mesh, tinygltf::Mesh shaped) {
    mModel.meshes.push_back(std::move(shaped));
    tinygltf::Node node;
    node.name = mesh.mName;
    node.mesh = static_cast<int>(mModel.meshes.size()) - 1;
    mModel.nodes.push_back(node);
    const int nodeIndex = static_cast<int>(mModel.nodes.size()) - 1;
    mModel.scenes[0].nodes.push_back(nodeIndex);
    if (mesh.mFrames.size() > 1) addMotion(mesh.mFrames.size(), nodeIndex);
  }

  /// Frame k has the weight 1 for target k - 1 and 0 for all others.
  void addMotion(std::size_t frames, int node) {
    std::vector<float> times(frames), weights(frames * (frames - 1), 0.0f);
    for (std::size_t k = 0; k < frames; ++k) {
      times[k] = static_cast<float>(double(k) / mFramesPerSecond);
      if (k > 0) weights[k * (frames - 1) + k - 1] = 1;
    }
    if (mModel.animations.empty()) mModel.animations.emplace_back();
    tinygltf::AnimationSampler sampler;
    sampler.input =
        addAccessor(times, TINYGLTF_TYPE_SCALAR, TINYGLTF_COMPONENT_TYPE_FLOAT, frames, 0);
    mModel.accessors.back().minValues = {double(times.front())};
    mModel.accessors.back().maxValues = {double(times.back())};
    sampler.output = addAccessor(weights, TINYGLTF_TYPE_SCALAR, TINYGLTF_COMPONENT_TYPE_FLOAT,
                                 weights.size(), 0);
    sampler.interpolation = "LINEAR";
    auto& animation = mModel.animations[0];
    animation.samplers.push_back(sampler);
    tinygltf::AnimationChannel channel;
    channel.sampler = static_cast<int>(animation.samplers.size()) - 1;
    channel.target_node = node;
    channel.target_path = "weights";
    animation.channels.push_back(channel);
  }

  const double mFramesPerSecond;
  tinygltf::Model mModel;
  std::map<unsigned int, int> mMaterials;
};

void checkMesh(const std::string& path, const MovingMesh& mesh) {
  if (mesh.mFrames.empty()) throw std::runtime_error(path + ": there is no frame to write");
  for (std::size_t frame = 0; frame < mesh.mFrames.size(); ++frame) {
    for (std::size_t i = 0; i < mesh.mFrames[frame].size(); ++i) {
      const Vec3& p = mesh.mFrames[frame][i];
      if (isFinite(p)) continue;
      throw std::runtime_error(path + ": vertex " + std::to_string(i) + " of \"" + mesh.mName +
                               "\" is no finite point in sampled frame " + std::to_string(frame) +
                               "; is it linked to a node?");
    }
  }
}

}  // namespace

void writeGlb(const std::string& path, const std::vector<MovingMesh>& meshes,
              double framesPerSecond) {
  GlbBuilder builder(framesPerSecond);
  for (const MovingMesh& mesh : meshes) {
    checkMesh(path, mesh);
    builder.add(mesh);
  }
  writeFile(path, builder.bytes());
}

}  // namespace vexa::formats
