#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <stdexcept>
#include <tuple>

#include "importer/gltf_numbers_internal.h"
#include "importer/gltf_parts_internal.h"

namespace vexa::importer {

namespace {

// Which of the vertices make triangles, by the primitive's mode.
std::vector<std::array<std::size_t, 3>> cornersOf(int mode, std::size_t count) {
  std::vector<std::array<std::size_t, 3>> corners;
  if (mode == TINYGLTF_MODE_TRIANGLES) {
    for (std::size_t i = 0; i + 2 < count; i += 3) corners.push_back({i, i + 1, i + 2});
  } else if (mode == TINYGLTF_MODE_TRIANGLE_STRIP) {
    for (std::size_t i = 0; i + 2 < count; ++i) {
      // Every second triangle of a strip turns the other way:  (0 1 2) (1 3 2) (2 3 4) ...
      corners.push_back({i, i + 1 + i % 2, i + 2 - i % 2});
    }
  } else if (mode == TINYGLTF_MODE_TRIANGLE_FAN) {
    for (std::size_t i = 1; i + 1 < count; ++i) corners.push_back({0, i, i + 1});
  }
  return corners;
}

class MeshReader {
 public:
  MeshReader(const GltfParts& parts, SourceModel& ioModel)
      : mParts(parts), mFile(parts.mFile), mNumbers(parts.mFile), mModel(ioModel) {}

  void addNode(std::size_t index) {
    const tinygltf::Node& node = mFile.nodes[index];
    const auto& mesh = gltfItem(mFile.meshes, node.mesh, "mesh");
    // One mesh may be used with several skins and weights; each combination is a mesh of its own
    // here, made once.
    const std::vector<double> weights = gltfMorphWeights(mFile, node);
    const auto key = std::make_tuple(node.mesh, node.skin, weights);
    const auto [known, isNew] = mKnown.try_emplace(key);
    if (isNew) {
      for (const auto& primitive : mesh.primitives) {
        const auto next = std::int32_t(mModel.mMeshes.size());
        if (addPrimitive(mesh, primitive, node.skin, weights)) known->second.push_back(next);
      }
    }
    for (const std::int32_t each : known->second) {
      mModel.mInstances.push_back({mParts.mNodes[index], each});
    }
  }

 private:
  bool addPrimitive(const tinygltf::Mesh& mesh, const tinygltf::Primitive& primitive, int skin,
                    const std::vector<double>& weights) {
    SourceModel::Mesh result;
    result.mName = gltfName(mesh.name, "mesh", std::size_t(&mesh - mFile.meshes.data()));
    if (primitive.mode < TINYGLTF_MODE_TRIANGLES) {
      mModel.mNotes.push_back("mesh '" + result.mName + "': points or lines are left out");
      return false;
    }
    addPoints(primitive, weights, result);
    addUvs(primitive, result);
    addTriangles(primitive, result);
    result.mMaterial = materialOf(primitive);
    if (skin >= 0) addBones(primitive, gltfItem(mFile.skins, skin, "skin"), result);
    mModel.mMeshes.push_back(std::move(result));
    return true;
  }

  void addPoints(const tinygltf::Primitive& primitive, const std::vector<double>& weights,
                 SourceModel::Mesh& ioMesh) {
    std::vector<double> points = mNumbers.attribute(primitive, "POSITION", 3);
    for (std::size_t t = 0; t < std::min(weights.size(), primitive.targets.size()); ++t) {
      const auto target = primitive.targets[t].find("POSITION");
      // The targets are added as they are at rest.
      if (weights[t] == 0 || target == primitive.targets[t].end()) continue;
      const std::vector<double> moved = mNumbers.read(target->second, 3);
      if (moved.size() != points.size()) {
        throw std::runtime_error("a morph target has another number of points than its mesh");
      }
      for (std::size_t i = 0; i < points.size(); ++i) points[i] += weights[t] * moved[i];
    }
    for (std::size_t i = 0; i + 2 < points.size(); i += 3) {
      ioMesh.mPoints.emplace_back(float(points[i]), float(points[i + 1]), float(points[i + 2]));
    }
  }

