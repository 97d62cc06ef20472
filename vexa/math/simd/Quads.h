#pragma once

#include <cstring>

#if defined(__AVX2__)
#include <immintrin.h>
#endif

/// Groups of four floats ("quads") side by side in one register, and a plain twin with the same
/// operations and the same bits.
///
/// A quad holds a row of a 4x4 matrix or a point, so that one register works on as many vertices as
/// it has quads. An algorithm is written once, as a template over the form. PlainQuads runs
/// anywhere, VectorQuads where four floats fit a register (SSE2, NEON). Only a source that is
/// compiled for AVX2 or AVX-512 sees AvxQuads or Avx512Quads, and whoever calls it asks the machine
/// first. The forms share no function: of functions with one name the linker keeps any one.
namespace Norvel::Vexa {

struct PlainQuads {
  static constexpr int kQuads = 1;

  float lane[4];

  static PlainQuads zero() { return {{0, 0, 0, 0}}; }
  static PlainQuads load(const float* from) { return {{from[0], from[1], from[2], from[3]}}; }
  /// load(from) * b
  static PlainQuads loadTimes(const float* from, float b) { return load(from) * b; }
  /// Row k of kQuads 4x4 matrices of sixteen floats each, which lie row by row, becomes out[k].
  static void loadRows(const float* from, PlainQuads out[4]) {
    for (int k = 0; k < 4; ++k) out[k] = load(from + 4 * k);
  }
  /// Points of three floats without gaps; the last lane of each quad is 1.
  static PlainQuads loadPoints(const float* from) { return {{from[0], from[1], from[2], 1}}; }
  /// Quad i is four times from[i].
  static PlainQuads spread(const float* from) { return {{*from, *from, *from, *from}}; }
  void store(float* to) const { std::memcpy(to, lane, sizeof(lane)); }
  /// The first three lanes of each quad, without gaps.
  void storePoints(float* to) const { std::memcpy(to, lane, 3 * sizeof(float)); }

  PlainQuads operator+(const PlainQuads& b) const {
    return {{lane[0] + b.lane[0], lane[1] + b.lane[1], lane[2] + b.lane[2], lane[3] + b.lane[3]}};
  }
  PlainQuads operator*(const PlainQuads& b) const {
    return {{lane[0] * b.lane[0], lane[1] * b.lane[1], lane[2] * b.lane[2], lane[3] * b.lane[3]}};
  }
  PlainQuads operator*(float b) const {
    return {{lane[0] * b, lane[1] * b, lane[2] * b, lane[3] * b}};
  }
  /// Transposes, quad by quad, the 4x4 matrix with the rows io[0..3].
  static void transpose(PlainQuads io[4]) {
    const PlainQuads a = io[0], b = io[1], c = io[2], d = io[3];
    for (int i = 0; i < 4; ++i) io[i] = {{a.lane[i], b.lane[i], c.lane[i], d.lane[i]}};
  }
  /// Quad by quad, lane i of a, b, c becomes lanes 0, 1, 2 of out[i]; lane 3 is any number.
  static void transposeThree(const PlainQuads& a, const PlainQuads& b, const PlainQuads& c,
                             PlainQuads out[4]) {
    for (int i = 0; i < 4; ++i) out[i] = {{a.lane[i], b.lane[i], c.lane[i], c.lane[i]}};
  }
};

#if defined(__SSE2__) || defined(__ARM_NEON)

/// By the compiler's vector extension.
struct VectorQuads {
  static constexpr int kQuads = 1;
  using Lanes = float __attribute__((vector_size(16)));

  Lanes lanes;

  static VectorQuads zero() { return {Lanes{}}; }
  static VectorQuads load(const float* from) {
    VectorQuads result;
    std::memcpy(&result.lanes, from, sizeof(Lanes));
    return result;
  }
  static void loadRows(const float* from, VectorQuads out[4]) {
    for (int k = 0; k < 4; ++k) out[k] = load(from + 4 * k);
  }
  static VectorQuads loadTimes(const float* from, float b) { return load(from) * b; }
  static VectorQuads loadPoints(const float* from) { return {Lanes{from[0], from[1], from[2], 1}}; }
  static VectorQuads spread(const float* from) { return {Lanes{*from, *from, *from, *from}}; }
  void store(float* to) const { std::memcpy(to, &lanes, sizeof(Lanes)); }
  void storePoints(float* to) const { std::memcpy(to, &lanes, 3 * sizeof(float)); }

