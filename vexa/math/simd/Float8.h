#pragma once

#include <cmath>
#include <cstddef>

#if defined(__AVX2__)
#include <immintrin.h>
#endif

/// Eight values at once, and one value with the same operations and the same bits.
///
/// Only a source that is compiled for AVX2 sees the wide form, and whoever calls it asks the
/// machine first. Arithmetic is lane by lane; Wide is the form in double.
namespace Norvel::Vexa {

struct PlainDouble1 {
  double value;

  static PlainDouble1 broadcast(double v) { return {v}; }
  PlainDouble1 operator+(PlainDouble1 b) const { return {value + b.value}; }
  PlainDouble1 operator/(PlainDouble1 b) const { return {value / b.value}; }
  struct PlainFloat1 narrowed() const;
};

/// One point x, y, z for each lane of the other forms, point by point.
struct PlainPoint1 {
  float x, y, z;

  /// Point i is at points[offsets[3 * i]]. The wide form reads one float past each point.
  static PlainPoint1 gather(const float* points, const unsigned int* offsets) {
    const float* const p = points + offsets[0];
    return {p[0], p[1], p[2]};
  }
  PlainPoint1 operator-(PlainPoint1 b) const { return {x - b.x, y - b.y, z - b.z}; }
  /// The components, one point to a lane, in an order that join() knows.
  void split(struct PlainFloat1& outX, struct PlainFloat1& outY, struct PlainFloat1& outZ) const;
  static PlainPoint1 join(struct PlainFloat1 x, struct PlainFloat1 y, struct PlainFloat1 z);
  /// Each point three times without a gap. The form of eight writes one float past the last.
  void storeTripled(float* to) const {
    for (int i = 0; i < 3; ++i) to[3 * i] = x, to[3 * i + 1] = y, to[3 * i + 2] = z;
  }
};

struct PlainFloat1 {
  using Wide = PlainDouble1;
  using Points = PlainPoint1;
  static constexpr int kLanes = 1;

  float value;

  static PlainFloat1 load(const float* from) { return {*from}; }
  void store(float* to) const { *to = value; }
  static PlainFloat1 broadcast(float v) { return {v}; }
  PlainFloat1 operator+(PlainFloat1 b) const { return {value + b.value}; }
  PlainFloat1 operator-(PlainFloat1 b) const { return {value - b.value}; }
  PlainFloat1 operator*(PlainFloat1 b) const { return {value * b.value}; }
  PlainFloat1 operator/(PlainFloat1 b) const { return {value / b.value}; }
  PlainFloat1 squareRoot() const { return {std::sqrt(value)}; }
  PlainFloat1 absolute() const { return {std::fabs(value)}; }
  /// This where the condition lane is above 0, else 0; also where it is NaN.
  PlainFloat1 whereAboveZero(PlainFloat1 condition) const {
    return {condition.value > 0 ? value : 0};
  }
  /// Bit i: lane i is at least that of b; false where one is NaN.
  unsigned int maskOfAtLeast(PlainFloat1 b) const { return value >= b.value ? 1 : 0; }

  /// Lane i: the dot product, from z to x, of the points at rows[pairs[2 * i]] and
  /// rows[pairs[2 * i + 1]]. The wide forms read one float past each.
  static PlainFloat1 dotRowsZYX(const float* rows, const unsigned int* pairs) {
    const float *const a = rows + pairs[0], *const b = rows + pairs[1];
    return {a[2] * b[2] + a[1] * b[1] + a[0] * b[0]};  // order: exact floats
  }
  /// Copies the pairs whose bit is set to the front of `to`, and gives how many they are. The wide
  /// form writes to all of its lanes' room.
  static unsigned int storeSelected(const unsigned int* pairs, unsigned int mask,
                                    unsigned int* to) {
    to[0] = pairs[0], to[1] = pairs[1];
    return mask;
  }
  PlainDouble1 widened() const { return {double(value)}; }
};

inline void PlainPoint1::split(PlainFloat1& outX, PlainFloat1& outY, PlainFloat1& outZ) const {
  outX.value = x, outY.value = y, outZ.value = z;
}
inline PlainPoint1 PlainPoint1::join(PlainFloat1 x, PlainFloat1 y, PlainFloat1 z) {
  return {x.value, y.value, z.value};
}

inline PlainFloat1 PlainDouble1::narrowed() const { return {float(value)}; }

#if defined(__AVX2__)

struct AvxDouble8 {
  __m256d low, high;

