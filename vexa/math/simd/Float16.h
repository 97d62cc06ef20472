#pragma once

#include "vexa/math/simd/Float8.h"

#if defined(__AVX512F__)

/// Sixteen values at once, with the operations of Float8.h and the same bits.
///
/// Only a source that is compiled for AVX-512 sees it, and whoever calls it asks the machine first.
namespace Norvel::Vexa {

/// Four rows in one register, from anywhere in memory.
inline __m512 loadRows(const float* a, const float* b, const float* c, const float* d) {
  __m512 rows = _mm512_castps128_ps512(_mm_loadu_ps(a));
  rows = _mm512_insertf32x4(rows, _mm_loadu_ps(b), 1);
  rows = _mm512_insertf32x4(rows, _mm_loadu_ps(c), 2);
  return _mm512_insertf32x4(rows, _mm_loadu_ps(d), 3);
}
/// Four rows of each quarter of the registers become three columns; see Float8.h for the steps. The
/// lanes of a result are then points 0 4 8 12 | 1 5 9 13 | ..., and join() restores the order.
inline void transposeRows(const __m512 (&r)[4], __m512& outX, __m512& outY, __m512& outZ) {
  const __m512 xy01 = _mm512_unpacklo_ps(r[0], r[1]), xy23 = _mm512_unpacklo_ps(r[2], r[3]);
  const __m512 z01 = _mm512_unpackhi_ps(r[0], r[1]), z23 = _mm512_unpackhi_ps(r[2], r[3]);
  outX = _mm512_shuffle_ps(xy01, xy23, _MM_SHUFFLE(1, 0, 1, 0));
  outY = _mm512_shuffle_ps(xy01, xy23, _MM_SHUFFLE(3, 2, 3, 2));
  outZ = _mm512_shuffle_ps(z01, z23, _MM_SHUFFLE(1, 0, 1, 0));
}

struct Avx512Point16 {
  __m512 rows[4];  // points 4i to 4i + 3

  static Avx512Point16 gather(const float* points, const unsigned int* offsets) {
    Avx512Point16 p;
    for (int i = 0; i < 4; ++i) {
      const unsigned int* const o = offsets + 12 * i;
      p.rows[i] = loadRows(points + o[0], points + o[3], points + o[6], points + o[9]);
    }
    return p;
  }
  Avx512Point16 operator-(const Avx512Point16& b) const {
    Avx512Point16 d;
    for (int i = 0; i < 4; ++i) d.rows[i] = _mm512_sub_ps(rows[i], b.rows[i]);
    return d;
  }
  void split(struct Avx512Float16& outX, struct Avx512Float16& outY,
             struct Avx512Float16& outZ) const;
  static Avx512Point16 join(struct Avx512Float16 x, struct Avx512Float16 y, struct Avx512Float16 z);
  // Sixteen points three times are 144 floats, nine full registers, so that nothing is written past
  // the end. Each row gives 36 of them. A place from 16 on is one of the second row.
  void storeTripled(float* to) const {
    const auto from = [&](int row, const __m512i& places) {
      return _mm512_permutexvar_ps(places, rows[row]);
    };
    const auto fromTwo = [&](int row, const __m512i& places) {
      return _mm512_permutex2var_ps(rows[row], places, rows[row + 1]);
    };
    const __m512 parts[9] = {
        from(0, _mm512_setr_epi32(0, 1, 2, 0, 1, 2, 0, 1, 2, 4, 5, 6, 4, 5, 6, 4)),
        from(0, _mm512_setr_epi32(5, 6, 8, 9, 10, 8, 9, 10, 8, 9, 10, 12, 13, 14, 12, 13)),
        fromTwo(0,
                _mm512_setr_epi32(14, 12, 13, 14, 16, 17, 18, 16, 17, 18, 16, 17, 18, 20, 21, 22)),
        from(1, _mm512_setr_epi32(4, 5, 6, 4, 5, 6, 8, 9, 10, 8, 9, 10, 8, 9, 10, 12)),
        fromTwo(1,
                _mm512_setr_epi32(13, 14, 12, 13, 14, 12, 13, 14, 16, 17, 18, 16, 17, 18, 16, 17)),
        from(2, _mm512_setr_epi32(2, 4, 5, 6, 4, 5, 6, 4, 5, 6, 8, 9, 10, 8, 9, 10)),
        fromTwo(2, _mm512_setr_epi32(8, 9, 10, 12, 13, 14, 12, 13, 14, 12, 13, 14, 16, 17, 18, 16)),
        from(3, _mm512_setr_epi32(1, 2, 0, 1, 2, 4, 5, 6, 4, 5, 6, 4, 5, 6, 8, 9)),
        from(3, _mm512_setr_epi32(10, 8, 9, 10, 8, 9, 10, 12, 13, 14, 12, 13, 14, 12, 13, 14)),
    };
    for (int i = 0; i < 9; ++i) _mm512_storeu_ps(to + 16 * i, parts[i]);
  }
};

struct Avx512Float16 {
  using Points = Avx512Point16;
  static constexpr int kLanes = 16;

