#pragma once

#include <cstdint>
#include <vector>

#include "vexa/Export.h"
#include "vexa/math/uxs_generic_mat4.h"
#include "vexa/mesh/uxs_array.h"

namespace Norvel::Vexa {

/// The baked matrices of one node: for every take one array, indexed by frame.
///
/// Takes without frames cost no memory. A value: copies share nothing. Failed checks throw
/// std::runtime_error.
class VEXA_EXPORT XCTransformationNode {
 public:
  /// Makes takeCount takes without frames.
  explicit XCTransformationNode(unsigned int takeCount);
  XCTransformationNode(const XCTransformationNode& other);
  XCTransformationNode(XCTransformationNode&&) noexcept = default;
  XCTransformationNode& operator=(XCTransformationNode other) noexcept;
  virtual ~XCTransformationNode();

  /// Appends a matrix to a take; it may be one that this node holds. Throws std::bad_alloc, with
  /// nothing changed, when the take cannot grow.
  void AddTransformation(const UXS::uxs_generic_mat4<float>& matrix, unsigned int take);

  /// The matrix of a frame; the reference holds until the node grows.
  const UXS::uxs_generic_mat4<float>& GetTransformation(unsigned int take,
                                                        unsigned int frame) const;

  /// Number of frames of a take.
  unsigned int GetTransformationsNbr(unsigned int take) const;

 private:
  friend class CollectorFill;
  friend class XCFrameCollector;
  using Matrix = UXS::uxs_generic_mat4<float>;
  using MatrixArray = UXS::uxs_array<Matrix, unsigned int>;

  struct Take {
    unsigned int mIndex;
    MatrixArray mFrames;
  };
  // The matrices of one take.
  struct Frames {
    const Matrix* mFirst;
    unsigned int mCount;
  };

  // A node of a file: its matrices lie in a slab that the collector owns. `starts` says for each
  // take, and for the end, which of them is the first; it is shared by all nodes of the file.
  XCTransformationNode(const std::vector<std::uint32_t>& starts, const Matrix* slab);

  Frames frames(unsigned int take) const;  // empty for an unknown take
  const Take* find(unsigned int take) const;
  std::vector<Take> ownTakes() const;
  MatrixArray& arrayOf(unsigned int take);

  unsigned int mTakeCount;
  const std::vector<std::uint32_t>* mStarts = nullptr;  // null when the matrices are in mTakes
  const Matrix* mSlab = nullptr;
  std::vector<Take> mTakes;  // those with frames, by ascending index
};

inline XCTransformationNode::Frames XCTransformationNode::frames(unsigned int take) const {
  if (take >= mTakeCount) return {nullptr, 0};
  if (mStarts != nullptr) {
    const std::uint32_t start = (*mStarts)[take];
    return {mSlab + start, (*mStarts)[take + 1] - start};
  }
  // Where every take has frames, a take is at its own index.
  const bool isAtIndex = take < mTakes.size() && mTakes[take].mIndex == take;
  const Take* const found = isAtIndex ? &mTakes[take] : find(take);
  return found == nullptr ? Frames{nullptr, 0}
                          : Frames{found->mFrames.begin(), found->mFrames.size()};
}

}  // namespace Norvel::Vexa
