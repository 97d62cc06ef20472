#include <algorithm>
#include <cmath>

#include "importer/fbx_parts_internal.h"
#include "importer/pivots_internal.h"

namespace vexa::importer {

namespace {

SourceModel::Pivots pivotsOf(const FbxObject& node, std::vector<std::string>& ioNotes) {
  SourceModel::Pivots pivots;
  const std::pair<const char*, Vec3*> vectors[] = {
      {"Lcl Translation", &pivots.mTranslation}, {"Lcl Rotation", &pivots.mRotation},
      {"Lcl Scaling", &pivots.mScale},           {"PreRotation", &pivots.mPreRotation},
      {"PostRotation", &pivots.mPostRotation},   {"RotationOffset", &pivots.mRotationOffset},
      {"RotationPivot", &pivots.mRotationPivot}, {"ScalingOffset", &pivots.mScaleOffset},
      {"ScalingPivot", &pivots.mScalePivot},
  };
  for (const auto& [name, to] : vectors) *to = fbxVector(node, name).value_or(*to);
  const double order = fbxNumber(node, "RotationOrder").value_or(0);
  // 0 to 5 are the six orders of three axes.
  if (order == 6) {
    ioNotes.push_back("node '" + node.mName + "' has a spheric rotation order; XYZ is taken");
  }
  pivots.mRotationOrder = order > 0 && order < 6 ? std::int32_t(order) : 0;
  return pivots;
}

SourceModel::Inherit inheritOf(const FbxObject& node) {
  const double type = fbxNumber(node, "InheritType").value_or(1);
  // RrSs, RSrs, Rrs in the words of the format: 1 is the usual product of matrices.
  if (type == 0) return SourceModel::Inherit::OwnAxes;
  return type == 2 ? SourceModel::Inherit::NoParent : SourceModel::Inherit::All;
}

void addNode(const FbxObject& object, std::int32_t parent, FbxParts& ioParts,
             SourceModel& ioModel) {
  SourceModel::Node node;
  node.mName = object.mName;
  node.mParent = parent;
  node.mPivots = std::int32_t(ioModel.mPivots.size());
  node.mInherit = inheritOf(object);
  ioModel.mPivots.push_back(pivotsOf(object, ioModel.mNotes));
  ioParts.mNodes.emplace(object.mId, std::int32_t(ioModel.mNodes.size()));
  ioModel.mNodes.push_back(std::move(node));
}

}  // namespace

void addFbxNodes(FbxParts& ioParts, SourceModel& ioModel) {
  // The scene's root has no object of its own; its id is 0.
  ioModel.mNodes.emplace_back();
  ioParts.mNodes.emplace(0, 0);
  // Breadth first from the nodes that hang on no other, so parents come before children.
  std::vector<std::int64_t> open = {0};
  for (const FbxObject& object : ioParts.mScene.objects()) {
    const bool isFree =
        object.mClass == "Model" && ioParts.mScene.firstAbove(object.mId, "Model") == nullptr;
    if (!isFree) continue;
    addNode(object, 0, ioParts, ioModel);
    open.push_back(object.mId);
  }
  // A node that hangs on several counts for the first; what hangs in a ring is not reached.
  for (std::size_t next = 1; next < open.size(); ++next) {
    const std::int32_t parent = ioParts.mNodes.at(open[next]);
    for (const FbxScene::Link& link : ioParts.mScene.below(open[next])) {
      const FbxObject& object = *link.mObject;
      if (object.mClass != "Model" || ioParts.mNodes.count(object.mId) > 0) continue;
      addNode(object, parent, ioParts, ioModel);
      open.push_back(object.mId);
    }
  }
}

Matrix fbxGeometricMatrix(const FbxObject& node) {
  // The geometric part moves the mesh of a node and not its children.
  SourceModel::Pivots pivots;
  pivots.mTranslation = fbxVector(node, "GeometricTranslation").value_or(pivots.mTranslation);
  pivots.mRotation = fbxVector(node, "GeometricRotation").value_or(pivots.mRotation);
  pivots.mScale = fbxVector(node, "GeometricScaling").value_or(pivots.mScale);
  return matrixOf(placingOf(pivots, nullptr, 0));
}

}  // namespace vexa::importer
