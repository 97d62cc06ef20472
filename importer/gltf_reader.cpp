#include <algorithm>
#include <cctype>
#include <set>
#include <stdexcept>

#include "importer/gltf_compressed_internal.h"
#include "importer/gltf_numbers_internal.h"
#include "importer/gltf_parts_internal.h"
#include "importer/gltf_reader_internal.h"
#include "importer/quaternion_internal.h"
#include "importer/unique_names_internal.h"

namespace vexa::importer {

namespace {

[[noreturn]] void refuse(const std::string& reason) { throw std::runtime_error(reason); }

bool isBinary(const std::string& bytes) { return bytes.compare(0, 4, "glTF") == 0; }

// --- extensions ------------------------------------------------------------------------------

bool isRead(const std::string& extension) {
  static const std::set<std::string> kRead = {"KHR_draco_mesh_compression",
                                              "KHR_mesh_quantization"};
  return kRead.count(extension) > 0;
}

// Whether it says nothing about shape, motion or base colour.
bool isOfNoConcern(const std::string& extension) {
  static const std::set<std::string> kNames = {"KHR_lights_punctual", "KHR_xmp_json_ld",
                                               "EXT_lights_image_based", "EXT_lights_ies",
                                               "KHR_audio_emitter"};
  const bool isMaterial = extension.rfind("KHR_materials_", 0) == 0 &&
                          extension != "KHR_materials_pbrSpecularGlossiness" &&
                          extension != "KHR_materials_variants";
  return isMaterial || kNames.count(extension) > 0;
}

void checkExtensions(const tinygltf::Model& file, SourceModel& ioModel) {
  // Required: the file cannot be shown right without it. Used only: something is lost, which a note
  // says.
  for (const std::string& name : file.extensionsRequired) {
    if (isRead(name) || isOfNoConcern(name) || name == "KHR_texture_transform") continue;
    const bool compresses = name.find("compression") != std::string::npos;
    refuse(compresses ? "its mesh compression (" + name + ") cannot be read"
                      : "it needs the extension " + name + ", which is not supported");
  }
  for (const std::string& name : file.extensionsUsed) {
    if (isRead(name) || isOfNoConcern(name)) continue;
    ioModel.mNotes.push_back("the extension " + name + " is not supported and is left out");
  }
}

// --- nodes -----------------------------------------------------------------------------------

Matrix localOf(const tinygltf::Node& node) {
  Matrix local;
  if (node.matrix.size() == 16) {
    for (int e = 0; e < 16; ++e) local(e % 4, e / 4) = node.matrix[std::size_t(e)];
    return local;
  }
  const auto &t = node.translation, &s = node.scale;
  Quaternion q(0, 0, 0, 1);
  if (node.rotation.size() == 4) {
    q = normalized({node.rotation[0], node.rotation[1], node.rotation[2], node.rotation[3]});
  }
  Vec3 axes[3];
  axesOf(q, axes);
  return matrixOf(axes, s.size() == 3 ? Vec3(s[0], s[1], s[2]) : Vec3(1, 1, 1),
                  t.size() == 3 ? Vec3(t[0], t[1], t[2]) : Vec3());
}

// Per node the one that it hangs on, or -1.
std::vector<int> parentsOf(const tinygltf::Model& file) {
  std::vector<int> parents(file.nodes.size(), -1);
  for (std::size_t i = 0; i < file.nodes.size(); ++i) {
    for (const int child : file.nodes[i].children) {
      gltfItem(file.nodes, child, "node");
      // A child of two nodes would need two places.
      int& parent = parents[std::size_t(child)];
      if (parent != -1) refuse("node " + std::to_string(child) + " hangs on two nodes");
      parent = int(i);
    }
  }
  return parents;
}

// The model's nodes: a root of its own, then the file's nodes, parents first.
void addNodes(const tinygltf::Model& file, GltfParts& ioParts, SourceModel& ioModel) {
  const std::vector<int> parents = parentsOf(file);
  ioModel.mNodes.emplace_back();
  std::vector<int> order;
  for (std::size_t i = 0; i < parents.size(); ++i) {
    if (parents[i] == -1) order.push_back(int(i));
  }
  for (std::size_t next = 0; next < order.size(); ++next) {
    const auto index = std::size_t(order[next]);
    const tinygltf::Node& node = file.nodes[index];
    ioParts.mNodes[index] = std::int32_t(ioModel.mNodes.size());
    SourceModel::Node added;
    added.mName = node.name;
    added.mParent = parents[index] < 0 ? 0 : ioParts.mNodes[std::size_t(parents[index])];
    added.mLocal = localOf(node);
    ioModel.mNodes.push_back(std::move(added));
    order.insert(order.end(), node.children.begin(), node.children.end());
  }
  // Every node was reached from a root, unless some hang on each other.
  if (order.size() < file.nodes.size()) refuse("its nodes hang on each other in a ring");
}

// What the scene shows: the one that the file names, else the first, else everything.
void markShown(const tinygltf::Model& file, GltfParts& ioParts) {
  if (file.scenes.empty()) {
    ioParts.mIsShown.assign(file.nodes.size(), true);
    return;
  }
  std::vector<int> open = gltfItem(file.scenes, std::max(file.defaultScene, 0), "scene").nodes;
  while (!open.empty()) {
    const int index = open.back();
    open.pop_back();
    const auto& node = gltfItem(file.nodes, index, "node");
    if (ioParts.mIsShown[std::size_t(index)]) continue;
    ioParts.mIsShown[std::size_t(index)] = true;
    open.insert(open.end(), node.children.begin(), node.children.end());
  }
}

// --- the whole -------------------------------------------------------------------------------

// Pictures are kept as they lie in the file.
bool keepImage(tinygltf::Image* image, int /*index*/, std::string* /*error*/,
               std::string* /*warning*/, int /*width*/, int /*height*/, const unsigned char* bytes,
               int size, void* /*user*/) {
  image->image.assign(bytes, bytes + size);
  return true;
}

tinygltf::Model parse(const std::string& file, const std::string& folder) {
  const std::string bytes = withoutCompressedIndices(file);
  tinygltf::TinyGLTF loader;
  // No decoder for pictures is linked, and none is needed: their bytes are written out as they are.
  loader.SetImageLoader(keepImage, nullptr);
  tinygltf::Model model;
  std::string error, warning;
  const auto size = unsigned(std::min<std::size_t>(bytes.size(), 0xffffffffu));
  const bool isRead =
      isBinary(bytes)
          ? loader.LoadBinaryFromMemory(&model, &error, &warning,
                                        reinterpret_cast<const unsigned char*>(bytes.data()), size,
                                        folder)
          : loader.LoadASCIIFromString(&model, &error, &warning, bytes.data(), size, folder);
  if (!isRead) refuse(error.empty() ? "it is no sound glTF file" : error);
  return model;
}

void requireMotion(const SourceModel& model) {
  const bool hasChannels = std::any_of(model.mClips.begin(), model.mClips.end(),
                                       [](const auto& clip) { return !clip.mChannels.empty(); });
  const bool morphs = std::any_of(model.mNotes.begin(), model.mNotes.end(), [](const auto& note) {
    return note.find("animates the morph targets") != std::string::npos;
  });
  if (morphs && !hasChannels) refuse("its animation moves morph targets only: not supported");
}

}  // namespace

std::string gltfName(const std::string& name, const char* kind, std::size_t index) {
  return name.empty() ? kind + std::to_string(index + 1) : name;
}

bool isGltf2(const std::string& bytes) {
  if (isBinary(bytes)) return bytes.size() > 4 && bytes[4] == 2;
  // A quick look, without parsing: a file that passes it and is no glTF fails later. The three
  // bytes after the blanks are the mark that some editors put in front of UTF-8.
  const std::size_t first = bytes.find_first_not_of(" \t\r\n\xef\xbb\xbf");
  if (first == std::string::npos || bytes[first] != '{') return false;
  const std::size_t asset = bytes.find("\"asset\"");
  if (asset == std::string::npos) return false;
  const std::size_t version = bytes.find("\"version\"", asset);
  if (version == std::string::npos) return false;
  const std::size_t number = bytes.find_first_not_of(" \t\r\n:\"", version + 9);
  return number != std::string::npos && bytes[number] == '2';
}

SourceModel readGltf(const std::string& bytes, const std::string& folder) {
  const tinygltf::Model file = parse(bytes, folder);
  SourceModel model;
  // The format fixes its unit, and +Y up, so the axes stay as they are.
  model.mMetresPerUnit = 1;
  checkExtensions(file, model);
  GltfParts parts{file, std::vector<std::int32_t>(file.nodes.size(), 0),
                  std::vector<bool>(file.nodes.size(), false)};
  addNodes(file, parts, model);
  markShown(file, parts);
  addGltfMaterials(file, model);
  addGltfMeshes(parts, model);
  addGltfClips(parts, model);
  requireMotion(model);
  makeNamesUnique(model.mClips, "clip");
  makeNamesUnique(model.mMaterials, "material");
  return model;
}

}  // namespace vexa::importer
