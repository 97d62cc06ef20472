#pragma once

/// The arithmetic that all 4x4 matrices here share: sixteen values column by column, the element of
/// row r and column c at 4c + r, points as column vectors on the right.
namespace Norvel::Vexa {

/// out = a b: element (r, c) is the sum over k of a(r, k) b(k, c), from k = 0 upwards. `out` shares
/// no storage with a or b.
template <class T>
constexpr void multiplyColumns(const T* a, const T* b, T* out) {
  for (int c = 0; c < 16; c += 4) {
    for (int r = 0; r < 4; ++r) {
      out[c + r] = a[r] * b[c] + a[4 + r] * b[c + 1] + a[8 + r] * b[c + 2] +
                   a[12 + r] * b[c + 3];  // order: exact floats
    }
  }
}

/// Row r of m times the direction v: m(r,0) x + m(r,1) y + m(r,2) z.
template <class T, class V>
constexpr T rowTimesDirection(const T* m, int r, const V& v) {
  return m[r] * v.x + m[4 + r] * v.y + m[8 + r] * v.z;  // order: exact floats
}

/// Row r of m times the position p: m(r,0) x + m(r,1) y + m(r,2) z + m(r,3).
template <class T, class P>
constexpr T rowTimesPoint(const T* m, int r, const P& p) {
  return rowTimesDirection(m, r, p) + m[12 + r];  // order: exact floats
}

}  // namespace Norvel::Vexa
