#include "vexa/framecollector/XCFrameCollector.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <new>
#include <utility>

#include "vexa/framecollector/CollectorFill_internal.h"
#include "vexa/framecollector/NodePose_internal.h"
#include "vexa/framecollector/VertexLinks_internal.h"
#include "vexa/math/simd/Quads.h"
#include "vexa/mesh/MeshEditor.h"
#include "vexa/mesh/MeshImpl.h"
#include "vexa/mesh/uxs_autoptr.h"
#include "vexa/support/UxThrow.h"
#include "vexa/support/XCReporter.h"

namespace Norvel::Vexa {
namespace {

using Matrix = UXS::uxs_generic_mat4<float>;
using Point = Oru::TVector3D<float>;

// Makes a mesh with one reference, for a pointer that releases it.
UXS::Mesh* newMesh() {
  auto* mesh = new UXS::Mesh;
  mesh->increment();
  return mesh;
}

// Why a link can not be followed. The texts are whole: a rig may have many such links.
constexpr char kBadNode[] =
    "XCFrameCollector::FillMatrix : XCFrameCollector::GetTransformation : bad node index "
    "(assertion failed)";
constexpr char kBadTake[] =
    "XCFrameCollector::FillMatrix : XCTransformationNode::GetTransformationsNbr : bad take index "
    "(assertion failed)";
constexpr char kNoFrames[] =
    "XCFrameCollector::FillMatrix : XCTransformationNode::GetTransformation : bad transformation "
    "index (assertion failed)";

// Out of line: the registers of a blend need not be saved where no link fails.
__attribute__((noinline, cold)) const Matrix* reportLink(const char* text) {
  XCReporter::SendMsg2Reporter(XIReporter::kMsgWarning, text);
  return nullptr;
}

}  // namespace

// The mesh as it is deformed for one definition.
struct XCFrameCollector::sCloneDefinitions {
  sCloneDefinitions(unsigned int frame, unsigned int take)
      : mFrame(frame), mTake(take), mMesh(newMesh()) {}

  unsigned int mFrame;
  unsigned int mTake;
  UXS::uxs_autoptr<UXS::Mesh> mMesh;
};

// The weighted sum of the matrices of a vertex's nodes, before the global transformation.
struct XCFrameCollector::Blend {
  Quads mColumns[4] = {Quads::zero(), Quads::zero(), Quads::zero(), Quads::zero()};
  double mWeightSum = 0;

  // The product global * this, column by column.
  void multiply(const Matrix& global, Quads outColumns[4]) const {
    const float* const g = global.e;
    for (int c = 0; c < 4; ++c) {
      alignas(16) float a[4];
      mColumns[c].store(a);
      // order: exact floats
      outColumns[c] =
          ((Quads::load(g) * a[0] + Quads::load(g + 4) * a[1]) + Quads::load(g + 8) * a[2]) +
          Quads::load(g + 12) * a[3];
    }
  }
};

// The points around those that TransformPoint was asked for last, at one take and frame. Hosts ask
// for many points of a frame, neighbours one after the other; a block of them is deformed at once.
//
// Invariant: the links are laid out while there is a pose. Whoever adds nodes, matrices or links or
// sets the global transformation drops all this first.
struct XCFrameCollector::AskedPoints {
  // A palette is made when a frame was asked for as often as there are nodes, a block at the fourth
  // call for it in a row: calls in any other order do not wait for either.
  static constexpr unsigned int kCallsForBlock = 4;

  void start(unsigned int take, unsigned int frame) {
    mTake = take;
    mFrame = frame;
    mCalls = 0;
    mCounted = kNoBlock;
    mBytes = 0;
    mPose.reset();
  }

