#include "vexa/math/ux_matrix44.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <type_traits>
#include <utility>

#include "vexa/math/matrix_inverse_internal.h"
#include "vexa/math/simd/Float4.h"

namespace Norvel::Vexa {

namespace {

// In T: the double rounded, which for float is the nearest float to pi.
template <class T>
constexpr T kPi = T(3.141592653589793);

// The inverse is written once for both precisions; the build chooses plain or wide lanes.
template <class T>
using Inverse = MatrixInverse<T, std::conditional_t<std::is_same_v<T, float>, Float4, Double4>>;

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
  const Inverse<T> inverse(e);
  const T determinant = inverse.determinant();
  if (determinant == 0) {
    throw std::overflow_error("ux_matrix44<Type>::invert() - Matrix cannot be inverted");
  }
  ux_matrix44 result{Unset()};
  inverse.store(determinant, result.e);
  return result;
}

// invert() throws before anything is assigned, so a singular matrix stays as it was.
template <class T>
void ux_matrix44<T>::inverse() {
  *this = invert();
}

template <class T>
bool ux_matrix44<T>::is_invertible() const {
  return Inverse<T>(e).determinant() != 0;
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

// Rodrigues' formula for a unit axis a = (x, y, z): the part of a vector along the axis stays, the
// part across it turns by the angle.
//
//   M = a a^T + (1 - a a^T) cos + [a]x sin        [a]x v = a x v
//
// The diagonal keeps this grouping, the other elements have the cosine factored out. Both are the
// same on paper and differ in the last bit.
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

// The centre of the window and the near plane go to the origin, then the box is scaled. The depth
// is divided by its whole length, not by half of it: hence [0, -1].
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

//      |       /        f = 1 / tan(fovy / 2), the distance at which the window is 2 wide.
//      |     /|         w of the result is -z, so the division by w makes x smaller with the
//      |   /  | 1       distance. The depth a z + b, divided by -z, is to be -1 at the near plane
//      | /    |         and 1 at the far plane, which gives m(2, 2) = a and m(2, 3) = b.
//  eye o--------- -z
//           f
template <class T>
void ux_matrix44<T>::persp_proj(T fovy, T aspect, T near, T far) {
  ux_matrix44& m = *this;
  const T f = 1 / std::tan(fovy * kPi<T> / 180 * T(0.5));  // order: exact floats
  const T d = 1 / (near - far);
  m = ux_matrix44() * T(0);  // an identity would leave 1 at (3, 3)
  m(0, 0) = aspect >= 1 ? f : f / aspect;
  m(1, 1) = aspect >= 1 ? f * aspect : f;
  m(2, 2) = (near + far) * d;
  m(2, 3) = 2 * far * near * d;
  m(3, 2) = -1;
}

// The same projection through a window that need not be centred: column 2 shears the window's
// centre onto the axis.
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

// The camera's axes as rows: s to the right, u up, f backwards, as the camera looks along its -Z.
//
//      u  up        s = up x f points out of the drawing. u is f x s and not `up` itself, which
//      ^  ^         need not be perpendicular to the view.
//      | /
//      |/           A point is first moved so that the eye is the origin, then measured along the
//  f <-o eye        three axes.
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
