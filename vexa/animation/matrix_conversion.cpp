#include "vexa/animation/matrix_conversion.h"

namespace Norvel::Vexa {

ux_matrix44<double> Zel2UxWorks(const UxZel::CZelMatrix& matrix) {
  ux_matrix44<double> result;
  for (int r = 0; r < 4; ++r) {
    for (int c = 0; c < 4; ++c) result(r, c) = matrix.mElements[r][c];
  }
  return result;
}

// Required behaviour: transposes on the way back alone.
UxZel::CZelMatrix UxWorks2Zel(const ux_matrix44<double>& matrix) {
  UxZel::CZelMatrix result;
  for (int r = 0; r < 4; ++r) {
    for (int c = 0; c < 4; ++c) result.mElements[r][c] = matrix(c, r);
  }
  return result;
}

}  // namespace Norvel::Vexa
