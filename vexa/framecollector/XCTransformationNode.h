#pragma once

#include <vector>

#include "vexa/Export.h"
#include "vexa/math/uxs_generic_mat4.h"
#include "vexa/mesh/uxs_array.h"

namespace Norvel::Vexa {

/// The baked matrices of one node: for every take one array, indexed by frame.
///
/// A value: copies share nothing. Failed checks throw std::runtime_error.
class VEXA_EXPORT XCTransformationNode {
 public:
  /// inTakeCount takes without frames.
  explicit XCTransformationNode(unsigned int inTakeCount);
  XCTransformationNode(const XCTransformationNode& inOther);
  XCTransformationNode(XCTransformationNode&&) noexcept = default;
  XCTransformationNode& operator=(XCTransformationNode inOther) noexcept;
  virtual ~XCTransformationNode();

  /// Appends a matrix to a take; it may be one that this node holds. Throws std::bad_alloc, with
  /// nothing changed, when the take cannot grow.
  void AddTransformation(const UXS::uxs_generic_mat4<float>& inMatrix, unsigned int inTake);

  /// The matrix of a frame; the reference holds until the take grows.
  const UXS::uxs_generic_mat4<float>& GetTransformation(unsigned int inTake,
                                                        unsigned int inFrame) const;

  /// Number of frames of a take.
  unsigned int GetTransformationsNbr(unsigned int inTake) const;

 private:
  using MatrixArray = UXS::uxs_array<UXS::uxs_generic_mat4<float>, unsigned int>;

  std::vector<MatrixArray> mTakes;
};

}  // namespace Norvel::Vexa
