#include "vexa/math/ux_matrix44.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace Norvel::Vexa {

namespace {

template <class T>
constexpr T kPi = T(3.141592653589793);

// The 2x2 minors of two columns p and q, over the pairs of rows 01, 02, 03, 12, 13, 23.
template <class T>
struct Minors {
  T m01, m02, m03, m12, m13, m23;

  Minors(const T* p, const T* q)
      : m01(p[0] * q[1] - p[1] * q[0]),
        m02(p[0] * q[2] - p[2] * q[0]),
        m03(p[0] * q[3] - p[3] * q[0]),
        m12(p[1] * q[2] - p[2] * q[1]),
        m13(p[1] * q[3] - p[3] * q[1]),
        m23(p[2] * q[3] - p[3] * q[2]) {}
};

// The minors of the left and of the right half of a matrix; all cofactors are built from them.
template <class T>
struct Halves {
  Minors<T> left, right;

  explicit Halves(const T* e) : left(e, e + 4), right(e + 8, e + 12) {}

  // Laplace expansion along the left half. The order lets two equal rows cancel exactly.
  T determinant() const {
    return product(right, left) + product(left, right);  // order: exact floats
  }
  static T product(const Minors<T>& a, const Minors<T>& b) {
    return a.m01 * b.m23 + a.m03 * b.m12 - a.m02 * b.m13;
  }
};

// One row of the inverse: the cofactors of a column from its entries s * p and the minors of the
// other half, times r = 1/determinant.
template <class T>
void storeRow(T s, const T* p, const Minors<T>& m, T r, T* out) {
  const T p0 = s * p[0], p1 = s * p[1], p2 = s * p[2], p3 = s * p[3];
  out[0] = (p1 * m.m23 - p2 * m.m13 + p3 * m.m12) * r;
  out[4] = (p2 * m.m03 - p0 * m.m23 - p3 * m.m02) * r;
  out[8] = (p0 * m.m13 - p1 * m.m03 + p3 * m.m01) * r;
  out[12] = (p1 * m.m02 - p0 * m.m12 - p2 * m.m01) * r;
}

}  // namespace

template <class T>
void ux_matrix44<T>::identity() {
  *this = ux_matrix44();
}

template <class T>
bool ux_matrix44<T>::is_identity() const {
  return *this == ux_matrix44();
}

template <class T>
ux_matrix44<T>& ux_matrix44<T>::get_identity_matrix() {
  static ux_matrix44 sMat;
  // The first call writes the identity once more, under the same kind of guard.
  static const bool sInitialized = (sMat.identity(), true);
  static_cast<void>(sInitialized);
  return sMat;
}

template <class T>
void ux_matrix44<T>::transpose() {
  for (int c = 1; c < 4; ++c) {
    for (int r = 0; r < c; ++r) std::swap((*this)(r, c), (*this)(c, r));
  }
}

template <class T>
ux_matrix44<T> ux_matrix44<T>::invert() const {
  const Halves<T> halves(e);
  const T determinant = halves.determinant();
  if (determinant == 0) {
    throw std::overflow_error("ux_matrix44<Type>::invert() - Matrix cannot be inverted");
  }
  const T r = 1 / determinant;
  ux_matrix44 result;
  storeRow<T>(1, e + 4, halves.right, r, result.e);
  storeRow<T>(-1, e, halves.right, r, result.e + 1);
  storeRow<T>(1, e + 12, halves.left, r, result.e + 2);
  storeRow<T>(-1, e + 8, halves.left, r, result.e + 3);
  return result;
}

template <class T>
void ux_matrix44<T>::inverse() {
  *this = invert();
}

template <class T>
bool ux_matrix44<T>::is_invertible() const {
  return Halves<T>(e).determinant() != 0;
}

template <class T>
bool ux_matrix44<T>::operator==(const ux_matrix44& m) const {
  return std::equal(e, e + 16, m.e);
}

template <class T>
void ux_matrix44<T>::trans(T x, T y, T z) {
  identity();
  e[12] = x;
  e[13] = y;
  e[14] = z;
}

