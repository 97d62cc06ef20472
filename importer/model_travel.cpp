#include "importer/model_travel.h"

#include <utility>

#include "importer/model_pose.h"

namespace vexa::importer {

void addTravel(SourceModel& ioModel, const Oru::TVector3D<double>& travel) {
  SourceModel::Node root;
  root.name = "travel";
  ioModel.nodes.insert(ioModel.nodes.begin(), std::move(root));
  // All indices move up by one; the old root, whose parent was kNone, hangs on the new one.
  for (std::size_t i = 1; i < ioModel.nodes.size(); ++i) ++ioModel.nodes[i].parent;
  for (SourceModel::Instance& instance : ioModel.instances) ++instance.node;
  for (SourceModel::Mesh& mesh : ioModel.meshes) {
    for (SourceModel::Bone& bone : mesh.bones) {
      if (bone.node != SourceModel::kNone) ++bone.node;
    }
  }
  for (SourceModel::Clip& clip : ioModel.clips) {
    for (SourceModel::Channel& channel : clip.channels) ++channel.node;
    SourceModel::Channel away;
    away.translations = {{0, {}}, {clipLength(clip), travel}};
    clip.channels.push_back(std::move(away));
  }
}

}  // namespace vexa::importer
