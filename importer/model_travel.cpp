#include "importer/model_travel.h"

#include <utility>

#include "importer/model_pose.h"

namespace vexa::importer {

void addTravel(SourceModel& ioModel, const Oru::TVector3D<double>& travel) {
  // A node of its own above all others: no clip moves it otherwise.
  SourceModel::Node root;
  root.mName = "travel";
  ioModel.mNodes.insert(ioModel.mNodes.begin(), std::move(root));
  // All indices move up by one; the old root, whose parent was kNone, hangs on the new one.
  for (std::size_t i = 1; i < ioModel.mNodes.size(); ++i) ++ioModel.mNodes[i].mParent;
  for (SourceModel::Instance& instance : ioModel.mInstances) ++instance.mNode;
  for (SourceModel::Mesh& mesh : ioModel.mMeshes) {
    for (SourceModel::Bone& bone : mesh.mBones) {
      if (bone.mNode != SourceModel::kNone) ++bone.mNode;
    }
  }
  for (SourceModel::Clip& clip : ioModel.mClips) {
    for (SourceModel::Channel& channel : clip.mChannels) ++channel.mNode;
    // From the origin to the end of the way in the length of the clip: a straight, even motion.
    SourceModel::Channel away;
    away.mTranslations.mKeys = {{0, {}}, {clipLength(clip), travel}};
    clip.mChannels.push_back(std::move(away));
  }
}

}  // namespace vexa::importer
