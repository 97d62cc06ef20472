#pragma once

#include "vexa/Export.h"
#include "vexa/math/TVector3D.h"
#include "vexa/math/column_matrix.h"

namespace UXS {

/// A 4x4 transformation as the frame collector stores it: sixteen values, column by column.
///
/// The element of row r and column c is e[4c + r]: the translation is at 12, 13, 14, the bottom
/// row at 3, 7, 11, 15. Points are column vectors on the right: p' = M p. A new one is the
/// identity.
template <class T>
struct VEXA_EXPORT uxs_generic_mat4 {
  T e[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

  /// The matrix product this b: element (r, c) is the sum over k of this(r, k) b(k, c), summed from
  /// k = 0 upwards.
  uxs_generic_mat4 operator*(const uxs_generic_mat4& b) const {
    uxs_generic_mat4 result;
    Norvel::Vexa::multiplyColumns(e, b.e, result.e);
    return result;
  }

  /// The point p transformed: row r is m(r,0) x + m(r,1) y + m(r,2) z + m(r,3), r = 0..2. The
  /// bottom row is ignored.
  Oru::TVector3D<T> operator*(const Oru::TVector3D<T>& p) const {
    using Norvel::Vexa::rowTimesPoint;
    return {rowTimesPoint(e, 0, p), rowTimesPoint(e, 1, p), rowTimesPoint(e, 2, p)};
  }
};

}  // namespace UXS
