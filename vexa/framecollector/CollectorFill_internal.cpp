#include "vexa/framecollector/CollectorFill_internal.h"

#include <typeinfo>
#include <utility>

#include "vexa/framecollector/VertexLinks_internal.h"
#include "vexa/framecollector/XCFrameCollector.h"
#include "vexa/support/large_pages_internal.h"

namespace Norvel::Vexa {

CollectorFill::CollectorFill(XCFrameCollector& collector)
    : mCollector(collector), mVertices(collector.restVertices().size()) {}

// A class derived from XCFrameCollector may have overridden what fills it.
std::unique_ptr<CollectorFill> CollectorFill::of(XIFrameCollector& collector) {
  if (typeid(collector) != typeid(XCFrameCollector)) return nullptr;
  auto& own = static_cast<XCFrameCollector&>(collector);
  if (!own.mTakes.empty() || !own.mNodes.empty()) return nullptr;
  own.dropAskedPoints();
  return std::unique_ptr<CollectorFill>(new CollectorFill(own));
}

// One slab for all nodes of the file:
//
//   node 0: take 0 | take 1 | ...   node 1: take 0 | take 1 | ...
//           ^mStarts[0]  ^mStarts[1]        the same starts in each node
void CollectorFill::reserveNodes(const std::vector<std::uint32_t>& frameCounts,
                                 std::uint32_t nodes) {
  auto slab = std::make_unique<FrameSlab>();
  slab->mStarts.reserve(frameCounts.size() + 1);
  slab->mStarts.push_back(0);
  for (const std::uint32_t count : frameCounts) {
    slab->mStarts.push_back(slab->mStarts.back() + count);
  }
  const std::size_t values = std::size_t{16} * slab->mStarts.back() * nodes;
  slab->mValues.reset(new float[values]);
  useLargePages(slab->mValues.get(), values * sizeof(float));
  mCollector.mNodes.reserve(nodes);
  mCollector.mSlab = std::move(slab);
}

void CollectorFill::reserveLinks(std::uint32_t links, std::uint64_t most) {
  mCollector.mLinks->reserve(links, std::size_t(most));
}

CollectorFill::Matrix* CollectorFill::nextNode() {
  const FrameSlab& slab = *mCollector.mSlab;
  return reinterpret_cast<Matrix*>(slab.mValues.get()) + mNodes * slab.mStarts.back();
}

// The sizes are those that AddTransformation and AddLink count.
int CollectorFill::addNode() {
  const std::vector<std::uint32_t>& starts = mCollector.mSlab->mStarts;
  mCollector.mNodes.push_back(XCTransformationNode(starts, nextNode()));
  mCollector.mSize += 64 * starts.back() + 32 + 48 * mCollector.GetNbrTakes();
  return int(mNodes++);
}

void CollectorFill::addLink(int node, std::uint32_t vertex, double weight) {
  if (vertex >= mVertices) {
    return mCollector.XCFrameCollector::AddLink(node, UxZel::CZelUUID{}, vertex, weight);  // throws
  }
  const bool isFirst = mCollector.mLinks->add(vertex, std::uint32_t(node), weight, mVertices);
  mCollector.mSize += isFirst ? 72 + 28 : 28;
}

void CollectorFill::finish() {
  mCollector.mLinks->layOut(mCollector.restVertices().size(), mCollector.nodeCount());
}

}  // namespace Norvel::Vexa
