#include "vexa/math/ux_matrix44.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>

#include "tests/helpers/compare.h"
#include "tests/helpers/precisions.h"

using namespace Norvel::Vexa;
using vexa::tests::sameBits;
using vexa::tests::whatOf;

namespace {

constexpr double kPi = 3.141592653589793;

// Repeatable values in [-1, 1).
class Values {
 public:
  template <class T>
  T next() {
    mState = mState * 6364136223846793005u + 1442695040888963407u;
    return T(double(mState >> 11) * 0x1p-52 - 1);
  }
  template <class T>
  ux_matrix44<T> matrix() {
    ux_matrix44<T> m;
    for (T& element : m.e) element = next<T>();
    return m;
  }

 private:
  std::uint64_t mState = 1;
};

template <class T, class V>
void expectNear(const V& a, const V& b) {
  const T tolerance = sizeof(T) == 4 ? T(1e-6) : T(1e-14);
  EXPECT_NEAR(a.x, b.x, tolerance);
  EXPECT_NEAR(a.y, b.y, tolerance);
  EXPECT_NEAR(a.z, b.z, tolerance);
}

}  // namespace

template <class T>
class Matrix : public testing::Test {};
TYPED_TEST_SUITE(Matrix, vexa::tests::Precisions, vexa::tests::PrecisionName);

TYPED_TEST(Matrix, BuildersTakePointsWhereTheyShould) {
  using T = TypeParam;
  using P = ux_point3<T>;
  using V = ux_vect3<T>;
  ux_matrix44<T> m;
  const TUxUnitVector<T> diagonal = V(1, 1, 1);  // a third of a turn takes x to y to z to x
  m.rot(diagonal.x, diagonal.y, diagonal.z, T(2 * kPi / 3));
  expectNear<T>(m * V(1, 2, 3), V(3, 1, 2));
  m.trans(1, 2, 3);
  EXPECT_EQ((m * P(0, 0, 0)).as_vector(), V(1, 2, 3));
  EXPECT_EQ(m * V(0, 0, 0), V(0, 0, 0));
  m.scale(2, 2, 2);
  m.add_trans(1, 0, 0);
  EXPECT_EQ((m * P(1, 0, 0)).as_vector(), V(3, 0, 0));
  m.add_scale(1, 2, 1);
  m.add_rot(0, 0, 1, T(kPi));
  expectNear<T>((m * P(1, 1, 1)).as_vector(), V(-3, -4, 2));
  m.lookat(P(0, 0, 5), P(0, 0, 0), V(0, 1, 0));
  EXPECT_EQ((m * P(0, 0, 0)).as_vector(), V(0, 0, -5));
  m.lookat(P(1, 2, 3), P(4, 2, 3), V(0, 0, 1));  // looking along +X, +Y is on the left
  EXPECT_EQ((m * P(6, 3, 5)).as_vector(), V(-1, 2, -5));
}

TYPED_TEST(Matrix, Projections) {
  using T = TypeParam;
  using V = ux_vect3<T>;
  using P = ux_point3<T>;
  const T tolerance = sizeof(T) == 4 ? T(1e-6) : T(1e-14);
  ux_matrix44<T> m;
  m.ortho_proj(-1, 3, -1, 1, 2, 10);
  EXPECT_EQ((m * P(3, -1, 10)).as_vector(), V(1, -1, -1));  // required: depth 0 to -1
  EXPECT_EQ((m * P(1, 0, 2)).as_vector().z, 0);
  m.oblique_proj(-1, 1, -1, 1, 0, 2, T(0.5), T(0.25));
  EXPECT_EQ((m * P(1, 1, 1)).as_vector(), V(1, 1, T(-0.875)));
  m.persp_proj(90, 2, 1, 100);
  EXPECT_NEAR(m(0, 0), 1, tolerance);
  EXPECT_NEAR(m(1, 1), 2, tolerance);
  m.persp_proj(90, T(0.5), 1, 100);
  EXPECT_NEAR(m(0, 0), 2, tolerance);
  EXPECT_NEAR(m(1, 1), 1, tolerance);
  ux_matrix44<T> window;
  window.frustum(T(-0.5), T(0.5), -1, 1, 1, 100);
  for (int i = 0; i < 16; ++i) EXPECT_NEAR(m.e[i], window.e[i], 100 * tolerance) << i;
  window.frustum(0, 2, 0, 2, 1, 3);  // off centre: the near corner goes to (1, 1, -1)
  const ux_point4<T> corner = window * ux_point4<T>(2, 2, -1, 1);
  EXPECT_EQ(V(corner.x, corner.y, corner.z) / corner.w, V(1, 1, -1));
}

