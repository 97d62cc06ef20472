#include <algorithm>
#include <cmath>
#include <cstring>
#include <stdexcept>

#include "importer/fbx_parts_internal.h"

namespace vexa::importer {

namespace {

using CurveKey = SourceModel::CurveKey;

// What the flags of a key say.
constexpr std::uint32_t kConstant = 0x2, kCubic = 0x8;
constexpr std::uint32_t kNextValue = 0x100;  // of a constant key: that of the next key
constexpr std::uint32_t kTcb = 0x200, kUser = 0x400;
constexpr std::uint32_t kClamp = 0x1000, kTimeIndependent = 0x2000, kClampProgressive = 0x4000;
constexpr std::uint32_t kWeightedRight = 0x01000000, kWeightedNextLeft = 0x02000000;

// A Bezier segment whose control points are at a third of its time is a plain cubic of time.
constexpr double kUsualWeight = 1.0 / 3;
// Below that difference a clamped key counts as level with its neighbour.
constexpr double kLevel = 1e-3;

// What several keys of a curve share.
struct Attribute {
  std::uint32_t mFlags = 0;
  double mData[4] = {};
  std::size_t mUses = 0;
};

// A slope and the part of the distance to the neighbour over which it holds.
struct Tangent {
  double mSlope = 0;
  double mWeight = kUsualWeight;
};

struct Neighbour {
  double mTime = 0, mValue = 0;
};

// The third number holds two weights of four decimals each, stored as the bits of a float; text
// files have those bits as an integer.
std::uint32_t packedWeights(double stored) {
  if (stored >= 1 && stored < 4294967296.0) return std::uint32_t(stored);
  const auto number = float(stored);
  std::uint32_t bits = 0;
  std::memcpy(&bits, &number, sizeof(bits));
  return bits;
}

bool isFlat(double a, double b) { return std::abs(a - b) <= kLevel; }

// The slope of an automatic tangent between two neighbours: the mean of the slope from one to the
// other and of the two one-sided slopes, weighted by the distances.
double blendedSlope(const Neighbour& a, const Neighbour& key, const Neighbour& b,
                    std::uint32_t flags, double bias) {
  const double whole = (b.mValue - a.mValue) / (b.mTime - a.mTime);
  if ((flags & kTimeIndependent) != 0) return whole;
  const double left = (key.mValue - a.mValue) / (key.mTime - a.mTime);
  const double right = (b.mValue - key.mValue) / (b.mTime - key.mTime);
  const double part = (key.mTime - a.mTime) / (b.mTime - a.mTime);
  const double slope = whole / 2 + (left * (1 - part) + right * part) / 2;
  const double share = std::abs(bias) / 100;
  if (share <= 1e-4) return slope;
  const double target = bias > 0 ? right : left;
  const double biased = slope * (1 - share) + target * share;
  if (share <= 5) return biased;
  const double towards = std::abs(target - slope) > 1e-5 ? target - slope : bias;
  return biased + (share - 5) * (share - 5) * (towards > 0 ? 40 : -40);
}

// The largest slope, if positive, with which neither tangent passes its neighbour's value.
double steepest(const Neighbour& a, const Neighbour& key, const Neighbour& b, double sign,
                double leftWeight, double rightWeight) {
  const auto bound = [&](double rise, double run) { return run > 0 ? sign * rise / run : 0; };
  const double left = bound(key.mValue - a.mValue, leftWeight * (key.mTime - a.mTime));
  const double right = bound(b.mValue - key.mValue, rightWeight * (b.mTime - key.mTime));
  return std::max(0.0, std::min(left, right));
}

double automaticSlope(const Neighbour& a, const Neighbour& key, const Neighbour& b,
                      std::uint32_t flags, double leftWeight, double rightWeight, double bias) {
  if ((flags & kClamp) != 0 && (isFlat(a.mValue, key.mValue) || isFlat(b.mValue, key.mValue))) {
    return 0;
  }
  const double slope = blendedSlope(a, key, b, flags, bias);
  if ((flags & kClampProgressive) == 0) return slope;
  const double sign = slope >= 0 ? 1 : -1;
  return sign * std::min(sign * slope, steepest(a, key, b, sign, leftWeight, rightWeight));
}

// At an end of the curve, where there is one neighbour.
double endSlope(const Neighbour& from, const Neighbour& to, std::uint32_t flags, double bias) {
  if ((flags & kClampProgressive) != 0) return 0;
  if ((flags & kClamp) != 0 && isFlat(from.mValue, to.mValue)) return 0;
  const double slope = (to.mValue - from.mValue) / (to.mTime - from.mTime);
  const double excess = std::abs(bias) / 100 - 5;
  if ((flags & kTimeIndependent) != 0 || excess <= 0) return slope;
  return slope + excess * excess * (bias > 0 ? 40 : -40);
}

class CurveReader {
 public:
  CurveReader(const FbxRecord& curve, double startTicks, double ticksPerSecond)
      : mTimes(curve.numbers("KeyTime")), mValues(curve.numbers("KeyValueFloat")) {
    if (mTimes.size() != mValues.size()) {
      throw std::runtime_error("a curve has " + std::to_string(mTimes.size()) + " times and " +
                               std::to_string(mValues.size()) + " values");
    }
    for (double& time : mTimes) time = (time - startTicks) / ticksPerSecond;
    readAttributes(curve);
  }