  VectorQuads operator+(VectorQuads b) const { return {lanes + b.lanes}; }
  VectorQuads operator*(VectorQuads b) const { return {lanes * b.lanes}; }
  VectorQuads operator*(float b) const { return {lanes * b}; }
  static void transpose(VectorQuads io[4]) {
    const Lanes ac01 = __builtin_shufflevector(io[0].lanes, io[2].lanes, 0, 4, 1, 5);
    const Lanes ac23 = __builtin_shufflevector(io[0].lanes, io[2].lanes, 2, 6, 3, 7);
    const Lanes bd01 = __builtin_shufflevector(io[1].lanes, io[3].lanes, 0, 4, 1, 5);
    const Lanes bd23 = __builtin_shufflevector(io[1].lanes, io[3].lanes, 2, 6, 3, 7);
    io[0].lanes = __builtin_shufflevector(ac01, bd01, 0, 4, 1, 5);
    io[1].lanes = __builtin_shufflevector(ac01, bd01, 2, 6, 3, 7);
    io[2].lanes = __builtin_shufflevector(ac23, bd23, 0, 4, 1, 5);
    io[3].lanes = __builtin_shufflevector(ac23, bd23, 2, 6, 3, 7);
  }
  // Two interleaved registers instead of the four of transpose(): c needs no partner.
  static void transposeThree(VectorQuads a, VectorQuads b, VectorQuads c, VectorQuads out[4]) {
    const Lanes ab01 = __builtin_shufflevector(a.lanes, b.lanes, 0, 4, 1, 5);
    const Lanes ab23 = __builtin_shufflevector(a.lanes, b.lanes, 2, 6, 3, 7);
    out[0].lanes = __builtin_shufflevector(ab01, c.lanes, 0, 1, 4, 4);
    out[1].lanes = __builtin_shufflevector(ab01, c.lanes, 2, 3, 5, 5);
    out[2].lanes = __builtin_shufflevector(ab23, c.lanes, 0, 1, 6, 6);
    out[3].lanes = __builtin_shufflevector(ab23, c.lanes, 2, 3, 7, 7);
  }
};

#endif

#if defined(__AVX2__)

struct AvxQuads {
  static constexpr int kQuads = 2;

  __m256 lanes;

