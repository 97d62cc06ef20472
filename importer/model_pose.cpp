#include "importer/model_pose.h"

#include <algorithm>
#include <cmath>

#include "importer/pivots_internal.h"
#include "importer/quaternion_internal.h"
#include "importer/track_internal.h"

namespace vexa::importer {

namespace {

// --- local matrices --------------------------------------------------------------------------

struct Columns {
  Vec3 mTranslation;
  // Of unit length unless the node is scaled to nothing.
  Vec3 mAxes[3];
  Vec3 mScale;
};

Vec3 column(const Matrix& m, int c) { return {m(0, c), m(1, c), m(2, c)}; }

Columns columnsOf(const Matrix& local) {
  Columns columns;
  columns.mTranslation = column(local, 3);
  // A shear is lost by this, as in every format that animates the three parts.
  double lengths[3];
  for (int c = 0; c < 3; ++c) {
    const Vec3 v = column(local, c);
    lengths[c] = std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
    columns.mAxes[c] = lengths[c] > 0 ? v * (1 / lengths[c]) : v;
  }
  columns.mScale = {lengths[0], lengths[1], lengths[2]};
  return columns;
}

bool movesPart(const SourceModel::Channel& channel, std::uint32_t part) {
  return std::any_of(channel.mCurves.begin(), channel.mCurves.end(),
                     [&](const SourceModel::Curve& curve) { return curve.mPart / 3 == part; });
}

// The parts that a channel's tracks move, and those that its curves move about pivots of another
// file.
template <class SetRotation>
void moveParts(const SourceModel& model, const SourceModel::Channel& channel, double seconds,
               Vec3& ioTranslation, Vec3& ioScale, const SetRotation& setRotation) {
  if (!channel.mTranslations.mKeys.empty()) ioTranslation = valueAt(channel.mTranslations, seconds);
  if (!channel.mRotations.mKeys.empty()) setRotation(valueAt(channel.mRotations, seconds));
  if (!channel.mScales.mKeys.empty()) ioScale = valueAt(channel.mScales, seconds);
  if (channel.mPivots == SourceModel::kNone) return;
  const Placing moved = placingOf(model.mPivots[std::size_t(channel.mPivots)], &channel, seconds);
  if (movesPart(channel, 0)) ioTranslation = moved.mTranslation;
  if (movesPart(channel, 1)) setRotation(moved.mRotation);
  if (movesPart(channel, 2)) ioScale = moved.mScale;
}

// --- world matrices --------------------------------------------------------------------------

Vec3 scaled(const Vec3& a, const Vec3& b) { return {a.x * b.x, a.y * b.y, a.z * b.z}; }

// Forms world matrices from the root down; a node comes after its parent.
class WorldBuilder {
 public:
  WorldBuilder(const SourceModel& model, const SourceModel::Clip* clip, double seconds)
      : mModel(model), mSeconds(seconds), mChannels(model.mNodes.size(), nullptr) {
    // No clip: the stored pose.
    if (clip == nullptr) return;
    for (const auto& channel : clip->mChannels) mChannels[std::size_t(channel.mNode)] = &channel;
  }

  std::vector<Matrix> build() {
    const std::size_t count = mModel.mNodes.size();
    mWorlds.reserve(count);
    // Only FBX has nodes that do not take over all of their parent's scale.
    const bool hasPivots = !mModel.mPivots.empty();
    if (hasPivots) mScaling.resize(count);
    for (std::size_t i = 0; i < count; ++i) {
      if (mModel.mNodes[i].mPivots == SourceModel::kNone) {
        addPlain(i, hasPivots);
      } else {
        addPivoted(i);
      }
    }
    return std::move(mWorlds);
  }

 private:
  // What children that do not simply take over their parent's matrix need to know.
  struct Scaling {
    Matrix mUnscaledWorld;
    Vec3 mScale{1, 1, 1};
    // The node whose scale this one takes along its own axes; kNone for no scale.
    std::int32_t mFrom = SourceModel::kNone;
  };

  Matrix parentWorld(std::size_t i) const {
    const std::int32_t parent = mModel.mNodes[i].mParent;
    return parent == SourceModel::kNone ? Matrix() : mWorlds[std::size_t(parent)];
  }

  void addPlain(std::size_t i, bool withScaling) {
    const SourceModel::Channel* channel = mChannels[i];
    const Matrix& stored = mModel.mNodes[i].mLocal;
    if (channel == nullptr) {
      mWorlds.push_back(parentWorld(i) * stored);
    } else {
      Columns parts = columnsOf(stored);
      moveParts(mModel, *channel, mSeconds, parts.mTranslation, parts.mScale,
                [&](const Quaternion& q) { axesOf(q, parts.mAxes); });
      mWorlds.push_back(parentWorld(i) * matrixOf(parts.mAxes, parts.mScale, parts.mTranslation));
    }
    // A node without pivots passes all of its matrix on, scale included.
    if (withScaling) mScaling[i].mUnscaledWorld = mWorlds.back();
  }

  void addPivoted(std::size_t i) {
    const SourceModel::Node& node = mModel.mNodes[i];
    const SourceModel::Channel* channel = mChannels[i];
    const bool isOwn = channel != nullptr && channel->mPivots == SourceModel::kNone;
    Placing placing =
        placingOf(mModel.mPivots[std::size_t(node.mPivots)], isOwn ? channel : nullptr, mSeconds);
    if (channel != nullptr) {
      moveParts(mModel, *channel, mSeconds, placing.mTranslation, placing.mScale,
                [&](const Quaternion& q) { placing.mRotation = q; });
    }
    Scaling& own = mScaling[i];
    Matrix above = parentWorld(i);
    own.mScale = placing.mScale;
    if (node.mInherit != SourceModel::Inherit::All && node.mParent != SourceModel::kNone) {
      const auto parent = std::size_t(node.mParent);
      // A node without its parent's scale still takes what that parent took over along its axes.
      own.mFrom =
          node.mInherit == SourceModel::Inherit::OwnAxes ? node.mParent : mScaling[parent].mFrom;
      if (own.mFrom != SourceModel::kNone) {
        own.mScale = scaled(own.mScale, mScaling[std::size_t(own.mFrom)].mScale);
      }
      // The parent's scale still moves the node: it scales the way to it, and no more.
      placing.mTranslation = scaled(placing.mTranslation, mScaling[parent].mScale);
      above = mScaling[parent].mUnscaledWorld;
    }
    placing.mScale = own.mScale;
    mWorlds.push_back(above * matrixOf(placing));
    placing.mScale = {1, 1, 1};
    own.mUnscaledWorld = above * matrixOf(placing);
  }

  const SourceModel& mModel;
  const double mSeconds;
  std::vector<const SourceModel::Channel*> mChannels;
  std::vector<Matrix> mWorlds;
  std::vector<Scaling> mScaling;
};

template <class Keys>
double lastTime(const Keys& keys) {
  return keys.empty() ? 0 : keys.back().mTime;
}

}  // namespace

std::vector<Matrix> nodeTransforms(const SourceModel& model, const SourceModel::Clip* clip,
                                   double seconds) {
  return WorldBuilder(model, clip, seconds).build();
}

double clipLength(const SourceModel::Clip& clip) {
  double length = 0;
  for (const SourceModel::Channel& channel : clip.mChannels) {
    length = std::max({length, lastTime(channel.mTranslations.mKeys),
                       lastTime(channel.mRotations.mKeys), lastTime(channel.mScales.mKeys)});
    for (const auto& curve : channel.mCurves) length = std::max(length, lastTime(curve.mKeys));
  }
  return length;
}

}  // namespace vexa::importer
