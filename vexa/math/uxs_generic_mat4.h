#pragma once

#include "vexa/Export.h"
#include "vexa/math/TVector3D.h"

namespace UXS {

/// A 4x4 transformation as the frame collector stores it: sixteen values, column by column.
///
/// The element of row r and column c is e[4c + r]: the translation stands at 12, 13, 14, the bottom
/// row at 3, 7, 11, 15. Points are column vectors on the right: p' = M p. A new one is the
/// identity.
template <class T>
struct VEXA_EXPORT uxs_generic_mat4 {
  T e[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

  /// The matrix product this b: element (r, c) is the sum over k of this(r, k) b(k, c), summed from
  /// k = 0 upwards.
  uxs_generic_mat4 operator*(const uxs_generic_mat4& b) const {
    uxs_generic_mat4 result;
    for (int c = 0; c < 4; ++c) {
      for (int r = 0; r < 4; ++r) {
        result.e[4 * c + r] = e[r] * b.e[4 * c] + e[4 + r] * b.e[4 * c + 1] +
                              e[8 + r] * b.e[4 * c + 2] +
                              e[12 + r] * b.e[4 * c + 3];  // order: exact floats
      }
    }
    return result;
  }

  /// The point p transformed: row r is m(r,0) x + m(r,1) y + m(r,2) z + m(r,3), r = 0..2. The
  /// bottom row is ignored.
  Oru::TVector3D<T> operator*(const Oru::TVector3D<T>& p) const {
    return {e[0] * p.x + e[4] * p.y + e[8] * p.z + e[12],
            e[1] * p.x + e[5] * p.y + e[9] * p.z + e[13],
            e[2] * p.x + e[6] * p.y + e[10] * p.z + e[14]};  // order: exact floats
  }
};

}  // namespace UXS
