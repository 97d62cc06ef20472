#pragma once

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

/// Four values at once, in a plain and in a wide form with the same operations and the same bits.
///
/// An algorithm is written once, as a template over F, and takes Float4 or Double4: the wide form
/// where the machine has one, the plain form elsewhere or with the build option VEXA_PLAIN.
///
/// F::Halves is a pair of values, low and high. Crossed with four lanes, the high value meets lanes
/// 0 and 1, the low value lanes 2 and 3.
namespace Norvel::Vexa {

template <class T>
struct PlainHalves {
  T low, high;

  PlainHalves operator+(PlainHalves b) const { return {low + b.low, high + b.high}; }
  PlainHalves operator-(PlainHalves b) const { return {low - b.low, high - b.high}; }
  PlainHalves operator*(PlainHalves b) const { return {low * b.low, high * b.high}; }
  PlainHalves timesCrossed(PlainHalves b) const { return {low * b.high, high * b.low}; }
  T sum() const { return low + high; }
};

template <class T>
struct PlainLanes {
  using Halves = PlainHalves<T>;

  T lane[4];

  static PlainLanes broadcast(T value) { return {{value, value, value, value}}; }
  static PlainLanes load(const T* from) { return {{from[0], from[1], from[2], from[3]}}; }
  void store(T* to) const {
    for (int i = 0; i < 4; ++i) to[i] = lane[i];
  }
  /// Lane i of `low` and of `high`.
  template <int i>
  static Halves pick(const PlainLanes& low, const PlainLanes& high) {
    return {low.lane[i], high.lane[i]};
  }
  /// The columns of the 4x4 matrix with the rows a, b, c, d.
  static void transpose(const PlainLanes& a, const PlainLanes& b, const PlainLanes& c,
                        const PlainLanes& d, PlainLanes out[4]) {
    for (int i = 0; i < 4; ++i) out[i] = {{a.lane[i], b.lane[i], c.lane[i], d.lane[i]}};
  }

  PlainLanes operator-() const { return {{-lane[0], -lane[1], -lane[2], -lane[3]}}; }
  PlainLanes operator+(const PlainLanes& b) const {
    return {{lane[0] + b.lane[0], lane[1] + b.lane[1], lane[2] + b.lane[2], lane[3] + b.lane[3]}};
  }
  PlainLanes operator-(const PlainLanes& b) const {
    return {{lane[0] - b.lane[0], lane[1] - b.lane[1], lane[2] - b.lane[2], lane[3] - b.lane[3]}};
  }
  PlainLanes operator*(const PlainLanes& b) const {
    return {{lane[0] * b.lane[0], lane[1] * b.lane[1], lane[2] * b.lane[2], lane[3] * b.lane[3]}};
  }
  /// The lower, and the higher, of each lane; b's where they are equal or one is NaN.
  static PlainLanes min(const PlainLanes& a, const PlainLanes& b) {
    PlainLanes lower = b;
    for (int i = 0; i < 4; ++i) lower.lane[i] = a.lane[i] < b.lane[i] ? a.lane[i] : b.lane[i];
    return lower;
  }
  static PlainLanes max(const PlainLanes& a, const PlainLanes& b) {
    PlainLanes higher = b;
    for (int i = 0; i < 4; ++i) higher.lane[i] = a.lane[i] > b.lane[i] ? a.lane[i] : b.lane[i];
    return higher;
  }
  PlainLanes timesCrossed(Halves h) const {
    return {{lane[0] * h.high, lane[1] * h.high, lane[2] * h.low, lane[3] * h.low}};
  }
};

using PlainFloat4 = PlainLanes<float>;
using PlainDouble4 = PlainLanes<double>;

#if defined(__SSE2__)

/// One register with (high, high, low, low), so that lanes cross it as it stands.
struct SseFloatHalves {
  __m128 r;

  SseFloatHalves operator+(SseFloatHalves b) const { return {_mm_add_ps(r, b.r)}; }
  SseFloatHalves operator-(SseFloatHalves b) const { return {_mm_sub_ps(r, b.r)}; }
  SseFloatHalves operator*(SseFloatHalves b) const { return {_mm_mul_ps(r, b.r)}; }
  SseFloatHalves timesCrossed(SseFloatHalves b) const {
    return {_mm_mul_ps(r, _mm_shuffle_ps(b.r, b.r, _MM_SHUFFLE(0, 0, 2, 2)))};
  }
  float sum() const { return _mm_cvtss_f32(_mm_add_ss(_mm_movehl_ps(r, r), r)); }
};

struct SseFloat4 {
  using Halves = SseFloatHalves;

  __m128 r;