  static AvxQuads zero() { return {_mm256_setzero_ps()}; }
  static AvxQuads load(const float* from) { return {_mm256_loadu_ps(from)}; }
  static AvxQuads loadTimes(const float* from, float b) { return load(from) * b; }
  static void loadRows(const float* from, AvxQuads out[4]) {
    for (int k = 0; k < 4; ++k) {
      out[k].lanes = _mm256_insertf128_ps(_mm256_castps128_ps256(_mm_loadu_ps(from + 4 * k)),
                                          _mm_loadu_ps(from + 16 + 4 * k), 1);
    }
  }
  // Two loads of four and two floats: one of eight would read past the last point.
  static AvxQuads loadPoints(const float* from) {
    const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
    const __m128i high = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(from + 4));
    const __m256 packed = _mm256_castsi256_ps(_mm256_set_m128i(high, low));
    const __m256 apart =
        _mm256_permutevar8x32_ps(packed, _mm256_setr_epi32(0, 1, 2, 2, 3, 4, 5, 5));
    return {_mm256_blend_ps(apart, _mm256_set1_ps(1), 0x88)};
  }
  static AvxQuads spread(const float* from) {
    return {_mm256_insertf128_ps(_mm256_castps128_ps256(_mm_set1_ps(from[0])), _mm_set1_ps(from[1]),
                                 1)};
  }
  void store(float* to) const { _mm256_storeu_ps(to, lanes); }
  void storePoints(float* to) const {
    const __m256 packed =
        _mm256_permutevar8x32_ps(lanes, _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 6, 6));
    _mm_storeu_ps(to, _mm256_castps256_ps128(packed));
    _mm_storel_pi(reinterpret_cast<__m64*>(to + 4), _mm256_extractf128_ps(packed, 1));
  }

  AvxQuads operator+(AvxQuads b) const { return {_mm256_add_ps(lanes, b.lanes)}; }
  AvxQuads operator*(AvxQuads b) const { return {_mm256_mul_ps(lanes, b.lanes)}; }
  AvxQuads operator*(float b) const { return {_mm256_mul_ps(lanes, _mm256_set1_ps(b))}; }
  static void transpose(AvxQuads io[4]) {
    const __m256 ac01 = _mm256_unpacklo_ps(io[0].lanes, io[2].lanes);
    const __m256 ac23 = _mm256_unpackhi_ps(io[0].lanes, io[2].lanes);
    const __m256 bd01 = _mm256_unpacklo_ps(io[1].lanes, io[3].lanes);
    const __m256 bd23 = _mm256_unpackhi_ps(io[1].lanes, io[3].lanes);
    io[0].lanes = _mm256_unpacklo_ps(ac01, bd01);
    io[1].lanes = _mm256_unpackhi_ps(ac01, bd01);
    io[2].lanes = _mm256_unpacklo_ps(ac23, bd23);
    io[3].lanes = _mm256_unpackhi_ps(ac23, bd23);
  }
  static void transposeThree(AvxQuads a, AvxQuads b, AvxQuads c, AvxQuads out[4]) {
    const __m256 ab01 = _mm256_unpacklo_ps(a.lanes, b.lanes);
    const __m256 ab23 = _mm256_unpackhi_ps(a.lanes, b.lanes);
    out[0].lanes = _mm256_shuffle_ps(ab01, c.lanes, _MM_SHUFFLE(0, 0, 1, 0));
    out[1].lanes = _mm256_shuffle_ps(ab01, c.lanes, _MM_SHUFFLE(1, 1, 3, 2));
    out[2].lanes = _mm256_shuffle_ps(ab23, c.lanes, _MM_SHUFFLE(2, 2, 1, 0));
    out[3].lanes = _mm256_shuffle_ps(ab23, c.lanes, _MM_SHUFFLE(3, 3, 3, 2));
  }
};

#endif

#if defined(__AVX512F__)

struct Avx512Quads {
  static constexpr int kQuads = 4;

  // Operations without a mask take an undefined register, of which gcc 12 warns.
  static constexpr __mmask16 kAll = 0xFFFF;
  static constexpr __mmask16 kPoints = 0x0FFF;  // four points of three floats

  __m512 lanes;

  static Avx512Quads zero() { return {_mm512_setzero_ps()}; }
  static Avx512Quads load(const float* from) { return {_mm512_loadu_ps(from)}; }
  // The factor comes first: gcc then makes it, not the load, a part of the multiplication, which
  // takes one operation less.
  static Avx512Quads loadTimes(const float* from, float b) {
    const __m512 factor = _mm512_set1_ps(b);
    return {_mm512_mul_ps(_mm512_loadu_ps(from), factor)};
  }
  static void loadRows(const float* from, Avx512Quads out[4]) {
    const __m512 a = _mm512_loadu_ps(from), b = _mm512_loadu_ps(from + 16);
    const __m512 c = _mm512_loadu_ps(from + 32), d = _mm512_loadu_ps(from + 48);
    const __m512 ab01 = _mm512_maskz_shuffle_f32x4(kAll, a, b, _MM_SHUFFLE(1, 0, 1, 0));
    const __m512 ab23 = _mm512_maskz_shuffle_f32x4(kAll, a, b, _MM_SHUFFLE(3, 2, 3, 2));
    const __m512 cd01 = _mm512_maskz_shuffle_f32x4(kAll, c, d, _MM_SHUFFLE(1, 0, 1, 0));
    const __m512 cd23 = _mm512_maskz_shuffle_f32x4(kAll, c, d, _MM_SHUFFLE(3, 2, 3, 2));
    out[0].lanes = _mm512_maskz_shuffle_f32x4(kAll, ab01, cd01, _MM_SHUFFLE(2, 0, 2, 0));
    out[1].lanes = _mm512_maskz_shuffle_f32x4(kAll, ab01, cd01, _MM_SHUFFLE(3, 1, 3, 1));
    out[2].lanes = _mm512_maskz_shuffle_f32x4(kAll, ab23, cd23, _MM_SHUFFLE(2, 0, 2, 0));
    out[3].lanes = _mm512_maskz_shuffle_f32x4(kAll, ab23, cd23, _MM_SHUFFLE(3, 1, 3, 1));
  }
  // The mask leaves out what lies behind the last point.
  static Avx512Quads loadPoints(const float* from) {
    const __m512i apart = _mm512_setr_epi32(0, 1, 2, 2, 3, 4, 5, 5, 6, 7, 8, 8, 9, 10, 11, 11);
    return {_mm512_mask_permutexvar_ps(_mm512_set1_ps(1), 0x7777, apart,
                                       _mm512_maskz_loadu_ps(kPoints, from))};
  }
  static Avx512Quads spread(const float* from) {
    const __m512i quads = _mm512_setr_epi32(0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3);
    return {_mm512_maskz_permutexvar_ps(kAll, quads, _mm512_castps128_ps512(_mm_loadu_ps(from)))};
  }
  void store(float* to) const { _mm512_storeu_ps(to, lanes); }
  void storePoints(float* to) const {
    const __m512i packed = _mm512_setr_epi32(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, 0, 0, 0, 0);
    _mm512_mask_storeu_ps(to, kPoints, _mm512_maskz_permutexvar_ps(kAll, packed, lanes));
  }

