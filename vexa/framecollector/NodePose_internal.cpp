#include "vexa/framecollector/NodePose_internal.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace Norvel::Vexa {
namespace {

// A register of AVX-512: a matrix then lies in one line of the cache.
constexpr std::size_t kAlignment = 64;

// A sum of weighted matrices stays finite when the exact one is below this: rounding a hundred
// million times upwards does not make up for the factor that is left. A weight has the same bound,
// as one that is larger may be infinite as a float.
constexpr double kBound = 1e30;

float* aligned(std::vector<float>& storage) {
  const auto address = reinterpret_cast<std::uintptr_t>(storage.data());
  return storage.data() + (kAlignment - address % kAlignment) % kAlignment / sizeof(float);
}

bool isIdentity(const UXS::uxs_generic_mat4<float>& matrix) {
  const UXS::uxs_generic_mat4<float> identity;
  // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison): a -0 is no element of the identity.
  return std::memcmp(matrix.e, identity.e, sizeof(matrix.e)) == 0;
}

}  // namespace

NodePose::NodePose(std::uint32_t nodes, std::uint32_t frame, const Matrix& global)
    : mGlobal(global), mNodes(nodes, skinning::HeldNode{nullptr, 0}) {
  mPose.mFrame = frame;
  mPose.mGlobal = global.e;
}

void NodePose::set(std::uint32_t node, const Matrix* frames, std::uint32_t count) {
  mFewest = std::min(mFewest, count);
  mMost = std::max(mMost, count);
  if (count > 0) mNodes[node] = {frames->e, count - 1};
}

// A palette needs one frame for all nodes: either no node is too short for it, or all have equally
// many frames and hold the same last one. It has a matrix for each node, rows instead of columns,
// so that a blend without the last row is shorter.
void NodePose::gather(double largestWeight) {
  mPose.mNodes = mNodes.data();
  if (mFewest == 0 || (mFewest != mMost && mPose.mFrame >= mFewest)) return;
  mPalette.resize(16 * mNodes.size() + kAlignment / sizeof(float));
  float* const palette = aligned(mPalette);
  mPose.mPalette = palette;
  float largest = 0;
  for (std::size_t n = 0; n < mNodes.size(); ++n) {
    const skinning::HeldNode& node = mNodes[n];
    if (node.mFirst == nullptr) continue;
    const std::size_t frame = std::min(mPose.mFrame, node.mLast);
    const float here = gatherRows(node.mFirst + 16 * frame, palette + 16 * n);
    if (here > largest || std::isnan(here)) largest = here;
  }
  mIsBounded = largestWeight < kBound && double(largest) * largestWeight < kBound;
}

float NodePose::gatherRows(const float* columns, float* outRows) {
  float largest = 0;
  for (int r = 0; r < 4; ++r) {
    for (int c = 0; c < 4; ++c) {
      const float value = columns[4 * c + r];
      outRows[4 * r + c] = value;
      if (std::fabs(value) > largest || std::isnan(value)) largest = std::fabs(value);
    }
  }
  return largest;
}

// The identity can be left out: the product adds terms 0 x to each element, which change nothing
// unless x is infinite or NaN or the element is -0; a sum that starts at +0 is never -0.
skinning::DeformBlock NodePose::kernel(const skinning::Kernels& kernels) const {
  if (mPose.mPalette == nullptr) return kernels.mHeld;
  return mIsBounded && isIdentity(mGlobal) ? kernels.mIdentity : kernels.mPosed;
}

}  // namespace Norvel::Vexa
