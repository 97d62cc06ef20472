#pragma once

#include "vexa/Export.h"

namespace UXS {

/// A colour: red, green, blue, alpha, usually in 0..1; no component is clamped.
///
/// A plain value; arithmetic is component by component, alpha like the rest.
struct VEXA_EXPORT uxs_color {
  float r, g, b, a;

  constexpr uxs_color() : r(), g(), b(), a() {}
  constexpr uxs_color(float red, float green, float blue, float alpha)
      : r(red), g(green), b(blue), a(alpha) {}
};

constexpr uxs_color operator+(const uxs_color& p, const uxs_color& q) {
  return {p.r + q.r, p.g + q.g, p.b + q.b, p.a + q.a};
}
constexpr uxs_color operator-(const uxs_color& p, const uxs_color& q) {
  return {p.r - q.r, p.g - q.g, p.b - q.b, p.a - q.a};
}
constexpr uxs_color operator*(const uxs_color& p, float s) {
  return {p.r * s, p.g * s, p.b * s, p.a * s};
}
constexpr uxs_color operator*(float s, const uxs_color& p) { return p * s; }

/// Exact comparison: 0.0 equals -0.0 and NaN equals nothing.
constexpr bool operator==(const uxs_color& p, const uxs_color& q) {
  return p.r == q.r && p.g == q.g && p.b == q.b && p.a == q.a;
}
constexpr bool operator!=(const uxs_color& p, const uxs_color& q) { return !(p == q); }

}  // namespace UXS