  Avx512Quads operator+(Avx512Quads b) const { return {_mm512_add_ps(lanes, b.lanes)}; }
  Avx512Quads operator*(Avx512Quads b) const { return {_mm512_mul_ps(lanes, b.lanes)}; }
  Avx512Quads operator*(float b) const { return {_mm512_mul_ps(lanes, _mm512_set1_ps(b))}; }
  static void transpose(Avx512Quads io[4]) {
    const __m512 ac01 = _mm512_maskz_unpacklo_ps(kAll, io[0].lanes, io[2].lanes);
    const __m512 ac23 = _mm512_maskz_unpackhi_ps(kAll, io[0].lanes, io[2].lanes);
    const __m512 bd01 = _mm512_maskz_unpacklo_ps(kAll, io[1].lanes, io[3].lanes);
    const __m512 bd23 = _mm512_maskz_unpackhi_ps(kAll, io[1].lanes, io[3].lanes);
    io[0].lanes = _mm512_maskz_unpacklo_ps(kAll, ac01, bd01);
    io[1].lanes = _mm512_maskz_unpackhi_ps(kAll, ac01, bd01);
    io[2].lanes = _mm512_maskz_unpacklo_ps(kAll, ac23, bd23);
    io[3].lanes = _mm512_maskz_unpackhi_ps(kAll, ac23, bd23);
  }
  static void transposeThree(Avx512Quads a, Avx512Quads b, Avx512Quads c, Avx512Quads out[4]) {
    const __m512 ab01 = _mm512_maskz_unpacklo_ps(kAll, a.lanes, b.lanes);
    const __m512 ab23 = _mm512_maskz_unpackhi_ps(kAll, a.lanes, b.lanes);
    out[0].lanes = _mm512_maskz_shuffle_ps(kAll, ab01, c.lanes, _MM_SHUFFLE(0, 0, 1, 0));
    out[1].lanes = _mm512_maskz_shuffle_ps(kAll, ab01, c.lanes, _MM_SHUFFLE(1, 1, 3, 2));
    out[2].lanes = _mm512_maskz_shuffle_ps(kAll, ab23, c.lanes, _MM_SHUFFLE(2, 2, 1, 0));
    out[3].lanes = _mm512_maskz_shuffle_ps(kAll, ab23, c.lanes, _MM_SHUFFLE(3, 3, 3, 2));
  }
};

#endif

#if (defined(__SSE2__) || defined(__ARM_NEON)) && !defined(VEXA_PLAIN)
using Quads = VectorQuads;
#else
using Quads = PlainQuads;
#endif

}  // namespace Norvel::Vexa