  __m512 lanes;

  static Avx512Float16 broadcast(float v) { return {_mm512_set1_ps(v)}; }
  Avx512Float16 operator+(Avx512Float16 b) const { return {_mm512_add_ps(lanes, b.lanes)}; }
  Avx512Float16 operator-(Avx512Float16 b) const { return {_mm512_sub_ps(lanes, b.lanes)}; }
  Avx512Float16 operator*(Avx512Float16 b) const { return {_mm512_mul_ps(lanes, b.lanes)}; }
  Avx512Float16 operator/(Avx512Float16 b) const { return {_mm512_div_ps(lanes, b.lanes)}; }
  Avx512Float16 squareRoot() const { return {_mm512_sqrt_ps(lanes)}; }
  Avx512Float16 absolute() const { return {_mm512_abs_ps(lanes)}; }
  Avx512Float16 whereAboveZero(Avx512Float16 condition) const {
    const __mmask16 above = _mm512_cmp_ps_mask(condition.lanes, _mm512_setzero_ps(), _CMP_GT_OQ);
    return {_mm512_maskz_mov_ps(above, lanes)};
  }
  unsigned int maskOfAtLeast(Avx512Float16 b) const {
    return _mm512_cmp_ps_mask(lanes, b.lanes, _CMP_GE_OQ);
  }

  static Avx512Float16 dotRowsZYX(const float* rows, const unsigned int* pairs) {
    __m512 p[4];  // the products of pairs i, i + 4, i + 8 and i + 12
    for (int i = 0; i < 4; ++i) {
      const unsigned int* const o = pairs + 2 * i;
      p[i] = _mm512_mul_ps(loadRows(rows + o[0], rows + o[8], rows + o[16], rows + o[24]),
                           loadRows(rows + o[1], rows + o[9], rows + o[17], rows + o[25]));
    }
    __m512 x, y, z;
    transposeRows(p, x, y, z);
    return {_mm512_add_ps(_mm512_add_ps(z, y), x)};
  }
  static unsigned int storeSelected(const unsigned int* pairs, unsigned int mask,
                                    unsigned int* to) {
    const unsigned int front = mask & 0xFF, back = mask >> 8;
    const auto count = unsigned(__builtin_popcount(front));
    _mm512_storeu_si512(to,
                        _mm512_maskz_compress_epi64(__mmask8(front), _mm512_loadu_si512(pairs)));
    _mm512_storeu_si512(to + 2 * count, _mm512_maskz_compress_epi64(
                                            __mmask8(back), _mm512_loadu_si512(pairs + 16)));
    return count + unsigned(__builtin_popcount(back));
  }
};

inline void Avx512Point16::split(Avx512Float16& outX, Avx512Float16& outY,
                                 Avx512Float16& outZ) const {
  transposeRows(rows, outX.lanes, outY.lanes, outZ.lanes);
}
inline Avx512Point16 Avx512Point16::join(Avx512Float16 x, Avx512Float16 y, Avx512Float16 z) {
  const __m512 zero = _mm512_setzero_ps();
  const __m512 xy01 = _mm512_unpacklo_ps(x.lanes, y.lanes),
               xy23 = _mm512_unpackhi_ps(x.lanes, y.lanes);
  const __m512 z01 = _mm512_unpacklo_ps(z.lanes, zero), z23 = _mm512_unpackhi_ps(z.lanes, zero);
  return {{_mm512_shuffle_ps(xy01, z01, _MM_SHUFFLE(1, 0, 1, 0)),
           _mm512_shuffle_ps(xy01, z01, _MM_SHUFFLE(3, 2, 3, 2)),
           _mm512_shuffle_ps(xy23, z23, _MM_SHUFFLE(1, 0, 1, 0)),
           _mm512_shuffle_ps(xy23, z23, _MM_SHUFFLE(3, 2, 3, 2))}};
}

}  // namespace Norvel::Vexa

#endif