  static SseFloat4 broadcast(float value) { return {_mm_set1_ps(value)}; }
  static SseFloat4 load(const float* from) { return {_mm_loadu_ps(from)}; }
  void store(float* to) const { _mm_storeu_ps(to, r); }
  template <int i>
  static Halves pick(SseFloat4 low, SseFloat4 high) {
    return {_mm_shuffle_ps(high.r, low.r, _MM_SHUFFLE(i, i, i, i))};
  }
  static void transpose(SseFloat4 a, SseFloat4 b, SseFloat4 c, SseFloat4 d, SseFloat4 out[4]) {
    _MM_TRANSPOSE4_PS(a.r, b.r, c.r, d.r);
    out[0] = a, out[1] = b, out[2] = c, out[3] = d;
  }

  SseFloat4 operator-() const { return {_mm_xor_ps(r, _mm_set1_ps(-0.0f))}; }
  SseFloat4 operator+(SseFloat4 b) const { return {_mm_add_ps(r, b.r)}; }
  SseFloat4 operator-(SseFloat4 b) const { return {_mm_sub_ps(r, b.r)}; }
  SseFloat4 operator*(SseFloat4 b) const { return {_mm_mul_ps(r, b.r)}; }
  static SseFloat4 min(SseFloat4 a, SseFloat4 b) { return {_mm_min_ps(a.r, b.r)}; }
  static SseFloat4 max(SseFloat4 a, SseFloat4 b) { return {_mm_max_ps(a.r, b.r)}; }
  SseFloat4 timesCrossed(Halves h) const { return {_mm_mul_ps(r, h.r)}; }
};

struct SseDouble2 {
  __m128d r;

  SseDouble2 operator+(SseDouble2 b) const { return {_mm_add_pd(r, b.r)}; }
  SseDouble2 operator-(SseDouble2 b) const { return {_mm_sub_pd(r, b.r)}; }
  SseDouble2 operator*(SseDouble2 b) const { return {_mm_mul_pd(r, b.r)}; }
  SseDouble2 timesCrossed(SseDouble2 b) const {
    return {_mm_mul_pd(r, _mm_shuffle_pd(b.r, b.r, 1))};
  }
  double sum() const { return _mm_cvtsd_f64(_mm_add_sd(r, _mm_unpackhi_pd(r, r))); }
};

/// Two registers, with lanes 0, 1 and 2, 3 when loaded, with lanes 0, 2 and 1, 3 when transposed,
/// so that each can be multiplied by Halves. Only the latter are computed with and stored.
struct SseDouble4 {
  using Halves = SseDouble2;

  SseDouble2 a, b;

  static SseDouble4 broadcast(double value) { return {{_mm_set1_pd(value)}, {_mm_set1_pd(value)}}; }
  static SseDouble4 load(const double* from) {
    return {{_mm_loadu_pd(from)}, {_mm_loadu_pd(from + 2)}};
  }
  void store(double* to) const {
    _mm_storeu_pd(to, _mm_unpacklo_pd(a.r, b.r));
    _mm_storeu_pd(to + 2, _mm_unpackhi_pd(a.r, b.r));
  }
  template <int i>
  static Halves pick(const SseDouble4& low, const SseDouble4& high) {
    const __m128d x = (i < 2 ? low.a : low.b).r, y = (i < 2 ? high.a : high.b).r;
    return {i % 2 == 0 ? _mm_unpacklo_pd(x, y) : _mm_unpackhi_pd(x, y)};
  }
  static void transpose(const SseDouble4& a, const SseDouble4& b, const SseDouble4& c,
                        const SseDouble4& d, SseDouble4 out[4]) {
    out[0] = {pick<0>(a, c), pick<0>(b, d)};
    out[1] = {pick<1>(a, c), pick<1>(b, d)};
    out[2] = {pick<2>(a, c), pick<2>(b, d)};
    out[3] = {pick<3>(a, c), pick<3>(b, d)};
  }

  SseDouble4 operator-() const {
    const __m128d sign = _mm_set1_pd(-0.0);
    return {{_mm_xor_pd(a.r, sign)}, {_mm_xor_pd(b.r, sign)}};
  }
  SseDouble4 operator+(const SseDouble4& o) const { return {a + o.a, b + o.b}; }
  SseDouble4 operator-(const SseDouble4& o) const { return {a - o.a, b - o.b}; }
  SseDouble4 operator*(const SseDouble4& o) const { return {a * o.a, b * o.b}; }
  SseDouble4 timesCrossed(Halves h) const { return {a.timesCrossed(h), b.timesCrossed(h)}; }
};

#endif

#if defined(__SSE2__) && !defined(VEXA_PLAIN)
using Float4 = SseFloat4;
using Double4 = SseDouble4;
#else
using Float4 = PlainFloat4;
using Double4 = PlainDouble4;
#endif

}  // namespace Norvel::Vexa
