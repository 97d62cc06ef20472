#include "importer/model_check.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "formats/finite.h"

namespace vexa::importer {

namespace {

[[noreturn]] void refuse(const std::string& reason) { throw std::runtime_error(reason); }

void require(bool condition, const std::string& reason) {
  if (!condition) refuse(reason);
}

std::string quoted(const std::string& name) { return "'" + name + "'"; }

using formats::isFinite;

bool isFinite(const Matrix& m) {
  return std::all_of(std::begin(m.e), std::end(m.e), [](double v) { return std::isfinite(v); });
}

bool isIndex(std::int32_t index, std::size_t count) {
  return index >= 0 && static_cast<std::size_t>(index) < count;
}

void checkNodes(const SourceModel& model) {
  require(!model.nodes.empty(), "it has no nodes");
  for (std::size_t i = 0; i < model.nodes.size(); ++i) {
    const SourceModel::Node& node = model.nodes[i];
    require(i == 0 ? node.parent == SourceModel::kNone : isIndex(node.parent, i),
            "node " + quoted(node.name) + " has a wrong parent");
    require(isFinite(node.local),
            "node " + quoted(node.name) + " has a matrix that is not of finite numbers");
  }
  require(isFinite(model.axes), "its axes are not finite numbers");
}

// Drops what says nothing sensible; returns how many influences that were.
std::size_t dropBadInfluences(SourceModel::Bone& bone, std::size_t pointCount) {
  auto& all = bone.influences;
  const auto isBad = [&](const SourceModel::Influence& influence) {
    return influence.vertex >= pointCount || !std::isfinite(influence.weight) ||
           influence.weight < 0;
  };
  const auto firstBad = std::remove_if(all.begin(), all.end(), isBad);
  const auto count = static_cast<std::size_t>(all.end() - firstBad);
  all.erase(firstBad, all.end());
  all.erase(std::remove_if(all.begin(), all.end(),
                           [](const SourceModel::Influence& i) { return i.weight == 0; }),
            all.end());
  return count;
}

void checkBones(SourceModel::Mesh& mesh, std::size_t nodeCount, std::vector<std::string>& notes) {
  std::size_t dropped = 0;
  for (SourceModel::Bone& bone : mesh.bones) {
    require(bone.node == SourceModel::kNone || isIndex(bone.node, nodeCount),
            "bone " + quoted(bone.name) + " has a wrong node");
    require(isFinite(bone.offset),
            "bone " + quoted(bone.name) + " has a matrix that is not of finite numbers");
    dropped += dropBadInfluences(bone, mesh.points.size());
  }
  if (dropped > 0) {
    notes.push_back("mesh " + quoted(mesh.name) + ": " + std::to_string(dropped) +
                    " weights that are negative, no numbers or on absent vertices are dropped");
  }
}

void checkMesh(SourceModel::Mesh& mesh) {
  const std::string which = "mesh " + quoted(mesh.name);
  const std::size_t count = mesh.points.size();
  require(std::all_of(mesh.points.begin(), mesh.points.end(),
                      [](const auto& p) { return isFinite(p); }),
          which + " has coordinates that are not finite numbers");
  require(mesh.uvs.empty() || mesh.uvs.size() == count,
          which + " has texture coordinates for some of its vertices only");
  for (auto& uv : mesh.uvs) {
    if (!isFinite(uv)) uv = {};
  }
  for (const auto& t : mesh.triangles) {
    require(t.x < count && t.y < count && t.z < count,
            which + " has a triangle with a corner past its last vertex");
  }
}

template <class Key>
void checkKeys(std::vector<Key>& keys, const std::string& which) {
  const bool finite = std::all_of(keys.begin(), keys.end(), [](const Key& key) {
    return std::isfinite(key.time) && isFinite(key.value);
  });
  require(finite, which + " has a key that is not of finite numbers");
  std::stable_sort(keys.begin(), keys.end(),
                   [](const Key& a, const Key& b) { return a.time < b.time; });
}

double squaredLength(const Oru::TQuaternion<double>& q) {
  return q.x * q.x + q.y * q.y + q.z * q.z + q.w * q.w;
}

void checkRotations(std::vector<SourceModel::RotationKey>& keys, const std::string& which,
                    std::vector<std::string>& notes) {
  const auto isBad = [](const SourceModel::RotationKey& key) {
    const double length = squaredLength(key.value);
    return !(length > 0) || !std::isfinite(length);
  };
  const auto firstBad = std::remove_if(keys.begin(), keys.end(), isBad);
  if (firstBad == keys.end()) return;
  notes.push_back(which + ": " + std::to_string(keys.end() - firstBad) +
                  " rotation keys that are no rotations are dropped");
  keys.erase(firstBad, keys.end());
}

void checkClip(SourceModel::Clip& clip, std::size_t nodeCount, std::vector<std::string>& notes) {
  const std::string which = "clip " + quoted(clip.name);
  for (SourceModel::Channel& channel : clip.channels) {
    require(isIndex(channel.node, nodeCount), which + " moves a node that the model does not have");
    checkRotations(channel.rotations, which, notes);
    checkKeys(channel.translations, which);
    checkKeys(channel.rotations, which);
    checkKeys(channel.scales, which);
  }
}

void checkMaterials(SourceModel& model) {
  std::size_t used = 0;
  for (const SourceModel::Mesh& mesh : model.meshes) {
    require(mesh.material < 65536, "mesh " + quoted(mesh.name) + " has a wrong material");
    used = std::max<std::size_t>(used, mesh.material + std::size_t{1});
  }
  while (model.materials.size() < used) {
    model.materials.push_back("material" + std::to_string(model.materials.size() + 1));
  }
}

}  // namespace

void checkModel(SourceModel& ioModel) {
  checkNodes(ioModel);
  for (SourceModel::Mesh& mesh : ioModel.meshes) {
    checkMesh(mesh);
    checkBones(mesh, ioModel.nodes.size(), ioModel.notes);
  }
  for (const SourceModel::Instance& instance : ioModel.instances) {
    require(isIndex(instance.node, ioModel.nodes.size()) &&
                isIndex(instance.mesh, ioModel.meshes.size()),
            "it hangs a mesh where there is none");
  }
  for (SourceModel::Clip& clip : ioModel.clips) {
    checkClip(clip, ioModel.nodes.size(), ioModel.notes);
  }
  checkMaterials(ioModel);
}

}  // namespace vexa::importer