  static AvxDouble8 broadcast(double v) { return {_mm256_set1_pd(v), _mm256_set1_pd(v)}; }
  AvxDouble8 operator+(const AvxDouble8& b) const {
    return {_mm256_add_pd(low, b.low), _mm256_add_pd(high, b.high)};
  }
  AvxDouble8 operator/(const AvxDouble8& b) const {
    return {_mm256_div_pd(low, b.low), _mm256_div_pd(high, b.high)};
  }
  struct AvxFloat8 narrowed() const;
};

/// Two rows in one register, from anywhere in memory.
inline __m256 loadRows(const float* low, const float* high) {
  return _mm256_insertf128_ps(_mm256_castps128_ps256(_mm_loadu_ps(low)), _mm_loadu_ps(high), 1);
}
/// Four rows of each half of the registers become three columns.
///
///   r[0] = x0 y0 z0 .       unpacklo(r0, r1) = x0 x1 y0 y1      outX = x0 x1 x2 x3
///   r[1] = x1 y1 z1 .       unpacklo(r2, r3) = x2 x3 y2 y3      outY = y0 y1 y2 y3
///   r[2] = x2 y2 z2 .       unpackhi(r0, r1) = z0 z1 .  .       outZ = z0 z1 z2 z3
///   r[3] = x3 y3 z3 .       unpackhi(r2, r3) = z2 z3 .  .
///
/// The lanes of a result are then points 0 2 4 6 | 1 3 5 7. Arithmetic is lane by lane and
/// join() restores the order.
inline void transposeRows(const __m256 (&r)[4], __m256& outX, __m256& outY, __m256& outZ) {
  const __m256 xy01 = _mm256_unpacklo_ps(r[0], r[1]), xy23 = _mm256_unpacklo_ps(r[2], r[3]);
  const __m256 z01 = _mm256_unpackhi_ps(r[0], r[1]), z23 = _mm256_unpackhi_ps(r[2], r[3]);
  outX = _mm256_shuffle_ps(xy01, xy23, _MM_SHUFFLE(1, 0, 1, 0));
  outY = _mm256_shuffle_ps(xy01, xy23, _MM_SHUFFLE(3, 2, 3, 2));
  outZ = _mm256_shuffle_ps(z01, z23, _MM_SHUFFLE(1, 0, 1, 0));
}

struct AvxPoint8 {
  __m256 rows[4];  // points 2i and 2i + 1

  static AvxPoint8 gather(const float* points, const unsigned int* offsets) {
    AvxPoint8 p;
    for (int i = 0; i < 4; ++i) {
      p.rows[i] = loadRows(points + offsets[6 * i], points + offsets[6 * i + 3]);
    }
    return p;
  }
  AvxPoint8 operator-(const AvxPoint8& b) const {
    AvxPoint8 d;
    for (int i = 0; i < 4; ++i) d.rows[i] = _mm256_sub_ps(rows[i], b.rows[i]);
    return d;
  }
  void split(struct AvxFloat8& outX, struct AvxFloat8& outY, struct AvxFloat8& outZ) const;
  static AvxPoint8 join(struct AvxFloat8 x, struct AvxFloat8 y, struct AvxFloat8 z);
  // A row has two points, which become 18 floats in three stores of 8, 8 and 4. The last float of
  // the third store is junk, and the next row's first store writes over it: hence ascending order.
  //
  //   from 0:   0 1 2 0 1 2 0 1          (the numbers are places in the row)
  //   from 8:                   2 4 5 6 4 5 6 4
  //   from 15:                                4 5 6 junk
  void storeTripled(float* to) const {
    const __m256i front = _mm256_setr_epi32(0, 1, 2, 0, 1, 2, 0, 1);
    const __m256i middle = _mm256_setr_epi32(2, 4, 5, 6, 4, 5, 6, 4);
    for (int i = 0; i < 4; ++i) {
      _mm256_storeu_ps(to + 18 * i, _mm256_permutevar8x32_ps(rows[i], front));
      _mm256_storeu_ps(to + 18 * i + 8, _mm256_permutevar8x32_ps(rows[i], middle));
      _mm_storeu_ps(to + 18 * i + 15, _mm256_extractf128_ps(rows[i], 1));
    }
  }
};

/// For each mask of four bits: the places of the 32-bit halves of the selected pairs, in order. The
/// places after them are 0; what they copy lies past the count that is returned.
alignas(32) constexpr int kSelectedPairs[16][8] = {
    {},
    {0, 1},
    {2, 3},
    {0, 1, 2, 3},
    {4, 5},
    {0, 1, 4, 5},
    {2, 3, 4, 5},
    {0, 1, 2, 3, 4, 5},
    {6, 7},
    {0, 1, 6, 7},
    {2, 3, 6, 7},
    {0, 1, 2, 3, 6, 7},
    {4, 5, 6, 7},
    {0, 1, 4, 5, 6, 7},
    {2, 3, 4, 5, 6, 7},
    {0, 1, 2, 3, 4, 5, 6, 7},
};

struct AvxFloat8 {
  using Wide = AvxDouble8;
  using Points = AvxPoint8;
  static constexpr int kLanes = 8;