  // The format counts v downwards.
  void addUvs(const tinygltf::Primitive& primitive, SourceModel::Mesh& ioMesh) {
    // The set that the picture of the base colour uses.
    int set = 0;
    if (primitive.material >= 0) {
      const auto& material = gltfItem(mFile.materials, primitive.material, "material");
      set = material.pbrMetallicRoughness.baseColorTexture.texCoord;
    }
    const auto uvs = mNumbers.attribute(primitive, "TEXCOORD_" + std::to_string(set), 2);
    // Uvs for some of the points only are as good as none.
    if (uvs.size() != 2 * ioMesh.mPoints.size()) return;
    for (std::size_t i = 0; i < uvs.size(); i += 2) {
      ioMesh.mUvs.emplace_back(float(uvs[i]), float(1 - uvs[i + 1]));
    }
  }

  void addTriangles(const tinygltf::Primitive& primitive, SourceModel::Mesh& ioMesh) {
    const auto indices = mNumbers.indices(primitive, ioMesh.mPoints.size());
    for (const auto& [a, b, c] : cornersOf(primitive.mode, indices.size())) {
      ioMesh.mTriangles.emplace_back(indices[a], indices[b], indices[c]);
    }
  }

  // Primitives without a material share one more.
  std::uint32_t materialOf(const tinygltf::Primitive& primitive) {
    if (primitive.material >= 0) return std::uint32_t(primitive.material);
    return std::uint32_t(mFile.materials.size());
  }

  void addBones(const tinygltf::Primitive& primitive, const tinygltf::Skin& skin,
                SourceModel::Mesh& ioMesh) {
    std::vector<double> binds;
    if (skin.inverseBindMatrices >= 0) binds = mNumbers.read(skin.inverseBindMatrices, 16);
    for (std::size_t i = 0; i < skin.joints.size(); ++i) {
      SourceModel::Bone bone;
      bone.mName = gltfItem(mFile.nodes, skin.joints[i], "node").name;
      bone.mNode = mParts.mNodes[std::size_t(skin.joints[i])];
      if (16 * i + 16 <= binds.size()) {
        // Stored column by column.
        for (int e = 0; e < 16; ++e) bone.mOffset(e % 4, e / 4) = binds[16 * i + std::size_t(e)];
      }
      ioMesh.mBones.push_back(std::move(bone));
    }
    for (int set = 0; addInfluences(primitive, set, ioMesh); ++set) {
    }
  }

  // Four influences per vertex; false when the primitive has no such set.
  bool addInfluences(const tinygltf::Primitive& primitive, int set, SourceModel::Mesh& ioMesh) {
    const std::string number = std::to_string(set);
    const auto joints = mNumbers.attribute(primitive, "JOINTS_" + number, 4);
    const auto weights = mNumbers.attribute(primitive, "WEIGHTS_" + number, 4);
    if (joints.empty()) return false;
    if (joints.size() != 4 * ioMesh.mPoints.size() || weights.size() != joints.size()) {
      throw std::runtime_error("mesh '" + ioMesh.mName + "' has weights for some vertices only");
    }
    for (std::size_t i = 0; i < joints.size(); ++i) {
      if (weights[i] == 0) continue;
      if (!(joints[i] >= 0 && joints[i] < double(ioMesh.mBones.size()))) {
        throw std::runtime_error("mesh '" + ioMesh.mName + "' has weights for an absent joint");
      }
      // JOINTS_n counts within the skin, whose bones were added in its order.
      auto& influences = ioMesh.mBones[std::size_t(joints[i])].mInfluences;
      influences.push_back({std::uint32_t(i / 4), weights[i]});
    }
    return true;
  }

  const GltfParts& mParts;
  const tinygltf::Model& mFile;
  const GltfNumbers mNumbers;
  SourceModel& mModel;
  // The meshes of a mesh of the file, by that mesh, its skin and its morph weights.
  std::map<std::tuple<int, int, std::vector<double>>, std::vector<std::int32_t>> mKnown;
};

}  // namespace

std::vector<double> gltfMorphWeights(const tinygltf::Model& file, const tinygltf::Node& node) {
  if (node.mesh < 0) return {};
  const auto& mesh = gltfItem(file.meshes, node.mesh, "mesh");
  if (mesh.primitives.empty() || mesh.primitives[0].targets.empty()) return {};
  std::vector<double> weights = node.weights.empty() ? mesh.weights : node.weights;
  weights.resize(mesh.primitives[0].targets.size(), 0);
  return weights;
}

void addGltfMeshes(const GltfParts& parts, SourceModel& ioModel) {
  MeshReader reader(parts, ioModel);
  for (std::size_t i = 0; i < parts.mFile.nodes.size(); ++i) {
    if (parts.mIsShown[i] && parts.mFile.nodes[i].mesh >= 0) reader.addNode(i);
  }
}

}  // namespace vexa::importer
