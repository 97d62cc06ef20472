#pragma once

#include "vexa/Export.h"
#include "vexa/math/column_matrix.h"
#include "vexa/math/ux_point3.h"
#include "vexa/math/ux_point4.h"
#include "vexa/math/ux_vect3.h"

namespace Norvel::Vexa {

/// A homogeneous 4x4 transformation; T is float or double.
///
/// Points and vectors are column vectors on the right, p' = M p, so A B applies B first. Angles are
/// in radians, except fovy of persp_proj. No builder checks its arguments: a view volume of no
/// width or depth gives infinities or NaN. A plain value of the same layout as
/// UXS::uxs_generic_mat4.
template <class T>
class VEXA_EXPORT ux_matrix44 {
 public:
  /// Column by column: the element of row r and column c is e[4c + r]. The translation is at
  /// 12, 13, 14, the projective row at 3, 7, 11 and its corner at 15.
  T e[16];

  /// The identity.
  constexpr ux_matrix44() : e{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1} {}

  /// The element of row r and column c, each 0..3; the range is not checked.
  constexpr T operator()(int r, int c) const { return e[4 * c + r]; }
  constexpr T& operator()(int r, int c) { return e[4 * c + r]; }

  void identity();
  /// Whether the diagonal is exactly 1 and every other element exactly 0.
  bool is_identity() const;
  /// One shared identity matrix, made on the first call. It is the same for everybody in the
  /// process: do not write to it.
  static ux_matrix44& get_identity_matrix();

  void transpose();
  /// The inverse: the adjugate times 1/determinant.
  ///
  /// Throws std::overflow_error if the determinant is exactly 0, as it is for a zero row or column
  /// or two equal rows. There is no tolerance: a nearly singular matrix, such as one whose equal
  /// columns leave a rounding error, gives huge elements.
  ux_matrix44 invert() const;
  /// Replaces this matrix by invert(), and leaves it as it was when that throws.
  void inverse();
  /// Whether the determinant, computed as in invert, is other than exactly 0.
  bool is_invertible() const;

  /// Exact comparison: 0.0 equals -0.0 and NaN equals nothing.
  bool operator==(const ux_matrix44& m) const;
  bool operator!=(const ux_matrix44& m) const { return !(*this == m); }

  // These overwrite this matrix.

  void trans(T x, T y, T z);
  /// Right-handed rotation by `angle` about the axis (x, y, z), which is used as given and should
  /// be of length 1: about +Z a positive angle turns +X towards +Y.
  void rot(T x, T y, T z, T angle);
  void scale(T x, T y, T z);
  /// Parallel projection of a box: x and y to [-1, 1].
  ///
  /// Required behaviour: z maps near to 0 and far to -1, unlike the other projections.
  void ortho_proj(T left, T right, T bottom, T top, T near, T far);
  /// ortho_proj after a shear that adds a x + b y to z.
  void oblique_proj(T left, T right, T bottom, T top, T near, T far, T a, T b);
  /// Perspective with `fovy` in degrees and `aspect` = width / height; depth maps to [-1, 1].
  ///
  /// Required behaviour: the angle spans the larger side of the image, across for aspect >= 1.
  void persp_proj(T fovy, T aspect, T near, T far);
  /// Perspective through the window [left, right] x [bottom, top] at distance `near`.
  void frustum(T left, T right, T bottom, T top, T near, T far);
  /// World to camera for an eye that looks at `center`; the camera looks along its own -Z.
  ///
  /// Never throws: an `up` along the view gives a degenerate matrix.
  void lookat(const ux_point3<T>& eye, const ux_point3<T>& center, const TUxBaseVector<T>& up);

  // These set this matrix to X this, so X is applied last.

  void add_trans(T x, T y, T z);
  void add_rot(T x, T y, T z, T angle);
  void add_scale(T x, T y, T z);

  /// Matrix product; each element is summed from k = 0 upwards.
  ux_matrix44 operator*(const ux_matrix44& b) const {
    ux_matrix44 result{Unset()};
    multiplyColumns(e, b.e, result.e);
    return result;
  }
  constexpr ux_point4<T> operator*(const ux_point4<T>& p) const {
    return {row(0, p), row(1, p), row(2, p), row(3, p)};
  }
  /// The fourth row is ignored and nothing is divided by w.
  constexpr ux_point3<T> operator*(const ux_point3<T>& p) const {
    return {rowTimesPoint(e, 0, p), rowTimesPoint(e, 1, p), rowTimesPoint(e, 2, p)};
  }
  /// Translation and fourth row are ignored.
  constexpr ux_vect3<T> operator*(const TUxBaseVector<T>& v) const {
    return {rowTimesDirection(e, 0, v), rowTimesDirection(e, 1, v), rowTimesDirection(e, 2, v)};
  }
  constexpr ux_matrix44 operator*(T s) const {
    ux_matrix44 result;
    for (int i = 0; i < 16; ++i) result.e[i] = e[i] * s;
    return result;
  }
  constexpr ux_matrix44 operator+(const ux_matrix44& b) const {
    ux_matrix44 result;
    for (int i = 0; i < 16; ++i) result.e[i] = e[i] + b.e[i];
    return result;
  }

 private:
  // For results whose elements are all written next.
  struct Unset {};
  explicit ux_matrix44(Unset /*unused*/) {}

  constexpr T row(int r, const ux_point4<T>& p) const {
    return rowTimesDirection(e, r, p) + e[12 + r] * p.w;  // order: exact floats
  }
};

extern template class VEXA_EXPORT ux_matrix44<float>;
extern template class VEXA_EXPORT ux_matrix44<double>;

}  // namespace Norvel::Vexa