  __m256 lanes;

  static AvxFloat8 load(const float* from) { return {_mm256_loadu_ps(from)}; }
  void store(float* to) const { _mm256_storeu_ps(to, lanes); }
  static AvxFloat8 broadcast(float v) { return {_mm256_set1_ps(v)}; }
  AvxFloat8 operator+(AvxFloat8 b) const { return {_mm256_add_ps(lanes, b.lanes)}; }
  AvxFloat8 operator-(AvxFloat8 b) const { return {_mm256_sub_ps(lanes, b.lanes)}; }
  AvxFloat8 operator*(AvxFloat8 b) const { return {_mm256_mul_ps(lanes, b.lanes)}; }
  AvxFloat8 operator/(AvxFloat8 b) const { return {_mm256_div_ps(lanes, b.lanes)}; }
  AvxFloat8 squareRoot() const { return {_mm256_sqrt_ps(lanes)}; }
  AvxFloat8 absolute() const { return {_mm256_andnot_ps(_mm256_set1_ps(-0.0f), lanes)}; }
  AvxFloat8 whereAboveZero(AvxFloat8 condition) const {
    return {_mm256_and_ps(lanes, _mm256_cmp_ps(condition.lanes, _mm256_setzero_ps(), _CMP_GT_OQ))};
  }
  unsigned int maskOfAtLeast(AvxFloat8 b) const {
    return unsigned(_mm256_movemask_ps(_mm256_cmp_ps(lanes, b.lanes, _CMP_GE_OQ)));
  }

  static AvxFloat8 dotRowsZYX(const float* rows, const unsigned int* pairs) {
    __m256 p[4];  // the products of pairs i and i + 4
    for (int i = 0; i < 4; ++i) {
      p[i] = _mm256_mul_ps(loadRows(rows + pairs[2 * i], rows + pairs[2 * i + 8]),
                           loadRows(rows + pairs[2 * i + 1], rows + pairs[2 * i + 9]));
    }
    __m256 x, y, z;
    transposeRows(p, x, y, z);
    return {_mm256_add_ps(_mm256_add_ps(z, y), x)};
  }
  static unsigned int storeSelected(const unsigned int* pairs, unsigned int mask,
                                    unsigned int* to) {
    const unsigned int front = mask & 15, back = mask >> 4;
    const auto count = unsigned(__builtin_popcount(front));
    storeFour(pairs, front, to);
    storeFour(pairs + 8, back, to + 2 * count);
    return count + unsigned(__builtin_popcount(back));
  }
  AvxDouble8 widened() const {
    return {_mm256_cvtps_pd(_mm256_castps256_ps128(lanes)),
            _mm256_cvtps_pd(_mm256_extractf128_ps(lanes, 1))};
  }

 private:
  static void storeFour(const unsigned int* pairs, unsigned int mask, unsigned int* to) {
    const __m256i all = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pairs));
    const __m256i places =
        _mm256_load_si256(reinterpret_cast<const __m256i*>(kSelectedPairs[mask]));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), _mm256_permutevar8x32_epi32(all, places));
  }
};

inline void AvxPoint8::split(AvxFloat8& outX, AvxFloat8& outY, AvxFloat8& outZ) const {
  transposeRows(rows, outX.lanes, outY.lanes, outZ.lanes);
}
inline AvxPoint8 AvxPoint8::join(AvxFloat8 x, AvxFloat8 y, AvxFloat8 z) {
  const __m256 zero = _mm256_setzero_ps();
  const __m256 xy01 = _mm256_unpacklo_ps(x.lanes, y.lanes),
               xy23 = _mm256_unpackhi_ps(x.lanes, y.lanes);
  const __m256 z01 = _mm256_unpacklo_ps(z.lanes, zero), z23 = _mm256_unpackhi_ps(z.lanes, zero);
  return {{_mm256_shuffle_ps(xy01, z01, _MM_SHUFFLE(1, 0, 1, 0)),
           _mm256_shuffle_ps(xy01, z01, _MM_SHUFFLE(3, 2, 3, 2)),
           _mm256_shuffle_ps(xy23, z23, _MM_SHUFFLE(1, 0, 1, 0)),
           _mm256_shuffle_ps(xy23, z23, _MM_SHUFFLE(3, 2, 3, 2))}};
}

inline AvxFloat8 AvxDouble8::narrowed() const {
  return {_mm256_set_m128(_mm256_cvtpd_ps(high), _mm256_cvtpd_ps(low))};
}

#endif

}  // namespace Norvel::Vexa
