#include "vexa/framecollector/XCTransformationNode.h"

#include <new>
#include <utility>

#include "vexa/support/UxThrow.h"

namespace Norvel::Vexa {

XCTransformationNode::XCTransformationNode(unsigned int inTakeCount) : mTakes(inTakeCount) {}

XCTransformationNode::XCTransformationNode(const XCTransformationNode& inOther)
    : mTakes(inOther.mTakes.size()) {
  for (std::size_t i = 0; i < mTakes.size(); ++i) {
    if (!mTakes[i].copy(inOther.mTakes[i])) throw std::bad_alloc();
  }
}

XCTransformationNode& XCTransformationNode::operator=(XCTransformationNode inOther) noexcept {
  mTakes.swap(inOther.mTakes);
  return *this;
}

XCTransformationNode::~XCTransformationNode() = default;

void XCTransformationNode::AddTransformation(const UXS::uxs_generic_mat4<float>& inMatrix,
                                             unsigned int inTake) {
  UxThrow::IfFalse(inTake < mTakes.size(),
                   "XCTransformationNode::AddTransformation : bad take index");
  if (mTakes[inTake].push_back(inMatrix) == nullptr) throw std::bad_alloc();
}

const UXS::uxs_generic_mat4<float>& XCTransformationNode::GetTransformation(
    unsigned int inTake, unsigned int inFrame) const {
  UxThrow::IfFalse(inTake < mTakes.size(),
                   "XCTransformationNode::GetTransformation : bad take index");
  const MatrixArray& frames = mTakes[inTake];
  UxThrow::IfFalse(inFrame < frames.size(),
                   "XCTransformationNode::GetTransformation : bad transformation index");
  return frames[inFrame];
}

unsigned int XCTransformationNode::GetTransformationsNbr(unsigned int inTake) const {
  UxThrow::IfFalse(inTake < mTakes.size(),
                   "XCTransformationNode::GetTransformationsNbr : bad take index");
  return mTakes[inTake].size();
}

}  // namespace Norvel::Vexa
