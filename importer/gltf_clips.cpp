#include <algorithm>
#include <map>
#include <stdexcept>

#include "importer/gltf_numbers_internal.h"
#include "importer/gltf_parts_internal.h"

namespace vexa::importer {

namespace {

using Interpolation = SourceModel::Interpolation;

// The keys of one sampler: per key one value, or three for cubic curves, in the order
// in-tangent, value, out-tangent.
struct Samples {
  Interpolation mInterpolation = Interpolation::Linear;
  std::vector<double> mTimes, mValues;
};

Interpolation interpolationOf(const std::string& name) {
  if (name == "STEP") return Interpolation::Step;
  if (name == "CUBICSPLINE") return Interpolation::Cubic;
  return Interpolation::Linear;
}

Vec3 valueAt(const std::vector<double>& v, std::size_t i, const Vec3& /*kind*/) {
  return {v[3 * i], v[3 * i + 1], v[3 * i + 2]};
}

Quaternion valueAt(const std::vector<double>& v, std::size_t i, const Quaternion& /*kind*/) {
  return {v[4 * i], v[4 * i + 1], v[4 * i + 2], v[4 * i + 3]};
}

template <class Key>
SourceModel::Track<Key> trackOf(const Samples& samples) {
  SourceModel::Track<Key> track;
  track.mInterpolation = samples.mInterpolation;
  const bool isCubic = samples.mInterpolation == Interpolation::Cubic;
  for (std::size_t i = 0; i < samples.mTimes.size(); ++i) {
    Key key;
    key.mTime = samples.mTimes[i];
    key.mValue = valueAt(samples.mValues, isCubic ? 3 * i + 1 : i, key.mValue);
    track.mKeys.push_back(key);
    if (!isCubic) continue;
    track.mTangents.push_back(valueAt(samples.mValues, 3 * i, key.mValue));
    track.mTangents.push_back(valueAt(samples.mValues, 3 * i + 2, key.mValue));
  }
  return track;
}

template <class Key>
void hold(const decltype(Key::mValue)& value, SourceModel::Track<Key>& ioTrack) {
  if (!ioTrack.mKeys.empty()) return;
  Key key;
  key.mValue = value;
  ioTrack.mKeys.push_back(key);
}

class ClipReader {
 public:
  ClipReader(const GltfParts& parts, SourceModel& ioModel)
      : mParts(parts), mNumbers(parts.mFile), mModel(ioModel) {}

  void add(const tinygltf::Animation& animation, std::size_t index) {
    // A nameless clip gets its name at the end, when all names are known.
    mClip = {animation.name, {}};
    mWhich = "clip '" + gltfName(animation.name, "clip", index) + "'";
    mChannels.clear();
    for (const auto& channel : animation.channels) addChannel(animation, channel);
    for (auto& [node, channel] : mChannels) {
      holdRest(mParts.mFile.nodes[node], channel);
      mClip.mChannels.push_back(std::move(channel));
    }
    mModel.mClips.push_back(std::move(mClip));
  }

 private:
  void note(const std::string& what) { mModel.mNotes.push_back(mWhich + " " + what); }

  bool fits(const Samples& samples, std::size_t width) {
    const std::size_t perKey = samples.mInterpolation == Interpolation::Cubic ? 3 : 1;
    return samples.mValues.size() == samples.mTimes.size() * perKey * width &&
           !samples.mTimes.empty();
  }

  Samples samplesOf(const tinygltf::AnimationSampler& sampler, int width) {
    Samples samples;
    samples.mInterpolation = interpolationOf(sampler.interpolation);
    samples.mTimes = mNumbers.read(sampler.input, 1);
    samples.mValues = mNumbers.read(sampler.output, width);
    return samples;
  }

  void addChannel(const tinygltf::Animation& animation, const tinygltf::AnimationChannel& channel) {
    if (channel.target_node < 0) return;  // an extension says what it moves
    const auto& node = gltfItem(mParts.mFile.nodes, channel.target_node, "node");
    const auto& sampler = gltfItem(animation.samplers, channel.sampler, "sampler");
    const std::string name = gltfName(node.name, "node", std::size_t(channel.target_node));
    // Morph targets change the shape of a mesh, which an animation file cannot say.
    if (channel.target_path == "weights") {
      noteMorph(node, name, samplesOf(sampler, 1));
      return;
    }
    // A rotation has four numbers; translation and scale have three.
    const int width = channel.target_path == "rotation" ? 4 : 3;
    const Samples samples = samplesOf(sampler, width);
    if (!fits(samples, std::size_t(width))) {
      note("has a channel of '" + name + "' whose times and values do not match; it is left out");
      return;
    }
    SourceModel::Channel& to = mChannels[std::size_t(channel.target_node)];
    to.mNode = mParts.mNodes[std::size_t(channel.target_node)];
    if (channel.target_path == "translation") {
      to.mTranslations = trackOf<SourceModel::VectorKey>(samples);
    } else if (channel.target_path == "rotation") {
      to.mRotations = trackOf<SourceModel::RotationKey>(samples);
    } else if (channel.target_path == "scale") {
      to.mScales = trackOf<SourceModel::VectorKey>(samples);
    }
  }

  // Only weights that stay as they are at rest are shown as the file means them.
  void noteMorph(const tinygltf::Node& node, const std::string& name, const Samples& samples) {
    const std::vector<double> rest = gltfMorphWeights(mParts.mFile, node);
    const std::size_t perKey = samples.mInterpolation == Interpolation::Cubic ? 3 : 1;
    bool stays = !rest.empty();
    for (std::size_t i = 0; stays && i < samples.mValues.size(); ++i) {
      // For a cubic curve every weight of a key comes as in-tangent, then value, then out-tangent.
      const std::size_t place = i / rest.size() % perKey;
      const bool isTangent = perKey == 3 && place != 1;
      stays = samples.mValues[i] == (isTangent ? 0 : rest[i % rest.size()]);
    }
    if (!stays) note("animates the morph targets of '" + name + "': they stay as they are at rest");
  }

  // A node that is not animated whole keeps the rest of its parts, signs included.
  static void holdRest(const tinygltf::Node& node, SourceModel::Channel& ioChannel) {
    // The format forbids channels on a node with a matrix; its columns are taken apart when posed.
    if (node.matrix.size() == 16) return;
    const auto &t = node.translation, &r = node.rotation, &s = node.scale;
    hold(t.size() == 3 ? Vec3(t[0], t[1], t[2]) : Vec3(), ioChannel.mTranslations);
    hold(r.size() == 4 ? Quaternion(r[0], r[1], r[2], r[3]) : Quaternion(0, 0, 0, 1),
         ioChannel.mRotations);
    hold(s.size() == 3 ? Vec3(s[0], s[1], s[2]) : Vec3(1, 1, 1), ioChannel.mScales);
  }

  const GltfParts& mParts;
  const GltfNumbers mNumbers;
  SourceModel& mModel;
  SourceModel::Clip mClip;
  std::string mWhich;
  // By node: glTF has a channel for each of translation, rotation and scale.
  std::map<std::size_t, SourceModel::Channel> mChannels;
};

}  // namespace

void addGltfClips(const GltfParts& parts, SourceModel& ioModel) {
  ClipReader reader(parts, ioModel);
  for (std::size_t i = 0; i < parts.mFile.animations.size(); ++i) {
    reader.add(parts.mFile.animations[i], i);
  }
}

}  // namespace vexa::importer
