#include "vexa/framecollector/VertexLinks_internal.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <numeric>
#include <utility>

namespace Norvel::Vexa {

using skinning::kBlock;

bool VertexLinks::add(std::size_t vertex, std::uint32_t node, double weight, std::size_t vertices) {
  if (mLastLogged.size() <= vertex) mLastLogged.resize(vertices, kNone);
  if (mLog.size() + mLinks.size() >= kNone) throw std::bad_alloc();  // no index is left
  const bool isFirst = !has(vertex);
  std::uint32_t& last = mLastLogged[vertex];
  mLog.push_back({weight, node, last});
  last = std::uint32_t(mLog.size() - 1);
  return isFirst;
}

void VertexLinks::reserve(std::size_t links, std::size_t most) {
  const std::size_t needed = mLog.size() + links;
  if (needed <= mLog.capacity()) return;
  // At least doubled, so that the cost of moving stays linear; `most` may be far too many.
  constexpr std::size_t kAtOnce = std::size_t{1} << 20;
  mLog.reserve(std::max(needed, std::min(std::max(2 * mLog.capacity(), kAtOnce), most)));
}

bool VertexLinks::has(std::size_t vertex) const {
  const Range range = laidOut(vertex);
  return lastLogged(vertex) != kNone || range.mBegin != range.mEnd;
}

// The next vertex in the block's order starts where this one ends.
VertexLinks::Range VertexLinks::laidOut(std::size_t vertex) const {
  if (vertex >= mFirst.size()) return {0, 0};
  const std::size_t block = vertex / kBlock;
  const std::uint8_t* const order = mOrder.data() + block * kBlock;
  const std::uint8_t* const end =
      order + std::min<std::size_t>(kBlock, vertices() - block * kBlock);
  const std::uint8_t* const place =
      order[vertex % kBlock] == vertex % kBlock
          ? order + vertex % kBlock
          : std::find(order, end, static_cast<std::uint8_t>(vertex % kBlock));
  return {mFirst[vertex],
          place + 1 == end ? mBlockLinks[block + 1] : mFirst[block * kBlock + place[1]]};
}

skinning::Block VertexLinks::block(std::size_t index) const {
  const std::size_t first = index * kBlock;
  skinning::Block block{};
  block.mVertices = int(std::min<std::size_t>(kBlock, vertices() - first));
  block.mScales = mScales.data() + first;
  block.mOrder = mOrder.data() + first;
  block.mRuns = mRuns.data() + mBlockRuns[index];
  block.mLinks = mLinks.data() + mBlockLinks[index];
  return block;
}

// Makes a new layout out of the log and the old one.
class VertexLinks::Layout {
 public:
  Layout(const VertexLinks& from, std::size_t vertices, std::uint32_t nodes);
  void fill();
  VertexLinks take() { return std::move(mTo); }

 private:
  void fillBlock(std::size_t first, std::size_t count);
  void measure(std::size_t vertex);
  void addRun(std::size_t vertex);
  void addVertex(std::size_t vertex);

  // Sorting key of a vertex: its number of links, or kLeft.
  static constexpr std::uint64_t kLeft = 0xFFFFFFFF;

  const VertexLinks& mFrom;
  VertexLinks mTo;
  std::uint64_t mKeys[kBlock];
};

VertexLinks::Layout::Layout(const VertexLinks& from, std::size_t vertices, std::uint32_t nodes)
    : mFrom(from) {
  vertices = std::max({vertices, from.vertices(), from.mLastLogged.size()});
  const std::size_t links = from.mLog.size() + from.mLinks.size();
  mTo.mLinks.reserve(links);
  mTo.mWeights.reserve(links);
  mTo.mFirst.resize(vertices);
  mTo.mScales.resize(vertices);
  mTo.mOrder.resize(vertices);
  mTo.mIsUsed.resize(nodes);
}

void VertexLinks::Layout::fill() {
  const std::size_t vertices = mTo.vertices();
  for (std::size_t first = 0; first < vertices; first += kBlock) {
    fillBlock(first, std::min<std::size_t>(kBlock, vertices - first));
  }
  mTo.mBlockLinks.push_back(std::uint32_t(mTo.mLinks.size()));
}

void VertexLinks::Layout::fillBlock(std::size_t first, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) measure(first + i);
  std::uint8_t* const order = mTo.mOrder.data() + first;
  std::iota(order, order + count, std::uint8_t{0});
  const auto isBefore = [this](std::uint8_t a, std::uint8_t b) {
    return mKeys[a] != mKeys[b] ? mKeys[a] < mKeys[b] : a < b;
  };
  if (!std::is_sorted(order, order + count, isBefore)) std::sort(order, order + count, isBefore);
  mTo.mBlockLinks.push_back(std::uint32_t(mTo.mLinks.size()));
  mTo.mBlockRuns.push_back(std::uint32_t(mTo.mRuns.size()));
  for (std::size_t i = 0; i < count; ++i) {
    if (i == 0 || mKeys[order[i]] != mKeys[order[i - 1]]) addRun(first + order[i]);
    ++mTo.mRuns.back().mVertices;
    addVertex(first + order[i]);
  }
}

// Vertices without links, and with links to absent nodes, are left to the caller of a kernel.
void VertexLinks::Layout::measure(std::size_t vertex) {
  std::uint64_t count = 0;
  bool isLeft = false;
  mFrom.visit(vertex, [&](std::uint32_t node, double) {
    ++count;
    isLeft |= node >= mTo.mIsUsed.size();
  });
  mKeys[vertex % kBlock] = isLeft || count == 0 ? kLeft : count;
}

void VertexLinks::Layout::addRun(std::size_t vertex) {
  const std::uint64_t key = mKeys[vertex % kBlock];
  mTo.mRuns.push_back({key == kLeft ? 0 : std::uint32_t(key), 0});
}

void VertexLinks::Layout::addVertex(std::size_t vertex) {
  const bool isLeft = mKeys[vertex % kBlock] == kLeft;
  mTo.mFirst[vertex] = std::uint32_t(mTo.mLinks.size());
  double sum = 0, absolute = 0;
  mFrom.visit(vertex, [&](std::uint32_t node, double weight) {
    mTo.mLinks.push_back({node, float(weight)});
    mTo.mWeights.push_back(weight);
    sum += weight;  // order: exact floats
    absolute += std::fabs(weight);
    if (!isLeft) mTo.mIsUsed[node] = 1;
  });
  mTo.mScales[vertex] = 1.0f / float(sum);
  if (absolute > mTo.mLargestWeight || std::isnan(absolute)) mTo.mLargestWeight = absolute;
}

void VertexLinks::layOut(std::size_t vertices, std::uint32_t nodes) {
  if (mLog.empty() && mFirst.size() >= vertices && mIsUsed.size() == nodes) return;
  Layout layout(*this, vertices, nodes);
  layout.fill();
  *this = layout.take();
}

}  // namespace Norvel::Vexa
