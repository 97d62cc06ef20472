#include "vexa/framecollector/VertexLinks_internal.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

#include "vexa/support/large_pages_internal.h"

namespace Norvel::Vexa {

using skinning::kBlock;

void VertexLinks::reserve(std::size_t links, std::size_t most) {
  const std::size_t needed = mLog.size() + links;
  if (needed <= mLog.capacity()) return;
  // At least doubled, so that the cost of moving stays linear; `most` may be far too many.
  constexpr std::size_t kAtOnce = std::size_t{1} << 20;
  mLog.reserve(std::max(needed, std::min(std::max(2 * mLog.capacity(), kAtOnce), most)));
  useLargePages(mLog.data(), mLog.capacity() * sizeof(Logged));
}

bool VertexLinks::has(std::size_t vertex) const {
  const Range range = laidOut(vertex);
  return lastLogged(vertex) != kNone || range.mBegin != range.mEnd;
}

// The next vertex in the block's order starts where this one ends. Where all vertices of
// a block have equally many links, each is at its own place, so that is looked at first.
VertexLinks::Range VertexLinks::laidOut(std::size_t vertex) const {
  if (vertex >= mFirst.size()) return {0, 0};
  const std::size_t block = vertex / kBlock;
  const std::uint8_t* const order = mOrder.data() + block * kBlock;
  const std::uint8_t* const end =
      order + std::min<std::size_t>(kBlock, vertices() - block * kBlock);
  const std::uint8_t* const place = order[vertex % kBlock] == vertex % kBlock
                                        ? order + vertex % kBlock
                                        : std::find(order, end, std::uint8_t(vertex % kBlock));
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
  void collect(std::size_t vertex);
  void reorder(std::size_t first, std::size_t count);
  void addRun(std::size_t vertex);

  // How many vertices before its turn the links of one are fetched.
  static constexpr std::size_t kAhead = 16;
  // Sorting key of a vertex: its number of links, or kLeft.
  static constexpr std::uint32_t kLeft = 0xFFFFFFFF;

  const VertexLinks& mFrom;
  VertexLinks mTo;
  std::uint32_t mKeys[kBlock], mCounts[kBlock];
  std::vector<skinning::Link> mOldLinks;  // of a block, while it is reordered
  std::vector<double> mOldWeights;
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

//   collected      vertex   a: 2 links   b: 1   c: 2   d: left
//   order          b | a c | d           by number of links, then by index; those left come last
//   runs           (1 link, 1 vertex) (2, 2) (0, 1)
//
// The links are collected while the order is not known yet, and moved only when it is another one.
void VertexLinks::Layout::fillBlock(std::size_t first, std::size_t count) {
  mTo.mBlockLinks.push_back(std::uint32_t(mTo.mLinks.size()));
  for (std::size_t i = 0; i < count; ++i) {
    mFrom.expect(first + i + kAhead);
    collect(first + i);
  }
  std::uint8_t* const order = mTo.mOrder.data() + first;
  std::iota(order, order + count, std::uint8_t{0});
  const auto isBefore = [this](std::uint8_t a, std::uint8_t b) {
    return mKeys[a] != mKeys[b] ? mKeys[a] < mKeys[b] : a < b;
  };
  if (!std::is_sorted(order, order + count, isBefore)) {
    std::sort(order, order + count, isBefore);
    reorder(first, count);
  }
  mTo.mBlockRuns.push_back(std::uint32_t(mTo.mRuns.size()));
  for (std::size_t i = 0; i < count; ++i) {
    if (i == 0 || mKeys[order[i]] != mKeys[order[i - 1]]) addRun(first + order[i]);
    ++mTo.mRuns.back().mVertices;
  }
}

// Appends the links of a vertex. Vertices without links, and with links to absent nodes, are left
// to the caller of a kernel.
void VertexLinks::Layout::collect(std::size_t vertex) {
  const std::size_t begin = mTo.mLinks.size();
  bool isLeft = false;
  double sum = 0, absolute = 0;
  mFrom.visit(vertex, [&](std::uint32_t node, double weight) {
    isLeft |= node >= mTo.mIsUsed.size();
    mTo.mLinks.push_back({node, float(weight)});
    mTo.mWeights.push_back(weight);
    sum += weight;  // order: exact floats
    absolute += std::fabs(weight);
  });
  const auto count = std::uint32_t(mTo.mLinks.size() - begin);
  mCounts[vertex % kBlock] = count;
  mKeys[vertex % kBlock] = isLeft || count == 0 ? kLeft : count;
  mTo.mFirst[vertex] = std::uint32_t(begin);
  mTo.mScales[vertex] = 1.0f / float(sum);
  if (absolute > mTo.mLargestWeight || std::isnan(absolute)) mTo.mLargestWeight = absolute;
  if (isLeft) return;
  for (std::size_t i = begin; i < mTo.mLinks.size(); ++i) mTo.mIsUsed[mTo.mLinks[i].mNode] = 1;
}

// Moves the links of a block, collected vertex by vertex, into the block's order.
void VertexLinks::Layout::reorder(std::size_t first, std::size_t count) {
  std::uint32_t to = mTo.mBlockLinks.back();
  const std::uint32_t begin = to;
  mOldLinks.assign(mTo.mLinks.begin() + std::ptrdiff_t(to), mTo.mLinks.end());
  mOldWeights.assign(mTo.mWeights.begin() + std::ptrdiff_t(to), mTo.mWeights.end());
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t vertex = mTo.mOrder[first + i];
    const std::uint32_t from = mTo.mFirst[first + vertex] - begin;
    mTo.mFirst[first + vertex] = to;
    std::copy_n(mOldLinks.data() + from, mCounts[vertex], mTo.mLinks.data() + to);
    std::copy_n(mOldWeights.data() + from, mCounts[vertex], mTo.mWeights.data() + to);
    to += mCounts[vertex];
  }
}

void VertexLinks::Layout::addRun(std::size_t vertex) {
  const std::uint32_t key = mKeys[vertex % kBlock];
  mTo.mRuns.push_back({key == kLeft ? 0 : key, 0});
}

// The new layout is complete before it replaces the old one and the log.
void VertexLinks::layOut(std::size_t vertices, std::uint32_t nodes) {
  if (mLog.empty() && mFirst.size() >= vertices && mIsUsed.size() == nodes) return;
  Layout layout(*this, vertices, nodes);
  layout.fill();
  *this = layout.take();
}

}  // namespace Norvel::Vexa
