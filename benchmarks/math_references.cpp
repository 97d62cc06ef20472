#include "benchmarks/math_references.h"

#include <Eigen/Dense>
#include <glm/glm.hpp>

namespace vexa::benchmarks {

namespace {

// The libraries' types are laid over the plain arrays, which have their layout and alignment.
template <class T>
using EigenMatrix = Eigen::Matrix<T, 4, 4>;
template <class T>
using EigenPoint = Eigen::Matrix<T, 3, 1>;
template <class T>
using GlmMatrix = glm::mat<4, 4, T>;
template <class T>
using GlmPoint = glm::vec<3, T>;

template <class T>
void invertByEigen(const T* in, T* out, int count) {
  const auto* const from = reinterpret_cast<const EigenMatrix<T>*>(in);
  auto* const to = reinterpret_cast<EigenMatrix<T>*>(out);
  for (int i = 0; i < count; ++i) to[i] = from[i].inverse();
}

template <class T>
void multiplyByGlm(const T* a, const T* b, T* out, int count) {
  const auto* const left = reinterpret_cast<const GlmMatrix<T>*>(a);
  const auto* const right = reinterpret_cast<const GlmMatrix<T>*>(b);
  auto* const to = reinterpret_cast<GlmMatrix<T>*>(out);
  for (int i = 0; i < count; ++i) to[i] = left[i] * right[i];
}

// An affine product: the fourth row is ignored, as ours ignores it.
template <class T>
void transformByEigen(const T* matrix, const T* points, T* out, int count) {
  const EigenMatrix<T> m = *reinterpret_cast<const EigenMatrix<T>*>(matrix);
  const auto* const from = reinterpret_cast<const EigenPoint<T>*>(points);
  auto* const to = reinterpret_cast<EigenPoint<T>*>(out);
  for (int i = 0; i < count; ++i) {
    to[i] = m.template topLeftCorner<3, 3>() * from[i] + m.template topRightCorner<3, 1>();
  }
}

// GLM has no affine product; a point with w = 1 and the first three components are its idiom.
template <class T>
void transformByGlm(const T* matrix, const T* points, T* out, int count) {
  const GlmMatrix<T> m = *reinterpret_cast<const GlmMatrix<T>*>(matrix);
  const auto* const from = reinterpret_cast<const GlmPoint<T>*>(points);
  auto* const to = reinterpret_cast<GlmPoint<T>*>(out);
  for (int i = 0; i < count; ++i) to[i] = GlmPoint<T>(m * glm::vec<4, T>(from[i], T(1)));
}

}  // namespace

void eigenInvert(const float* in, float* out, int count) { invertByEigen(in, out, count); }
void eigenInvert(const double* in, double* out, int count) { invertByEigen(in, out, count); }

void glmMultiply(const float* a, const float* b, float* out, int count) {
  multiplyByGlm(a, b, out, count);
}
void glmMultiply(const double* a, const double* b, double* out, int count) {
  multiplyByGlm(a, b, out, count);
}

void eigenTransform(const float* matrix, const float* points, float* out, int count) {
  transformByEigen(matrix, points, out, count);
}
void eigenTransform(const double* matrix, const double* points, double* out, int count) {
  transformByEigen(matrix, points, out, count);
}
void glmTransform(const float* matrix, const float* points, float* out, int count) {
  transformByGlm(matrix, points, out, count);
}
void glmTransform(const double* matrix, const double* points, double* out, int count) {
  transformByGlm(matrix, points, out, count);
}

}  // namespace vexa::benchmarks
