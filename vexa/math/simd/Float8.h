#pragma once

#include <cmath>

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

struct PlainFloat1 {
  using Wide = PlainDouble1;
  static constexpr int kLanes = 1;

  float value;

  static PlainFloat1 load(const float* from) { return {*from}; }
  void store(float* to) const { *to = value; }
  static PlainFloat1 broadcast(float v) { return {v}; }
  PlainFloat1 operator+(PlainFloat1 b) const { return {value + b.value}; }
  PlainFloat1 operator-(PlainFloat1 b) const { return {value - b.value}; }
  PlainFloat1 operator*(PlainFloat1 b) const { return {value * b.value}; }
  PlainFloat1 squareRoot() const { return {std::sqrt(value)}; }
  PlainDouble1 widened() const { return {double(value)}; }
};

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

struct AvxFloat8 {
  using Wide = AvxDouble8;
  static constexpr int kLanes = 8;

  __m256 lanes;

  static AvxFloat8 load(const float* from) { return {_mm256_loadu_ps(from)}; }
  void store(float* to) const { _mm256_storeu_ps(to, lanes); }
  static AvxFloat8 broadcast(float v) { return {_mm256_set1_ps(v)}; }
  AvxFloat8 operator+(AvxFloat8 b) const { return {_mm256_add_ps(lanes, b.lanes)}; }
  AvxFloat8 operator-(AvxFloat8 b) const { return {_mm256_sub_ps(lanes, b.lanes)}; }
  AvxFloat8 operator*(AvxFloat8 b) const { return {_mm256_mul_ps(lanes, b.lanes)}; }
  AvxFloat8 squareRoot() const { return {_mm256_sqrt_ps(lanes)}; }
  AvxDouble8 widened() const {
    return {_mm256_cvtps_pd(_mm256_castps256_ps128(lanes)),
            _mm256_cvtps_pd(_mm256_extractf128_ps(lanes, 1))};
  }
};

inline AvxFloat8 AvxDouble8::narrowed() const {
  return {_mm256_set_m128(_mm256_cvtpd_ps(high), _mm256_cvtpd_ps(low))};
}

#endif

}  // namespace Norvel::Vexa
