#include "vexa/framecollector/XCFrameCollector.h"

#include <cstdint>
#include <exception>
#include <utility>

#include "vexa/math/column_matrix.h"
#include "vexa/mesh/MeshEditor.h"
#include "vexa/mesh/uxs_autoptr.h"
#include "vexa/support/UxThrow.h"
#include "vexa/support/XCReporter.h"

namespace Norvel::Vexa {
namespace {

using Matrix = UXS::uxs_generic_mat4<float>;
using Point = Oru::TVector3D<float>;

constexpr Matrix kZeroMatrix = {{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}};

// ioSum = weight * inMatrix + ioSum, element by element.
void addWeighted(Matrix& ioSum, const Matrix& inMatrix, float inWeight) {
  for (int k = 0; k < 16; ++k) {
    ioSum.e[k] = inMatrix.e[k] * inWeight + ioSum.e[k];  // order: exact floats
  }
}

// Required behaviour: the frame that was held stays in force for the links visited afterwards; a
// take without frames makes it 0xFFFFFFFF, which the next node holds at its own last frame.
const Matrix& heldTransformation(const XCTransformationNode& inNode, unsigned int inTake,
                                 unsigned int& ioFrame) {
  const unsigned int frames = inNode.GetTransformationsNbr(inTake);
  if (ioFrame >= frames) ioFrame = frames - 1;
  return inNode.GetTransformation(inTake, ioFrame);
}

// The vertex under a blended matrix that is still to be divided by the sum of its weights.
// Required behaviour: y from the third row, z from the second; a sum of 0 gives infinities or NaN.
Point deformed(const Point& p, const Matrix& inBlend, double inWeightSum) {
  const float s = 1.0f / float(inWeightSum);
  return {s * rowTimesPoint(inBlend.e, 0, p), s * rowTimesPoint(inBlend.e, 2, p),
          s * rowTimesPoint(inBlend.e, 1, p)};
}

// A mesh with one reference, for a pointer that releases it.
UXS::Mesh* newMesh() {
  auto* mesh = new UXS::Mesh;
  mesh->increment();
  return mesh;
}

void reportLink(const char* inText) {
  XCReporter::Message(XIReporter::kMsgWarning, "XCFrameCollector::FillMatrix : %s", inText);
}

}  // namespace

// The mesh as it is deformed for one definition.
struct XCFrameCollector::sCloneDefinitions {
  sCloneDefinitions(unsigned int inFrame, unsigned int inTake)
      : mFrame(inFrame), mTake(inTake), mMesh(newMesh()) {}