  std::vector<CurveKey> read() {
    std::vector<CurveKey> keys;
    keys.reserve(mTimes.size());
    std::size_t attribute = 0, used = 0;
    Tangent left;  // of the key to come: the key before it states it
    for (std::size_t i = 0; i < mTimes.size(); ++i) {
      keys.push_back(keyAt(i, mAttributes[attribute], left));
      // Attributes are shared: each states how many keys in a row use it.
      if (++used >= mAttributes[attribute].mUses && attribute + 1 < mAttributes.size()) {
        ++attribute;
        used = 0;
      }
    }
    return keys;
  }

 private:
  // Curves without attributes run straight.
  void readAttributes(const FbxRecord& curve) {
    const auto flags = curve.numbers("KeyAttrFlags"), data = curve.numbers("KeyAttrDataFloat");
    const auto uses = curve.numbers("KeyAttrRefCount");
    for (std::size_t i = 0; i < flags.size(); ++i) {
      Attribute attribute;
      if (flags[i] >= 0 && flags[i] < 4294967296.0) attribute.mFlags = std::uint32_t(flags[i]);
      for (std::size_t d = 0; d < 4 && 4 * i + d < data.size(); ++d) {
        attribute.mData[d] = data[4 * i + d];
      }
      if (i < uses.size() && uses[i] > 0 && uses[i] < 1e15) {
        attribute.mUses = std::size_t(uses[i]);
      }
      mAttributes.push_back(attribute);
    }
    if (mAttributes.empty()) mAttributes.emplace_back();
  }

  Neighbour neighbour(std::size_t i) const { return {mTimes[i], mValues[i]}; }
  bool hasBefore(std::size_t i) const { return i > 0 && mTimes[i] > mTimes[i - 1]; }
  bool hasAfter(std::size_t i) const { return i + 1 < mTimes.size() && mTimes[i + 1] > mTimes[i]; }

  // Replaces `ioLeft` by the left tangent of the next key.
  CurveKey keyAt(std::size_t i, const Attribute& attribute, Tangent& ioLeft) const {
    CurveKey key;
    key.mTime = mTimes[i];
    key.mValue = mValues[i];
    Tangent right{attribute.mData[0], kUsualWeight}, nextLeft{attribute.mData[1], kUsualWeight};
    const std::uint32_t weights = packedWeights(attribute.mData[2]);
    if ((attribute.mFlags & kWeightedRight) != 0) right.mWeight = double(weights & 0xffff) * 1e-4;
    if ((attribute.mFlags & kWeightedNextLeft) != 0)
      nextLeft.mWeight = double(weights >> 16) * 1e-4;
    if ((attribute.mFlags & kConstant) != 0) {
      key.mNext =
          (attribute.mFlags & kNextValue) != 0 ? CurveKey::Next::Jump : CurveKey::Next::Hold;
      right = nextLeft = {};
    } else if ((attribute.mFlags & kCubic) != 0) {
      key.mNext = CurveKey::Next::Cubic;
      solve(i, attribute, ioLeft, right, nextLeft);
    } else {
      right.mSlope = hasAfter(i) ? slopeTo(i) : 0;
      right.mWeight = kUsualWeight;
      nextLeft = right;
    }
    place(i, ioLeft, right, key);
    ioLeft = nextLeft;
    return key;
  }

