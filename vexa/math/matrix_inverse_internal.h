#pragma once

namespace Norvel::Vexa {

// Determinant and inverse of a 4x4 matrix from the 2x2 minors that its cofactors share.
//
//   columns  0 1 | 2 3        mij of a half: rows i and j of its two columns,
//          [ a b | c d ]  0   for example m01 of the left half = a f - b e
//          [ e f | g h ]  1
//          [ i j | k l ]  2   determinant = sum over the six pairs of rows of a minor of the left
//          [ m n | o p ]  3   half times the minor of the other two rows in the right half
//
// Six minors of each half take 24 products; every cofactor is then three products of an element and
// a minor of the other half. T is float or double and F a form of four lanes from simd/Float4.h;
// every form gives the same bits. A pair holds a value of the left half and one of the right half.
template <class T, class F>
class MatrixInverse {
  using H = typename F::Halves;

 public:
  // From sixteen values, column by column.
  explicit MatrixInverse(const T* e)
      : c0(-F::load(e)), c1(F::load(e + 4)), c2(-F::load(e + 8)), c3(F::load(e + 12)) {
    const H a0 = F::template pick<0>(c0, c2), b0 = F::template pick<0>(c1, c3);
    const H a1 = F::template pick<1>(c0, c2), b1 = F::template pick<1>(c1, c3);
    const H a2 = F::template pick<2>(c0, c2), b2 = F::template pick<2>(c1, c3);
    const H a3 = F::template pick<3>(c0, c2), b3 = F::template pick<3>(c1, c3);
    m01 = a1 * b0 - a0 * b1;
    m02 = a2 * b0 - a0 * b2;
    m03 = a3 * b0 - a0 * b3;
    m12 = a2 * b1 - a1 * b2;
    m13 = a3 * b1 - a1 * b3;
    m23 = a3 * b2 - a2 * b3;
  }

  // Laplace expansion along the left half. Two equal rows cancel exactly.
  T determinant() const {
    // order: exact floats
    return (m01.timesCrossed(m23) + m03.timesCrossed(m12) - m02.timesCrossed(m13)).sum();
  }

  // The inverse, column by column: the adjugate times 1/determinant.
  void store(T determinant, T* out) const {
    // A row of the inverse holds the cofactors of a column: formed from the other column of its
    // half and, crossed, from the minors of the other half.
    F v[4];
    F::transpose(c1, c0, c3, c2, v);
    const F r = F::broadcast(1 / determinant);
    // order: exact floats
    ((v[1].timesCrossed(m23) - v[2].timesCrossed(m13) + v[3].timesCrossed(m12)) * r).store(out);
    ((v[2].timesCrossed(m03) - v[0].timesCrossed(m23) - v[3].timesCrossed(m02)) * r).store(out + 4);
    ((v[0].timesCrossed(m13) - v[1].timesCrossed(m03) + v[3].timesCrossed(m01)) * r).store(out + 8);
    ((v[1].timesCrossed(m02) - v[0].timesCrossed(m12) - v[2].timesCrossed(m01)) * r)
        .store(out + 12);
  }

 private:
  F c0, c1, c2, c3;                // the columns, the first of each half negated
  H m01, m02, m03, m12, m13, m23;  // the minors of each half for two rows
};

}  // namespace Norvel::Vexa
