#include "vexa/framecollector/XCFrameCollector.h"

#include <cstdint>
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
  return static_cast<unsigned int>(node);
}

void XCFrameCollector::SetGlobalTransformation(const Matrix& matrix) {
  mGlobalTransformation = matrix;
}

const Matrix& XCFrameCollector::GetGlobalTransformation() const { return mGlobalTransformation; }

const Matrix& XCFrameCollector::GetTransformation(unsigned int take, unsigned int frame,
                                                  int node) const {
  const auto index = static_cast<unsigned int>(node);
  UxThrow::IfFalse(index < mNodes.size(), "XCFrameCollector::GetTransformation : bad node index");
  return mNodes[index].GetTransformation(take, frame);
}

// The definition counts in the size, but nothing reads it, so it is not kept.
void XCFrameCollector::AddLink(int node, const UxZel::CZelUUID& /*definition*/, unsigned int vertex,
                               double weight) {
  const std::size_t vertices = restVertices().size();
  UxThrow::IfFalse(vertex < vertices, "XCFrameCollector::AddLink : bad vertex index");
  const bool isFirst = mLinks->add(vertex, static_cast<std::uint32_t>(node), weight, vertices);
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
  return deformed(indexOf(vertex), *vertex, take, frame);
}

Point XCFrameCollector::TransformPoint(unsigned int, unsigned int, unsigned int) const {
  return Point();
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

unsigned int XCFrameCollector::GetNbrTakes() const {
  return static_cast<unsigned int>(mTakes.size());
}

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
  const auto offset = address - reinterpret_cast<std::uintptr_t>(restVertices().data());
  const std::size_t index = offset / sizeof(Point);
  return offset % sizeof(Point) == 0 && index < restVertices().size() ? index : SIZE_MAX;
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
  if (!mLinks->has(vertex)) {
    // Required behaviour: a check that never fires.
    UxThrow::IfFalse(true, "XCFrameCollector::FillMatrix : Bad vertex index");
    return false;
  }
  Blend blend;
  mLinks->visit(vertex, [&](std::uint32_t node, double weight) {
    const Matrix* const matrix = follow(node, take, frame);
    if (matrix == nullptr) return;
    const float w = float(weight);
    for (int c = 0; c < 4; ++c) {
      blend.mColumns[c] = Quads::load(matrix->e + 4 * c) * w + blend.mColumns[c];
    }
    blend.mWeightSum += weight;  // order: exact floats
  });
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

// Deforms all vertices by blocks. What a kernel leaves is done one by one, in the order of the
// vertices, in which links that can not be followed are reported.
void XCFrameCollector::deformVertices(unsigned int take, unsigned int frame, Point* out) {
  const std::vector<Point>& rest = restVertices();
  mLinks->layOut(rest.size(), nodeCount());
  NodePose pose(nodeCount(), frame, mGlobalTransformation);
  for (unsigned int n = 0; n < nodeCount(); ++n) {
    const XCTransformationNode::Frames frames = mNodes[n].frames(take);
    if (mLinks->isUsed(n)) pose.set(n, frames.mFirst, frames.mCount);
  }
  pose.gather(mLinks->largestWeight());
  const skinning::DeformBlock deformBlock = pose.kernel(skinning::kernels());
  for (std::size_t b = 0; b < mLinks->blocks(); ++b) {
    const std::size_t first = b * skinning::kBlock;
    skinning::Block block = mLinks->block(b);
    block.mPoints = &rest[first].x;
    block.mOut = &out[first].x;
    bool left[skinning::kBlock] = {};
    if (!deformBlock(pose.pose(), block, left)) continue;
    for (std::size_t i = 0; i < std::size_t(block.mVertices); ++i) {
      if (left[i]) out[first + i] = deformed(first + i, rest[first + i], take, frame);
    }
  }
}

// Commits within its own scope: where memory runs out the caller gets to know.
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