  // Counts a call for a point that is not at hand.
  bool isToBeMade(std::size_t block) {
    if (block != mCounted) mCalls = 0;
    mCounted = block;
    return ++mCalls == kCallsForBlock;
  }
  void make(const XCFrameCollector& collector, std::size_t block) {
    const std::vector<Point>& rest = collector.restVertices();
    const std::size_t first = block * skinning::kBlock;
    const std::size_t count = std::min<std::size_t>(skinning::kBlock, rest.size() - first);
    std::copy_n(rest.data() + first, count, mRest);
    std::fill_n(mLeft, skinning::kBlock, false);
    collector.deformBlock(block, *mPose, mMade, mLeft);
    mAddress = reinterpret_cast<std::uintptr_t>(rest.data() + first);
    mBytes = count * sizeof(Point);
  }
  // Null for a point that is not at hand, or was another one when its block was made.
  const Point* find(const Point* vertex, unsigned int take, unsigned int frame) const {
    const std::size_t offset = reinterpret_cast<std::uintptr_t>(vertex) - mAddress;
    if (offset >= mBytes || take != mTake || frame != mFrame) return nullptr;
    const std::size_t i = offset / sizeof(Point);
    const bool isSame = offset % sizeof(Point) == 0 &&
                        // The bits are what counts: a NaN is the same as itself, the two zeros
                        // differ. NOLINTNEXTLINE(bugprone-suspicious-memory-comparison)
                        std::memcmp(&mRest[i], vertex, sizeof(Point)) == 0;
    return isSame && !mLeft[i] ? &mMade[i] : nullptr;
  }

  static constexpr std::size_t kNoBlock = SIZE_MAX;