  unsigned int mFrame;
  unsigned int mTake;
  UXS::uxs_autoptr<UXS::Mesh> mMesh;
};

XCFrameCollector::XCFrameCollector(UXS::Mesh* inMesh) : mMesh(inMesh) {}

XCFrameCollector::~XCFrameCollector() {
  mTakes.clear();
  mClones.clear();
}

unsigned int XCFrameCollector::AddTransformation(const Matrix& inMatrix, unsigned int inTake,
                                                 int inNode) {
  mSize += 64;
  if (inNode < 0) {
    mNodes.emplace_back(GetNbrTakes());
    inNode = int(mNodes.size()) - 1;
    mSize += 32 + 48 * GetNbrTakes();
  }
  UxThrow::IfFalse(inNode < int(mNodes.size()),
                   "XCFrameCollector::AddTransformation : bad node index");
  mNodes[std::size_t(inNode)].AddTransformation(inMatrix, inTake);
  return static_cast<unsigned int>(inNode);
}

void XCFrameCollector::SetGlobalTransformation(const Matrix& inMatrix) {
  mGlobalTransformation = inMatrix;
}

const Matrix& XCFrameCollector::GetGlobalTransformation() const { return mGlobalTransformation; }

const Matrix& XCFrameCollector::GetTransformation(unsigned int inTake, unsigned int inFrame,
                                                  int inNode) const {
  return nodeAt(static_cast<unsigned int>(inNode)).GetTransformation(inTake, inFrame);
}

void XCFrameCollector::AddLink(int inNode, const UxZel::CZelUUID& inDefinition,
                               unsigned int inVertex, double inWeight) {
  UxThrow::IfFalse(inVertex < restVertices().size(),
                   "XCFrameCollector::AddLink : bad vertex index");
  if (inVertex >= mLastLinks.size()) mLastLinks.resize(restVertices().size(), kNoLink);
  unsigned int& last = mLastLinks[inVertex];
  mLinks.push_back({static_cast<unsigned int>(inNode), last, inWeight, inDefinition});
  mSize += last == kNoLink ? 72 + 28 : 28;
  last = static_cast<unsigned int>(mLinks.size() - 1);
}

Matrix XCFrameCollector::GetVertexTransformation(const Point* inVertex, unsigned int inTake,
                                                 unsigned int inFrame, double& outWeightSum) const {
  Matrix matrix;
  FillMatrix(inVertex, inTake, inFrame, outWeightSum, matrix);
  return matrix;
}

Point XCFrameCollector::TransformPoint(const Point* inVertex, unsigned int inTake,
                                       unsigned int inFrame) const {
  UxThrow::IfNULL(inVertex, "XCFrameCollector::TransformPoint : bad vertex");
  Matrix matrix;
  double weightSum = 0;
  FillMatrix(inVertex, inTake, inFrame, weightSum, matrix);
  return deformed(*inVertex, matrix, weightSum);
}

Point XCFrameCollector::TransformPoint(unsigned int, unsigned int, unsigned int) const {
  return Point();
}

UXS::Mesh* XCFrameCollector::GetCurrentDefinition(unsigned int inTake, unsigned int inFrame,
                                                  const UxZel::CZelUUID& inDefinition) {
  const auto found = mClones.find(inDefinition);
  if (found != mClones.end()) {
    const sCloneDefinitions& clone = *found->second;
    if (clone.mTake == inTake && clone.mFrame == inFrame) return clone.mMesh.get();
    mClones.erase(found);
  }
  // Stored only when it is complete: after a failure the next call computes afresh.
  auto clone = std::make_unique<sCloneDefinitions>(inFrame, inTake);
  deformInto(*clone->mMesh, inTake, inFrame);
  UXS::Mesh* mesh = clone->mMesh.get();
  mClones.insert_or_assign(inDefinition, std::move(clone));
  return mesh;
}

unsigned int XCFrameCollector::GetSize() const { return mSize; }

void XCFrameCollector::CreateTake() { mTakes.push_back(std::make_unique<XCTMPTake>()); }

unsigned int XCFrameCollector::GetNbrTakes() const {
  return static_cast<unsigned int>(mTakes.size());
}

XCTMPTake* XCFrameCollector::GetTake(unsigned int inIndex) const {
  UxThrow::IfFalse(inIndex < mTakes.size(), "XCFrameCollector::GetTake : bad take index");
  return mTakes[inIndex].get();
}

const std::vector<Point>& XCFrameCollector::restVertices() const {
  static const std::vector<Point> kNone;
  return mMesh ? mMesh->GetVerticesArray() : kNone;
}

// A vertex is known by its address in the rest mesh; any other address has no links.
unsigned int XCFrameCollector::lastLinkOf(const Point* inVertex) const {
  const auto address = reinterpret_cast<std::uintptr_t>(inVertex);
  const auto offset = address - reinterpret_cast<std::uintptr_t>(restVertices().data());
  const auto vertex = offset / sizeof(Point);
  return vertex < mLastLinks.size() && offset % sizeof(Point) == 0 ? mLastLinks[vertex] : kNoLink;
}

const XCTransformationNode& XCFrameCollector::nodeAt(unsigned int inNode) const {
  UxThrow::IfFalse(inNode < mNodes.size(), "XCFrameCollector::GetTransformation : bad node index");
  return mNodes[inNode];
}

// The sum of weight * matrix over the links, the last added first, under the global transformation.
// A link that cannot be followed is reported and left out, weight and all.
void XCFrameCollector::FillMatrix(const Point* inVertex, unsigned int inTake, unsigned int inFrame,
                                  double& outWeightSum, Matrix& outMatrix) const {
  unsigned int link = lastLinkOf(inVertex);
  if (link == kNoLink) {
    // Required behaviour: a check that never fires.
    UxThrow::IfFalse(true, "XCFrameCollector::FillMatrix : Bad vertex index");
    return;
  }
  UxThrow::IfFalse(link < mLinks.size(), "XCFrameCollector::FillMatrix : vertex not linked...");
  Matrix blend = kZeroMatrix;
  double weightSum = 0;
  unsigned int frame = inFrame;
  for (; link != kNoLink; link = mLinks[link].mPrevious) {
    try {
      const Matrix& matrix = heldTransformation(nodeAt(mLinks[link].mNode), inTake, frame);
      addWeighted(blend, matrix, float(mLinks[link].mWeight));
      weightSum += mLinks[link].mWeight;  // order: exact floats
    } catch (const std::exception& e) {
      reportLink(e.what());
    } catch (...) {
      reportLink("unknown exception");
    }
  }
  outWeightSum = weightSum;
  outMatrix = mGlobalTransformation * blend;
}

// Commits within its own scope: where memory runs out the caller gets to know.
void XCFrameCollector::deformInto(UXS::Mesh& outMesh, unsigned int inTake,
                                  unsigned int inFrame) const {
  const std::vector<Point>& vertices = restVertices();
  if (vertices.empty()) return;
  UXS::Mesh::Editor editor(outMesh, false);
  try {
    editor.Copy(*mMesh, true);
    for (unsigned int i = 0; i < vertices.size(); ++i) {
      editor.SetVertex(i, TransformPoint(&vertices[i], inTake, inFrame));
    }
    editor.Commit();
  } catch (...) {
    editor.Abandon();
    throw;
  }
}

}  // namespace Norvel::Vexa