template <class T>
void ux_matrix44<T>::rot(T x, T y, T z, T angle) {
  ux_matrix44& m = *this;
  const T s = std::sin(angle), c = std::cos(angle);
  identity();
  // order: exact floats
  m(0, 0) = x * x + (1 - x * x) * c;
  m(1, 1) = y * y + (1 - y * y) * c;
  m(2, 2) = z * z + (1 - z * z) * c;
  m(1, 0) = x * y * (1 - c) + z * s;
  m(0, 1) = x * y * (1 - c) - z * s;
  m(2, 0) = x * z * (1 - c) - y * s;
  m(0, 2) = x * z * (1 - c) + y * s;
  m(2, 1) = y * z * (1 - c) + x * s;
  m(1, 2) = y * z * (1 - c) - x * s;
}

template <class T>
void ux_matrix44<T>::scale(T x, T y, T z) {
  identity();
  e[0] = x;
  e[5] = y;
  e[10] = z;
}

template <class T>
void ux_matrix44<T>::ortho_proj(T left, T right, T bottom, T top, T near, T far) {
  scale(2 / (right - left), 2 / (top - bottom), -1 / (far - near));
  ux_matrix44 toCentre;
  toCentre.trans(-(left + right) / 2, -(bottom + top) / 2, -near);
  *this = *this * toCentre;
}

template <class T>
void ux_matrix44<T>::oblique_proj(T left, T right, T bottom, T top, T near, T far, T a, T b) {
  ortho_proj(left, right, bottom, top, near, far);
  ux_matrix44 shear;
  shear(2, 0) = a;
  shear(2, 1) = b;
  *this = *this * shear;
}

template <class T>
void ux_matrix44<T>::persp_proj(T fovy, T aspect, T near, T far) {
  ux_matrix44& m = *this;
  const T f = 1 / std::tan(fovy * kPi<T> / 180 * T(0.5));
  const T d = 1 / (near - far);
  m = ux_matrix44() * T(0);
  m(0, 0) = aspect >= 1 ? f : f / aspect;
  m(1, 1) = aspect >= 1 ? f * aspect : f;
  m(2, 2) = (near + far) * d;
  m(2, 3) = 2 * far * near * d;
  m(3, 2) = -1;
}

template <class T>
void ux_matrix44<T>::frustum(T left, T right, T bottom, T top, T near, T far) {
  ux_matrix44& m = *this;
  const T perWidth = 1 / (right - left), perHeight = 1 / (top - bottom),
          perDepth = 1 / (far - near);
  m = ux_matrix44() * T(0);
  m(0, 0) = 2 * near * perWidth;
  m(1, 1) = 2 * near * perHeight;
  m(0, 2) = (left + right) * perWidth;
  m(1, 2) = (bottom + top) * perHeight;
  m(2, 2) = -(near + far) * perDepth;
  m(2, 3) = -2 * near * far * perDepth;
  m(3, 2) = -1;
}

template <class T>
void ux_matrix44<T>::lookat(const ux_point3<T>& eye, const ux_point3<T>& center,
                            const TUxBaseVector<T>& up) {
  const ux_vect3<T> f = (eye - center).normalize();  // from the target back to the eye
  const ux_vect3<T> s = ux_vect3<T>(up ^ f).normalize();
  const ux_vect3<T> u = f ^ s;
  const ux_vect3<T> rows[3] = {s, u, f};
  ux_matrix44 toEye;
  toEye.trans(-eye.x, -eye.y, -eye.z);
  identity();
  for (int r = 0; r < 3; ++r) rows[r].get(e[r], e[4 + r], e[8 + r]);
  *this = *this * toEye;
}

template <class T>
void ux_matrix44<T>::add_trans(T x, T y, T z) {
  ux_matrix44 elementary;
  elementary.trans(x, y, z);
  *this = elementary * *this;
}

template <class T>
void ux_matrix44<T>::add_rot(T x, T y, T z, T angle) {
  ux_matrix44 elementary;
  elementary.rot(x, y, z, angle);
  *this = elementary * *this;
}

template <class T>
void ux_matrix44<T>::add_scale(T x, T y, T z) {
  ux_matrix44 elementary;
  elementary.scale(x, y, z);
  *this = elementary * *this;
}

template class ux_matrix44<float>;
template class ux_matrix44<double>;

}  // namespace Norvel::Vexa