  unsigned int mTake = 0, mFrame = 0;
  unsigned int mCalls = 0;
  std::unique_ptr<NodePose> mPose;
  std::size_t mCounted = kNoBlock;  // the block that mCalls is about
  std::uintptr_t mAddress = 0;      // of the rest points at hand, mBytes in all
  std::size_t mBytes = 0;
  Point mRest[skinning::kBlock], mMade[skinning::kBlock];
  bool mLeft[skinning::kBlock];
};

XCFrameCollector::XCFrameCollector(UXS::Mesh* mesh)
    : mLinks(std::make_unique<VertexLinks>()), mMesh(mesh) {}

XCFrameCollector::~XCFrameCollector() {
  mTakes.clear();
  mClones.clear();
}

// Required behaviour: a call that is refused has added to the size already, and a new node stays.
// Where memory runs out, nothing has changed.
unsigned int XCFrameCollector::AddTransformation(const Matrix& matrix, unsigned int take,
                                                 int node) {
  const unsigned int size = mSize;
  const std::size_t nodes = mNodes.size();
  const Matrix copy = matrix;  // it may lie in a node that is about to move
  mSize += 64;
  dropAskedPoints();
  try {
    if (node < 0) {
      mNodes.emplace_back(GetNbrTakes());
      node = int(nodes);
      mSize += 32 + 48 * GetNbrTakes();
    }
    UxThrow::IfFalse(node < int(mNodes.size()),
                     "XCFrameCollector::AddTransformation : bad node index");
    mNodes[std::size_t(node)].AddTransformation(copy, take);
  } catch (const std::bad_alloc&) {
    if (mNodes.size() > nodes) mNodes.pop_back();
    mSize = size;
    throw;
  }
  return unsigned(node);
}

void XCFrameCollector::SetGlobalTransformation(const Matrix& matrix) {
  dropAskedPoints();
  mGlobalTransformation = matrix;
}

const Matrix& XCFrameCollector::GetGlobalTransformation() const { return mGlobalTransformation; }

const Matrix& XCFrameCollector::GetTransformation(unsigned int take, unsigned int frame,
                                                  int node) const {
  const auto index = unsigned(node);
  UxThrow::IfFalse(index < mNodes.size(), "XCFrameCollector::GetTransformation : bad node index");
  return mNodes[index].GetTransformation(take, frame);
}

// The definition counts in the size, but nothing reads it, so it is not kept.
void XCFrameCollector::AddLink(int node, const UxZel::CZelUUID& /*definition*/, unsigned int vertex,
                               double weight) {
  const std::size_t vertices = restVertices().size();
  UxThrow::IfFalse(vertex < vertices, "XCFrameCollector::AddLink : bad vertex index");
  dropAskedPoints();
  const bool isFirst = mLinks->add(vertex, std::uint32_t(node), weight, vertices);
  mSize += isFirst ? 72 + 28 : 28;
}

Matrix XCFrameCollector::GetVertexTransformation(const Point* vertex, unsigned int take,
                                                 unsigned int frame, double& outWeightSum) const {
  Blend blend;
  Matrix matrix;
  if (!FillMatrix(indexOf(vertex), take, frame, blend)) return matrix;
  outWeightSum = blend.mWeightSum;
  Quads columns[4];
  blend.multiply(mGlobalTransformation, columns);
  for (int c = 0; c < 4; ++c) columns[c].store(matrix.e + 4 * c);
  return matrix;
}

Point XCFrameCollector::TransformPoint(const Point* vertex, unsigned int take,
                                       unsigned int frame) const {
  if (vertex == nullptr) UxThrow::SignalNULL("XCFrameCollector::TransformPoint : bad vertex");
  const Point* const made = mAsked != nullptr ? mAsked->find(vertex, take, frame) : nullptr;
  if (made != nullptr) return *made;
  const std::size_t index = indexOf(vertex);
  prepareNeighbours(index, take, frame);
  return deformed(index, *vertex, take, frame);
}

Point XCFrameCollector::TransformPoint(unsigned int /*vertex*/, unsigned int /*take*/,
                                       unsigned int /*frame*/) const {
  return {};
}

UXS::Mesh* XCFrameCollector::GetCurrentDefinition(unsigned int take, unsigned int frame,
                                                  const UxZel::CZelUUID& definition) {
  const auto found = mClones.find(definition);
  if (found != mClones.end()) {
    const sCloneDefinitions& clone = *found->second;
    if (clone.mTake == take && clone.mFrame == frame) return clone.mMesh.get();
    mClones.erase(found);
  }
  // Stored only when it is complete: after a failure the next call computes afresh.
  auto clone = std::make_unique<sCloneDefinitions>(frame, take);
  deformInto(*clone->mMesh, take, frame);
  UXS::Mesh* mesh = clone->mMesh.get();
  mClones.insert_or_assign(definition, std::move(clone));
  return mesh;
}

unsigned int XCFrameCollector::GetSize() const { return mSize; }

void XCFrameCollector::CreateTake() { mTakes.push_back(std::make_unique<XCTMPTake>()); }

unsigned int XCFrameCollector::GetNbrTakes() const { return unsigned(mTakes.size()); }

XCTMPTake* XCFrameCollector::GetTake(unsigned int index) const {
  UxThrow::IfFalse(index < mTakes.size(), "XCFrameCollector::GetTake : bad take index");
  return mTakes[index].get();
}

const std::vector<Point>& XCFrameCollector::restVertices() const {
  static const std::vector<Point> kNone;
  return mMesh ? mMesh->GetVerticesArray() : kNone;
}

// A vertex is identified by its address in the rest mesh; any other address gives an index that is
// too large.
std::size_t XCFrameCollector::indexOf(const Point* vertex) const {
  const auto address = reinterpret_cast<std::uintptr_t>(vertex);
  const std::vector<Point>& rest = restVertices();
  const auto offset = address - reinterpret_cast<std::uintptr_t>(rest.data());
  const std::size_t index = offset / sizeof(Point);
  return offset % sizeof(Point) == 0 && index < rest.size() ? index : SIZE_MAX;
}

// The matrix of a node at a frame; null when it can not be followed, which is reported.
// Required behaviour: a frame past the end becomes the last one and stays so for the links visited
// afterwards; a take without frames makes it 0xFFFFFFFF.
inline const Matrix* XCFrameCollector::follow(unsigned int node, unsigned int take,
                                              unsigned int& ioFrame) const {
  if (node >= mNodes.size()) return reportLink(kBadNode);
  if (take >= mNodes[node].mTakeCount) return reportLink(kBadTake);
  const XCTransformationNode::Frames frames = mNodes[node].frames(take);
  if (ioFrame >= frames.mCount) ioFrame = frames.mCount - 1;
  if (ioFrame >= frames.mCount) return reportLink(kNoFrames);
  return frames.mFirst + ioFrame;
}

// The sum of weight * matrix over the links, the last added first. A link that can not be followed
// is left out, weight and all. False for a vertex without links.
bool XCFrameCollector::FillMatrix(std::size_t vertex, unsigned int take, unsigned int frame,
                                  Blend& outBlend) const {
  Blend blend;
  const bool isLinked = mLinks->visit(vertex, [&](std::uint32_t node, double weight) {
    const Matrix* const matrix = follow(node, take, frame);
    if (matrix == nullptr) return;
    const auto w = float(weight);
    for (int c = 0; c < 4; ++c) {
      blend.mColumns[c] = Quads::load(matrix->e + 4 * c) * w + blend.mColumns[c];
    }
    blend.mWeightSum += weight;  // order: exact floats
  });
  if (!isLinked) {
    // Required behaviour: a check that never fires.
    UxThrow::IfFalse(true, "XCFrameCollector::FillMatrix : Bad vertex index");
    return false;
  }
  outBlend = blend;
  return true;
}

// Required behaviour: y from the third row, z from the second. A vertex without links is divided by
// 0, which gives infinities or NaN.
Point XCFrameCollector::deformed(std::size_t vertex, const Point& rest, unsigned int take,
                                 unsigned int frame) const {
  Blend blend;
  Quads c[4];
  if (FillMatrix(vertex, take, frame, blend)) {
    blend.multiply(mGlobalTransformation, c);
  } else {
    const Matrix identity;
    for (int i = 0; i < 4; ++i) c[i] = Quads::load(identity.e + 4 * i);
  }
  const float s = 1.0f / float(blend.mWeightSum);
  alignas(16) float row[4];
  ((((c[0] * rest.x + c[1] * rest.y) + c[2] * rest.z) + c[3]) * s)
      .store(row);  // order: exact floats
  return {row[0], row[2], row[1]};
}

// The links are laid out.
NodePose XCFrameCollector::poseOf(unsigned int take, unsigned int frame) const {
  NodePose pose(nodeCount(), frame, mGlobalTransformation);
  for (unsigned int n = 0; n < nodeCount(); ++n) {
    const XCTransformationNode::Frames frames = mNodes[n].frames(take);
    if (mLinks->isUsed(n)) pose.set(n, frames.mFirst, frames.mCount);
  }
  pose.gather(mLinks->largestWeight());
  return pose;
}

// Deforms a block of the layout; what the kernel leaves is marked. Returns whether there is any.
bool XCFrameCollector::deformBlock(std::size_t index, const NodePose& pose, Point* out,
                                   bool* outLeft) const {
  skinning::Block block = mLinks->block(index);
  block.mPoints = &restVertices()[index * skinning::kBlock].x;
  block.mOut = &out->x;
  const skinning::Kernels& kernels = skinning::kernels();
  return pose.kernel(kernels)(pose.pose(), block, outLeft);
}

void XCFrameCollector::dropAskedPoints() { mAsked.reset(); }

// A call for a point that is not at hand may be the one after which its block is made. Without
// memory points are deformed one by one.
void XCFrameCollector::prepareNeighbours(std::size_t vertex, unsigned int take,
                                         unsigned int frame) const {
  if (mAsked == nullptr) mAsked.reset(new (std::nothrow) AskedPoints);
  if (mAsked == nullptr) return;
  AskedPoints& asked = *mAsked;
  if (take != asked.mTake || frame != asked.mFrame) asked.start(take, frame);
  if (asked.mPose != nullptr) {
    const std::size_t block = vertex / skinning::kBlock;
    const std::size_t vertices = restVertices().size();
    const bool isKnown = vertex < vertices && mLinks->vertices() == vertices;
    if (isKnown && asked.isToBeMade(block)) asked.make(*this, block);
  } else if (++asked.mCalls > nodeCount() && mLinks->isLaidOut(nodeCount())) {
    asked.mCalls = 0;
    try {
      asked.mPose = std::make_unique<NodePose>(poseOf(take, frame));
    } catch (const std::bad_alloc&) {
    }
  }
}

// Deforms all vertices by blocks. What a kernel leaves is done one by one, in the order of the
// vertices, in which links that can not be followed are reported.
void XCFrameCollector::deformVertices(unsigned int take, unsigned int frame, Point* out) {
  const std::vector<Point>& rest = restVertices();
  mLinks->layOut(rest.size(), nodeCount());
  UxThrow::IfFalse(mLinks->vertices() == rest.size(),
                   "XCFrameCollector::GetCurrentDefinition : the mesh at rest has lost vertices");
  const NodePose pose = poseOf(take, frame);
  for (std::size_t b = 0; b < mLinks->blocks(); ++b) {
    const std::size_t first = b * skinning::kBlock;
    bool left[skinning::kBlock] = {};
    if (!deformBlock(b, pose, out + first, left)) continue;
    for (std::size_t i = first; i < std::min(first + skinning::kBlock, rest.size()); ++i) {
      if (left[i - first]) out[i] = deformed(i, rest[i], take, frame);
    }
  }
}

// Commits within its own scope: the editor's destructor could not report that memory ran out.
void XCFrameCollector::deformInto(UXS::Mesh& outMesh, unsigned int take, unsigned int frame) {
  if (restVertices().empty()) return;
  UXS::Mesh::Editor editor(outMesh, false);
  try {
    deformVertices(take, frame, editor.CopyWithoutPositions(*mMesh));
    editor.Commit();
  } catch (...) {
    editor.Abandon();
    throw;
  }
}

}  // namespace Norvel::Vexa
