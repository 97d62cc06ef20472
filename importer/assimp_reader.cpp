#include <algorithm>
#include <assimp/Importer.hpp>
#include <assimp/anim.h>
#include <assimp/config.h>
#include <assimp/material.h>
#include <assimp/mesh.h>
#include <assimp/postprocess.h>
#include <assimp/scene.h>
#include <cmath>
#include <new>
#include <stdexcept>
#include <unordered_map>
#include <unordered_set>

#include "importer/assimp_reader_internal.h"
#include "importer/file_name_internal.h"
#include "importer/unique_names_internal.h"

namespace vexa::importer {

namespace {

using NodeIndices = std::unordered_map<std::string, std::int32_t>;

std::string toString(const aiString& text) { return {text.C_Str()}; }

Oru::TVector3D<double> toVector(const aiVector3D& v) {
  return {double(v.x), double(v.y), double(v.z)};
}

// Both have their translation in the last column; libassimp stores row by row.
Matrix toMatrix(const aiMatrix4x4& m) {
  Matrix result;
  for (int row = 0; row < 4; ++row) {
    for (int column = 0; column < 4; ++column) {
      result(row, column) = double(m[unsigned(row)][unsigned(column)]);
    }
  }
  return result;
}

// --- nodes -----------------------------------------------------------------------------------

// All nodes, those above before those below.
std::vector<const aiNode*> listNodes(const aiNode& root) {
  std::vector<const aiNode*> nodes{&root};
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    const aiNode& node = *nodes[i];
    nodes.insert(nodes.end(), node.mChildren, node.mChildren + node.mNumChildren);
  }
  return nodes;
}

// The same, ordered by the parents that the nodes name. Usually these are the nodes that list them
// as children, but one reader (HL1) lists all bones flat and sets their parents aright.
std::vector<const aiNode*> parentsFirst(const std::vector<const aiNode*>& nodes) {
  // Each node leads up to the first ancestor that is listed already; that chain is added from its
  // top. A ring of parents ends where a node is met again.
  std::vector<const aiNode*> ordered;
  std::unordered_set<const aiNode*> isListed(nodes.begin(), nodes.end()), isOrdered;
  std::vector<const aiNode*> chain;
  for (const aiNode* node : nodes) {
    while (node != nullptr && isListed.erase(node) > 0) {
      chain.push_back(node);
      node = node->mParent;
    }
    ordered.insert(ordered.end(), chain.rbegin(), chain.rend());
    chain.clear();
  }
  return ordered;
}

// Of several nodes with one name the first is the one that bones and channels mean.
NodeIndices readNodes(const aiNode& root, SourceModel& outModel) {
  NodeIndices byName;
  std::unordered_map<const aiNode*, std::int32_t> indices;
  for (const aiNode* node : parentsFirst(listNodes(root))) {
    const auto index = std::int32_t(outModel.mNodes.size());
    const auto parent = indices.find(node->mParent);
    const bool isRoot = index == 0;
    indices.emplace(node, index);
    // A parent outside the tree: the root takes its place.
    const std::int32_t above = parent != indices.end() ? parent->second : 0;
    outModel.mNodes.push_back({toString(node->mName), isRoot ? SourceModel::kNone : above,
                               toMatrix(node->mTransformation)});
    byName.emplace(outModel.mNodes.back().mName, index);
    for (unsigned i = 0; i < node->mNumMeshes; ++i) {
      outModel.mInstances.push_back({index, std::int32_t(node->mMeshes[i])});
    }
  }
  return byName;
}

std::int32_t find(const NodeIndices& byName, const std::string& name) {
  const auto found = byName.find(name);
  return found == byName.end() ? SourceModel::kNone : found->second;
}

// --- meshes ----------------------------------------------------------------------------------

SourceModel::Bone readBone(const aiBone& bone, const NodeIndices& byName) {
  SourceModel::Bone result;
  result.mName = toString(bone.mName);
  result.mNode = find(byName, result.mName);
  result.mOffset = toMatrix(bone.mOffsetMatrix);
  result.mInfluences.reserve(bone.mNumWeights);
  for (unsigned i = 0; i < bone.mNumWeights; ++i) {
    result.mInfluences.push_back({bone.mWeights[i].mVertexId, double(bone.mWeights[i].mWeight)});
  }
  return result;
}

// Points and lines are left out; returns how many.
std::size_t readTriangles(const aiMesh& mesh, SourceModel::Mesh& outMesh) {
  std::size_t others = 0;
  for (unsigned i = 0; i < mesh.mNumFaces; ++i) {
    const aiFace& face = mesh.mFaces[i];
    if (face.mNumIndices == 3) {
      outMesh.mTriangles.emplace_back(face.mIndices[0], face.mIndices[1], face.mIndices[2]);
    } else {
      ++others;
    }
  }
  return others;
}

void readPoints(const aiMesh& mesh, SourceModel::Mesh& outMesh) {
  for (unsigned i = 0; i < mesh.mNumVertices; ++i) {
    const aiVector3D& p = mesh.mVertices[i];
    outMesh.mPoints.emplace_back(p.x, p.y, p.z);
  }
  // Only the first set: the OBJ file of the rest mesh has one.
  if (!mesh.HasTextureCoords(0)) return;
  for (unsigned i = 0; i < mesh.mNumVertices; ++i) {
    outMesh.mUvs.emplace_back(mesh.mTextureCoords[0][i].x, mesh.mTextureCoords[0][i].y);
  }
}

void readMesh(const aiMesh& mesh, const NodeIndices& byName, SourceModel& outModel) {
  SourceModel::Mesh result;
  result.mName = toString(mesh.mName);
  result.mMaterial = mesh.mMaterialIndex;
  if (mesh.HasPositions()) readPoints(mesh, result);
  const std::size_t others = readTriangles(mesh, result);
  if (others > 0) {
    outModel.mNotes.push_back("mesh '" + result.mName + "': " + std::to_string(others) +
                              " points or lines are left out");
  }
  for (unsigned i = 0; i < mesh.mNumBones; ++i) {
    result.mBones.push_back(readBone(*mesh.mBones[i], byName));
  }
  outModel.mMeshes.push_back(std::move(result));
}

SourceModel::Material readMaterial(const aiMaterial& material) {
  SourceModel::Material result;
  aiString text;
  if (material.Get(AI_MATKEY_NAME, text) == AI_SUCCESS) result.mName = toString(text);
  aiColor4D color;
  if (material.Get(AI_MATKEY_COLOR_DIFFUSE, color) == AI_SUCCESS) {
    result.mColor = {double(color.r), double(color.g), double(color.b), double(color.a)};
    result.mHasColor = true;
  }
  // "*0" is a picture within the file.
  if (material.GetTexture(aiTextureType_DIFFUSE, 0, &text) == AI_SUCCESS &&
      text.C_Str()[0] != '*') {
    result.mTexture = toString(text);
  }
  return result;
}

// --- clips -----------------------------------------------------------------------------------

std::vector<SourceModel::VectorKey> readKeys(const aiVectorKey* keys, unsigned count,
                                             double ticksPerSecond) {
  std::vector<SourceModel::VectorKey> result;
  for (unsigned i = 0; i < count; ++i) {
    result.push_back({keys[i].mTime / ticksPerSecond, toVector(keys[i].mValue)});
  }
  return result;
}

SourceModel::Channel readChannel(const aiNodeAnim& channel, std::int32_t node,
                                 double ticksPerSecond) {
  SourceModel::Channel result;
  result.mNode = node;
  result.mTranslations.mKeys =
      readKeys(channel.mPositionKeys, channel.mNumPositionKeys, ticksPerSecond);
  result.mScales.mKeys = readKeys(channel.mScalingKeys, channel.mNumScalingKeys, ticksPerSecond);
  for (unsigned i = 0; i < channel.mNumRotationKeys; ++i) {
    const aiQuaternion& q = channel.mRotationKeys[i].mValue;
    result.mRotations.mKeys.push_back({channel.mRotationKeys[i].mTime / ticksPerSecond,
                                       {double(q.x), double(q.y), double(q.z), double(q.w)}});
  }
  return result;
}

constexpr double kDefaultTicksPerSecond = 25;

void readClip(const aiAnimation& animation, const NodeIndices& byName, double chosen,
              SourceModel& outModel) {
  SourceModel::Clip clip;
  clip.mName = toString(animation.mName);
  double ticksPerSecond = chosen > 0 ? chosen : animation.mTicksPerSecond;
  if (!(ticksPerSecond > 0) || !std::isfinite(ticksPerSecond)) {
    ticksPerSecond = kDefaultTicksPerSecond;
    outModel.mNotes.push_back("clip '" + clip.mName +
                              "' does not say how fast it runs: 25 ticks per second are taken");
  }
  for (unsigned i = 0; i < animation.mNumChannels; ++i) {
    const aiNodeAnim& channel = *animation.mChannels[i];
    const std::int32_t node = find(byName, toString(channel.mNodeName));
    if (node != SourceModel::kNone) {
      clip.mChannels.push_back(readChannel(channel, node, ticksPerSecond));
    } else {
      outModel.mNotes.push_back("clip '" + clip.mName + "' moves '" + toString(channel.mNodeName) +
                                "', which the model does not have");
    }
  }
  outModel.mClips.push_back(std::move(clip));
}

// --- axes ------------------------------------------------------------------------------------

// Unit vector of one axis that the file's settings name; zero when they do not.
Oru::TVector3D<double> axisOf(const aiMetadata& settings, const std::string& name) {
  std::int32_t axis = -1, sign = 1;
  if (!settings.Get(name, axis) || !settings.Get(name + "Sign", sign)) return {};
  const double length = sign < 0 ? -1 : 1;
  if (axis == 0) return {length, 0, 0};
  if (axis == 1) return {0, length, 0};
  if (axis == 2) return {0, 0, length};
  return {};
}

// Formats that have +Z up and whose readers do not turn them.
bool hasZUp(const std::string& file) {
  const std::string ending = endingOf(file);
  return ending == "smd" || ending == "csm";
}

constexpr double kZUpToYUp[16] = {1, 0, 0, 0, 0, 0, -1, 0, 0, 1, 0, 0, 0, 0, 0, 1};

// FBX states which way right, up and front are, and libassimp 5.2 does not act on it; later
// releases do, at the root node, as the readers of most other formats have always done.
Matrix readAxes(const aiScene& scene, const std::string& file) {
  Matrix axes;
  // A root that turns has done so already.
  if (!scene.mRootNode->mTransformation.IsIdentity()) return axes;
  if (hasZUp(file)) std::copy(std::begin(kZUpToYUp), std::end(kZUpToYUp), axes.e);
  if (scene.mMetaData == nullptr) return axes;
  const char* const names[] = {"CoordAxis", "UpAxis", "FrontAxis"};
  Matrix stated;
  for (int row = 0; row < 3; ++row) {
    const Oru::TVector3D<double> axis = axisOf(*scene.mMetaData, names[row]);
    stated(row, 0) = axis.x;
    stated(row, 1) = axis.y;
    stated(row, 2) = axis.z;
  }
  return stated.is_invertible() ? stated : axes;
}

// --- the whole -------------------------------------------------------------------------------

SourceModel convert(const aiScene& scene, const std::string& file, double ticksPerSecond) {
  SourceModel model;
  const NodeIndices byName = readNodes(*scene.mRootNode, model);
  for (unsigned i = 0; i < scene.mNumMeshes; ++i) readMesh(*scene.mMeshes[i], byName, model);
  for (unsigned i = 0; i < scene.mNumMaterials; ++i) {
    model.mMaterials.push_back(readMaterial(*scene.mMaterials[i]));
  }
  for (unsigned i = 0; i < scene.mNumAnimations; ++i) {
    readClip(*scene.mAnimations[i], byName, ticksPerSecond, model);
  }
  makeNamesUnique(model.mClips, "clip");
  makeNamesUnique(model.mMaterials, "material");
  model.mAxes = readAxes(scene, file);
  return model;
}

// Two of the library's texts in words of ours; the rest as they are.
[[noreturn]] void failFor(const std::string& error) {
  if (error.rfind("No suitable reader", 0) == 0) {
    throw std::runtime_error("it is of no known model format");
  }
  // libassimp catches it and keeps the text; it is this process that has too little memory.
  if (error.find("bad_alloc") != std::string::npos) throw std::bad_alloc();
  throw std::runtime_error(error);
}

}  // namespace

// Not asked for: joining identical vertices. With nothing but positions left it would join
// vertices of different weights.
SourceModel readWithAssimp(const std::string& file, double ticksPerSecond) {
  Assimp::Importer importer;
  const aiScene* scene = importer.ReadFile(file, aiProcess_Triangulate);
  if (scene == nullptr) failFor(importer.GetErrorString());
  if (scene->mRootNode == nullptr) throw std::runtime_error("it has no nodes");
  return convert(*scene, file, ticksPerSecond);
}

bool isKnownToAssimp(const std::string& ending) {
  return Assimp::Importer().IsExtensionSupported("." + ending);
}

}  // namespace vexa::importer
