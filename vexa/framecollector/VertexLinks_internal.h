#pragma once

#include <cstddef>
#include <cstdint>
#include <new>
#include <vector>

#include "vexa/framecollector/skinning_internal.h"

namespace Norvel::Vexa {

// The weighted links from the vertices of a mesh to nodes.
//
// A link is added to a log, in which those of one vertex form a chain. Before a mesh is deformed
// the log is laid out: the links of a vertex lie side by side in visiting order, the last added
// first, and the vertices of a block follow each other by number of links.
//
//   log       a1 b1 a2 c1 a3              laid out   b1 c1 | a3 a2 a1
//             ^-----^-----' chain of a               runs of 1 and of 3 links
//
// Invariant: the links of a vertex are those of its chain in the log, then those laid out.
class VertexLinks {
 public:
  // Adds a link to one of `vertices` vertices; returns whether the vertex had none before. Throws
  // std::bad_alloc, with nothing changed.
  bool add(std::size_t vertex, std::uint32_t node, double weight, std::size_t vertices) {
    if (mLastLogged.size() <= vertex) mLastLogged.resize(vertices, kNone);
    if (mLog.size() + mLinks.size() >= kNone) throw std::bad_alloc();  // no index is left
    std::uint32_t& last = mLastLogged[vertex];
    const bool isFirst = last == kNone && (mLinks.empty() || !has(vertex));
    mLog.push_back({weight, node, last});
    last = std::uint32_t(mLog.size() - 1);
    return isFirst;
  }
  // Makes room for `links` more, of which there will be `most` in all.
  void reserve(std::size_t links, std::size_t most);

  bool has(std::size_t vertex) const;

  // Lays out what has been added, for a mesh of `vertices` vertices and for nodes below `nodes`.
  // Throws std::bad_alloc, with nothing changed.
  void layOut(std::size_t vertices, std::uint32_t nodes);

  // Calls visit(node, weight) for the links of a vertex, the last added first; returns whether it
  // has any.
  template <class Visit>
  bool visit(std::size_t vertex, Visit visit) const;

  // Whether the layout holds all that has been added, for nodes below `nodes`.
  bool isLaidOut(std::uint32_t nodes) const { return mLog.empty() && mIsUsed.size() == nodes; }

  // What follows is about the layout.
  std::size_t blocks() const { return mBlockLinks.empty() ? 0 : mBlockLinks.size() - 1; }
  std::size_t vertices() const { return mFirst.size(); }
  // A block of the layout, without positions.
  skinning::Block block(std::size_t index) const;
  // Whether a vertex that is deformed block by block follows the node.
  bool isUsed(std::uint32_t node) const { return mIsUsed[node] != 0; }
  // The largest sum of absolute weights of a vertex; NaN if a weight is.
  double largestWeight() const { return mLargestWeight; }

 private:
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;

  struct Logged {
    double mWeight;
    std::uint32_t mNode;
    std::uint32_t mPrevious;  // the link of the same vertex added before, or kNone
  };

  class Layout;

  std::uint32_t lastLogged(std::size_t vertex) const {
    return vertex < mLastLogged.size() ? mLastLogged[vertex] : kNone;
  }
  // Fetches the last link that was added to a vertex into the cache.
  void expect(std::size_t vertex) const {
    const std::uint32_t last = lastLogged(vertex);
    if (last != kNone) __builtin_prefetch(&mLog[last]);
  }
  // Where the links of a vertex lie in mLinks.
  struct Range {
    std::uint32_t mBegin, mEnd;
  };
  Range laidOut(std::size_t vertex) const;

  std::vector<Logged> mLog;
  std::vector<std::uint32_t> mLastLogged;  // per vertex, or empty

  std::vector<skinning::Link> mLinks;
  std::vector<double> mWeights;            // per link: the weight as it was given
  std::vector<std::uint32_t> mFirst;       // per vertex: its first link
  std::vector<float> mScales;              // per vertex: 1 / sum of weights
  std::vector<std::uint8_t> mOrder;        // per block: its vertices in the order of their links
  std::vector<skinning::Run> mRuns;        // per block: cover mOrder
  std::vector<std::uint32_t> mBlockLinks;  // per block: its first link; and the end of all
  std::vector<std::uint32_t> mBlockRuns;   // per block: its first run
  std::vector<std::uint8_t> mIsUsed;       // per node
  double mLargestWeight = 0;
};

template <class Visit>
bool VertexLinks::visit(std::size_t vertex, Visit visit) const {
  const std::uint32_t last = lastLogged(vertex);
  for (std::uint32_t i = last; i != kNone; i = mLog[i].mPrevious) {
    visit(mLog[i].mNode, mLog[i].mWeight);
  }
  const Range range = laidOut(vertex);
  for (std::uint32_t i = range.mBegin; i < range.mEnd; ++i) visit(mLinks[i].mNode, mWeights[i]);
  return last != kNone || range.mBegin != range.mEnd;
}

}  // namespace Norvel::Vexa