  double slopeTo(std::size_t i) const {
    return (mValues[i + 1] - mValues[i]) / (mTimes[i + 1] - mTimes[i]);
  }

  void solve(std::size_t i, const Attribute& attribute, Tangent& ioLeft, Tangent& ioRight,
             Tangent& ioNextLeft) const {
    if ((attribute.mFlags & kTcb) != 0) {
      solveTcb(i, attribute, ioLeft, ioRight);
      ioNextLeft = {};
    } else if ((attribute.mFlags & kUser) == 0) {
      solveAutomatic(i, attribute.mFlags, ioLeft, ioRight);
    }
  }

  // Tension, continuity and bias, after Kochanek and Bartels.
  void solveTcb(std::size_t i, const Attribute& attribute, Tangent& ioLeft,
                Tangent& ioRight) const {
    const double before = hasBefore(i) ? slopeTo(i - 1) : 0, after = hasAfter(i) ? slopeTo(i) : 0;
    // At an end there is one slope instead of the mean of two.
    const double part = hasBefore(i) && hasAfter(i) ? 0.5 : 1;
    const double tension = part * (1 - attribute.mData[0]), continuity = attribute.mData[1];
    const double bias = attribute.mData[2];
    ioLeft.mSlope =
        tension * ((1 + bias) * (1 - continuity) * before + (1 - bias) * (1 + continuity) * after);
    ioRight.mSlope =
        tension * ((1 + bias) * (1 + continuity) * before + (1 - bias) * (1 - continuity) * after);
  }

  // The stored slopes are only the bias of the ones that are meant.
  void solveAutomatic(std::size_t i, std::uint32_t flags, Tangent& ioLeft, Tangent& ioRight) const {
    const double leftBias = -ioLeft.mSlope, rightBias = ioRight.mSlope;
    if (hasBefore(i) && hasAfter(i)) {
      const auto slope = [&](double bias) {
        return automaticSlope(neighbour(i - 1), neighbour(i), neighbour(i + 1), flags,
                              ioLeft.mWeight, ioRight.mWeight, bias);
      };
      const bool isSmooth = std::abs(ioLeft.mSlope + ioRight.mSlope) <= 1e-4;
      ioLeft.mSlope = slope(isSmooth ? rightBias : leftBias);
      ioRight.mSlope = slope(rightBias);
    } else if (hasBefore(i)) {
      ioLeft.mSlope = ioRight.mSlope = endSlope(neighbour(i - 1), neighbour(i), flags, leftBias);
    } else if (hasAfter(i)) {
      ioLeft.mSlope = ioRight.mSlope = endSlope(neighbour(i), neighbour(i + 1), flags, rightBias);
    } else {
      ioLeft.mSlope = ioRight.mSlope = 0;
    }
  }

  void place(std::size_t i, const Tangent& left, const Tangent& right, CurveKey& outKey) const {
    // The control point is on the line of the tangent, a part of the way to the neighbour's time.
    if (hasBefore(i)) outKey.mLeftTime = left.mWeight * (mTimes[i] - mTimes[i - 1]);
    if (hasAfter(i)) outKey.mRightTime = right.mWeight * (mTimes[i + 1] - mTimes[i]);
    outKey.mLeftValue = outKey.mLeftTime * left.mSlope;
    outKey.mRightValue = outKey.mRightTime * right.mSlope;
  }

  std::vector<double> mTimes, mValues;
  std::vector<Attribute> mAttributes;
};

}  // namespace

std::vector<CurveKey> fbxCurveKeys(const FbxRecord& curve, double startTicks,
                                   double ticksPerSecond) {
  return CurveReader(curve, startTicks, ticksPerSecond).read();
}

}  // namespace vexa::importer
