#pragma once

#include <algorithm>
#include <array>
#include <cmath>

#include "vexa/math/TQuaternion.h"
#include "vexa/math/TVector2D.h"
#include "vexa/math/TVector3D.h"

namespace vexa::formats {

/// Whether all numbers of a value are finite.
inline bool isFinite(float value) { return std::isfinite(value); }
inline bool isFinite(double value) { return std::isfinite(value); }

template <class T>
bool isFinite(const Oru::TVector2D<T>& v) {
  return std::isfinite(v.x) && std::isfinite(v.y);
}

template <class T>
bool isFinite(const Oru::TVector3D<T>& v) {
  return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

template <class T>
bool isFinite(const Oru::TQuaternion<T>& q) {
  return std::isfinite(q.x) && std::isfinite(q.y) && std::isfinite(q.z) && std::isfinite(q.w);
}

template <class T, std::size_t N>
bool isFinite(const std::array<T, N>& values) {
  return std::all_of(values.begin(), values.end(), [](const T& each) { return isFinite(each); });
}

}  // namespace vexa::formats
