#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "vexa/math/uxs_generic_mat4.h"

namespace Norvel::Vexa {

class XCFrameCollector;
class XIFrameCollector;

// The matrices of all nodes of a file, node by node, and the table of frames that they share.
struct FrameSlab {
  // Per take, and for the end: the number of its first matrix in each node.
  std::vector<std::uint32_t> mStarts;
  // Sixteen values a matrix; not initialised before a node is there.
  std::unique_ptr<float[]> mValues;
};

// Fills an empty frame collector from a file, whole nodes at a time. What it does could be done by
// the operations of XIFrameCollector, and has the same effect.
class CollectorFill {
 public:
  using Matrix = UXS::uxs_generic_mat4<float>;

  // Of a collector of the library that is empty; null for any other.
  static std::unique_ptr<CollectorFill> of(XIFrameCollector& collector);

  // Makes room for `nodes` nodes, all with these numbers of frames per take. There are frames.
  void reserveNodes(const std::vector<std::uint32_t>& frameCounts, std::uint32_t nodes);
  // Makes room for more links; `most` bounds how many there will be in all.
  void reserveLinks(std::uint32_t links, std::uint64_t most);

  // The matrices of the next node, take by take: the caller makes each of them.
  Matrix* nextNode();
  // Adds the node whose matrices have been made; returns its index.
  int addNode();
  void addLink(int node, std::uint32_t vertex, double weight);
  // Prepares what has been added for use.
  void finish();

 private:
  explicit CollectorFill(XCFrameCollector& collector);

  XCFrameCollector& mCollector;
  std::size_t mVertices;  // of its mesh
  std::size_t mNodes = 0;
};

}  // namespace Norvel::Vexa
