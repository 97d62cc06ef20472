#pragma once

/// The arithmetic that all 4x4 matrices here share: sixteen values column by column, the element of
/// row r and column c at 4c + r, points as column vectors on the right.
namespace Norvel::Vexa {

/// out = a p for one column p of four values, each row summed from the first term on. p is read
/// before out is written, so out may be p.
template <class T>
constexpr void multiplyColumn(const T* a, const T* p, T* out) {
  const T x = p[0], y = p[1], z = p[2], w = p[3];
  // order: exact floats
  for (int r = 0; r < 4; ++r) out[r] = a[r] * x + a[4 + r] * y + a[8 + r] * z + a[12 + r] * w;
}

/// out = a b: element (r, c) is the sum over k of a(r, k) b(k, c), from k = 0 upwards. `out` shares
/// no storage with a or b.
template <class T>
constexpr void multiplyColumns(const T* a, const T* b, T* out) {
  multiplyColumn(a, b, out);
  multiplyColumn(a, b + 4, out + 4);
  multiplyColumn(a, b + 8, out + 8);
  multiplyColumn(a, b + 12, out + 12);
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
