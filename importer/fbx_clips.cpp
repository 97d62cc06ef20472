#include <algorithm>
#include <map>
#include <set>

#include "importer/fbx_parts_internal.h"

namespace vexa::importer {

namespace {

constexpr const char* kParts[] = {"Lcl Translation", "Lcl Rotation", "Lcl Scaling"};
constexpr const char* kAxes[] = {"d|X", "d|Y", "d|Z"};

// How many ticks are a second, up to FBX 7 and from FBX 8 on. FBX 8 files may state that they still
// use the old one.
constexpr double kTicks = 46186158000.0, kNewTicks = 141120000.0;
constexpr std::int64_t kOldDefinition = 127;

double ticksPerSecond(const FbxDocument& document) {
  if (document.mVersion < 8000) return kTicks;
  const FbxRecord* header = document.mRoot.find("FBXHeaderExtension");
  const FbxRecord* flags = header == nullptr ? nullptr : header->find("OtherFlags");
  const FbxRecord* definition = flags == nullptr ? nullptr : flags->find("TCDefinition");
  return definition != nullptr && definition->integer(0) == kOldDefinition ? kTicks : kNewTicks;
}

class ClipReader {
 public:
  ClipReader(const FbxParts& parts, SourceModel& ioModel)
      : mParts(parts),
        mScene(parts.mScene),
        mTicksPerSecond(ticksPerSecond(parts.mScene.document())),
        mModel(ioModel) {}

  void add(const FbxObject& stack) {
    mClip = {stack.mName, {}};
    mChannels.clear();
    mNoted.clear();
    // Keys have the times of the file's time line, on which the clip starts here; a take starts at
    // 0.
    mStart = fbxNumber(stack, "LocalStart").value_or(0);
    const std::vector<const FbxObject*> layers = layersOf(stack);
    // Layers are added up with weights by the program that wrote the file; the first one is the
    // motion itself.
    if (layers.size() > 1) {
      note("has " + std::to_string(layers.size()) + " layers; only '" + layers[0]->mName +
           "' is played");
    }
    if (!layers.empty()) addLayer(*layers[0]);
    for (auto& [node, channel] : mChannels) mClip.mChannels.push_back(std::move(channel));
    mModel.mClips.push_back(std::move(mClip));
  }

 private:
  // Each note once per clip.
  void note(const std::string& what) {
    const std::string text = "clip '" + mClip.mName + "' " + what;
    if (mNoted.insert(text).second) mModel.mNotes.push_back(text);
  }

  // The layers that hold something.
  std::vector<const FbxObject*> layersOf(const FbxObject& stack) const {
    std::vector<const FbxObject*> layers;
    for (const FbxScene::Link& link : mScene.below(stack.mId)) {
      if (link.mObject->mClass != "AnimationLayer") continue;
      const bool isUsed = mScene.firstBelow(link.mObject->mId, "AnimationCurveNode") != nullptr;
      if (isUsed) layers.push_back(link.mObject);
    }
    return layers;
  }

  void addLayer(const FbxObject& layer) {
    for (const FbxScene::Link& link : mScene.below(layer.mId)) {
      if (link.mObject->mClass != "AnimationCurveNode") continue;
      // An AnimationCurveNode hangs on its layer without a property and on its node by one.
      for (const FbxScene::Link& target : mScene.above(link.mObject->mId)) {
        if (!target.mProperty.empty()) {
          addCurves(*link.mObject, *target.mObject, target.mProperty);
        }
      }
    }
  }

  void addCurves(const FbxObject& curves, const FbxObject& target, const std::string& property) {
    const auto node = mParts.mNodes.find(target.mId);
    const auto* const part = std::find(std::begin(kParts), std::end(kParts), property);
    if (node == mParts.mNodes.end() || part == std::end(kParts)) {
      noteOther(curves, target, property);
      return;
    }
    SourceModel::Channel& channel = mChannels[node->second];
    channel.mNode = node->second;
    for (std::uint32_t axis = 0; axis < 3; ++axis) {
      SourceModel::Curve curve;
      curve.mPart = 3 * std::uint32_t(part - std::begin(kParts)) + axis;
      curve.mKeys = keysOf(curves, axis);
      if (!curve.mKeys.empty()) channel.mCurves.push_back(std::move(curve));
    }
  }

  // The keys of one axis; a single one where it is not animated, none where nothing is said.
  std::vector<SourceModel::CurveKey> keysOf(const FbxObject& curves, std::uint32_t axis) {
    std::vector<SourceModel::CurveKey> keys;
    for (const FbxScene::Link& link : mScene.below(curves.mId)) {
      if (link.mObject->mClass != "AnimationCurve" || link.mProperty != kAxes[axis]) continue;
      keys = fbxCurveKeys(*link.mObject->mRecord, mStart, mTicksPerSecond);
      noteExtrapolation(*link.mObject->mRecord);
    }
    // An axis without a curve has its constant value in the curve node.
    const auto still = fbxNumber(curves, kAxes[axis]);
    if (keys.empty() && still.has_value()) {
      keys.emplace_back();
      keys[0].mValue = *still;
    }
    return keys;
  }

  void noteExtrapolation(const FbxRecord& curve) {
    for (const char* name : {"Pre-Extrapolation", "Post-Extrapolation"}) {
      const FbxRecord* record = curve.find(name);
      const FbxRecord* type = record == nullptr ? nullptr : record->find("Type");
      if (type == nullptr || type->mValues.empty()) continue;
      const bool isConstant = type->integer(0) == 'C' || type->text(0) == "C";
      if (!isConstant) note("goes on before its first or after its last keys: they are held here");
    }
  }

  // What moves nothing that is shown is no loss.
  void noteOther(const FbxObject& curves, const FbxObject& target, const std::string& property) {
    if (mScene.firstBelow(curves.mId, "AnimationCurve") == nullptr) return;
    if (property == "DeformPercent") {
      note("animates the shape '" + target.mName + "': it stays as it is at rest");
    }
    const bool isPivot = property.find("Pivot") != std::string::npos ||
                         property.find("Offset") != std::string::npos ||
                         property.find("Rotation") != std::string::npos ||
                         property.rfind("Geometric", 0) == 0;
    if (target.mClass == "Model" && isPivot) {
      note("animates " + property + " of '" + target.mName + "': it stays as it is at rest");
    }
  }

  const FbxParts& mParts;
  const FbxScene& mScene;
  const double mTicksPerSecond;
  SourceModel& mModel;
  SourceModel::Clip mClip;
  double mStart = 0;
  std::map<std::int32_t, SourceModel::Channel> mChannels;
  std::set<std::string> mNoted;
};

}  // namespace

void addFbxClips(const FbxParts& parts, SourceModel& ioModel) {
  ClipReader reader(parts, ioModel);
  for (const FbxObject& object : parts.mScene.objects()) {
    if (object.mClass == "AnimationStack") reader.add(object);
  }
}

}  // namespace vexa::importer
