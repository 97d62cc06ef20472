#include "vexa/framecollector/XCTransformationNode.h"

#include <algorithm>
#include <new>
#include <utility>

#include "vexa/support/UxThrow.h"

namespace Norvel::Vexa {

XCTransformationNode::XCTransformationNode(unsigned int takeCount) : mTakeCount(takeCount) {}

XCTransformationNode::XCTransformationNode(const std::vector<std::uint32_t>& starts,
                                           const Matrix* slab)
    : mTakeCount(unsigned(starts.size() - 1)), mStarts(&starts), mSlab(slab) {}

// A copy has its matrices for itself: the slab belongs to a collector, which may be gone earlier.
XCTransformationNode::XCTransformationNode(const XCTransformationNode& other)
    : mTakeCount(other.mTakeCount), mTakes(other.ownTakes()) {}

XCTransformationNode& XCTransformationNode::operator=(XCTransformationNode other) noexcept {
  std::swap(mTakeCount, other.mTakeCount);
  std::swap(mStarts, other.mStarts);
  std::swap(mSlab, other.mSlab);
  mTakes.swap(other.mTakes);
  return *this;
}

XCTransformationNode::~XCTransformationNode() = default;

void XCTransformationNode::AddTransformation(const Matrix& matrix, unsigned int take) {
  UxThrow::IfFalse(take < mTakeCount, "XCTransformationNode::AddTransformation : bad take index");
  const Matrix copy = matrix;  // it may lie in what is about to move
  // The matrices of a file cannot grow in place: other nodes' matrices lie behind them.
  if (mStarts != nullptr) {
    mTakes = ownTakes();
    mStarts = nullptr;
    mSlab = nullptr;
  }
  if (arrayOf(take).push_back(copy) == nullptr) throw std::bad_alloc();
}

const UXS::uxs_generic_mat4<float>& XCTransformationNode::GetTransformation(
    unsigned int take, unsigned int frame) const {
  UxThrow::IfFalse(take < mTakeCount, "XCTransformationNode::GetTransformation : bad take index");
  const Frames found = frames(take);
  UxThrow::IfFalse(frame < found.mCount,
                   "XCTransformationNode::GetTransformation : bad transformation index");
  // NOLINTNEXTLINE(clang-analyzer-core.uninitialized.UndefReturn): the check above throws.
  return found.mFirst[frame];
}

unsigned int XCTransformationNode::GetTransformationsNbr(unsigned int take) const {
  UxThrow::IfFalse(take < mTakeCount,
                   "XCTransformationNode::GetTransformationsNbr : bad take index");
  return frames(take).mCount;
}

const XCTransformationNode::Take* XCTransformationNode::find(unsigned int take) const {
  const auto found =
      std::lower_bound(mTakes.begin(), mTakes.end(), take,
                       [](const Take& a, unsigned int index) { return a.mIndex < index; });
  return found != mTakes.end() && found->mIndex == take ? &*found : nullptr;
}

// Copies of the takes that have frames.
std::vector<XCTransformationNode::Take> XCTransformationNode::ownTakes() const {
  std::vector<Take> takes;
  const auto add = [&](unsigned int take) {
    const Frames from = frames(take);
    if (from.mCount == 0) return;
    takes.push_back({take, MatrixArray()});
    MatrixArray& to = takes.back().mFrames;
    if (!to.reserve(from.mCount)) throw std::bad_alloc();
    for (unsigned int f = 0; f < from.mCount; ++f) to.push_back(from.mFirst[f]);
  };
  if (mStarts != nullptr) {
    for (unsigned int take = 0; take < mTakeCount; ++take) add(take);
  } else {
    for (const Take& take : mTakes) add(take.mIndex);
  }
  return takes;
}

// The array of a take, made at its place in the order when it is the first frame.
XCTransformationNode::MatrixArray& XCTransformationNode::arrayOf(unsigned int take) {
  const auto place =
      std::lower_bound(mTakes.begin(), mTakes.end(), take,
                       [](const Take& a, unsigned int index) { return a.mIndex < index; });
  if (place != mTakes.end() && place->mIndex == take) return place->mFrames;
  return mTakes.insert(place, Take{take, MatrixArray()})->mFrames;
}

}  // namespace Norvel::Vexa