TYPED_TEST(Matrix, InverseUndoesAndOfTheIdentityHasNoNegativeZero) {
  using T = TypeParam;
  EXPECT_TRUE(sameBits(ux_matrix44<T>().invert(), ux_matrix44<T>()));
  Values values;
  for (int round = 0; round < 50; ++round) {
    ux_matrix44<T> m = values.matrix<T>();
    for (int i = 0; i < 16; i += 5) m.e[i] += 4;  // diagonally dominant, so well conditioned
    const ux_matrix44<T> unit = m * m.invert();
    for (int i = 0; i < 16; ++i) {
      EXPECT_NEAR(unit.e[i], T(i % 5 == 0), 20 * std::numeric_limits<T>::epsilon());
    }
  }
}

TYPED_TEST(Matrix, ExactlySingularThrowsAndLeavesTheMatrix) {
  using T = TypeParam;
  Values values;
  for (int a = 0; a < 4; ++a) {
    for (int b = 0; b < 4; ++b) {
      const ux_matrix44<T> whole = values.matrix<T>();
      ux_matrix44<T> noColumn = whole, noRow = whole, equalRows = whole;
      for (int k = 0; k < 4; ++k) {
        noColumn(k, a) = noRow(a, k) = 0;
        equalRows(a, k) = a == b ? T(0) : equalRows(b, k);
      }
      EXPECT_TRUE(whole.is_invertible());
      for (ux_matrix44<T> m : {noColumn, noRow, equalRows}) {
        const ux_matrix44<T> before = m;
        EXPECT_FALSE(m.is_invertible());
        EXPECT_EQ(whatOf([&] { m.inverse(); }),
                  "ux_matrix44<Type>::invert() - Matrix cannot be inverted");
        EXPECT_THROW(m.invert(), std::overflow_error);
        EXPECT_TRUE(sameBits(m, before));
      }
    }
  }
  ux_matrix44<T> nearly;
  nearly.scale(T(1e-10), T(1e-10), T(1e-10));  // no tolerance
  EXPECT_NEAR(nearly.invert()(0, 0) * T(1e-10), 1, 1e-6);
}

TYPED_TEST(Matrix, ProductsSumFromTheFirstTermOn) {
  using T = TypeParam;
  Values values;
  const ux_matrix44<T> a = values.matrix<T>(), b = values.matrix<T>(), product = a * b;
  for (int c = 0; c < 4; ++c) {
    const T x = b(0, c), y = b(1, c), z = b(2, c), w = b(3, c);
    const ux_point4<T> column = a * ux_point4<T>(x, y, z, w);
    const ux_point3<T> point = a * ux_point3<T>(x, y, z);
    const ux_vect3<T> direction = a * ux_vect3<T>(x, y, z);
    T sum = a(0, 0) * x;
    sum += a(0, 1) * y;
    sum += a(0, 2) * z;
    EXPECT_EQ(direction.x, sum);
    EXPECT_EQ(point.x, sum + a(0, 3));
    sum += a(0, 3) * w;
    EXPECT_EQ(column.x, sum);
    EXPECT_EQ(product(0, c), sum);
    EXPECT_EQ(product(3, c), column.w);
  }
}

TYPED_TEST(Matrix, ComparisonIsExactAndIdentityShared) {
  using M = ux_matrix44<TypeParam>;
  M m = M::get_identity_matrix();
  EXPECT_TRUE(m.is_identity());
  EXPECT_EQ(&M::get_identity_matrix(), &M::get_identity_matrix());
  for (int i = 0; i < 16; ++i) {
    M other;
    other.e[i] += TypeParam(1e-7 * 2);
    EXPECT_TRUE(other != m);
    EXPECT_FALSE(other.is_identity());
  }
  m.e[5] = std::numeric_limits<TypeParam>::quiet_NaN();
  EXPECT_FALSE(m == m);
  const M any = Values().matrix<TypeParam>();
  M turned = any;
  turned.transpose();
  for (int i = 0; i < 16; ++i) EXPECT_EQ(turned(i / 4, i % 4), any(i % 4, i / 4));
  EXPECT_EQ(any + any, any * 2);
}
