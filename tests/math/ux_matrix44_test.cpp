#include "vexa/math/ux_matrix44.h"

#include <gtest/gtest.h>
#include <limits>
#include <random>

#include "tests/helpers/compare.h"
#include "tests/helpers/precisions.h"

using namespace Norvel::Vexa;
using vexa::tests::sameBits;
using vexa::tests::whatOf;

namespace {

constexpr double kPi = 3.141592653589793;
template <class T>
constexpr T kTolerance = sizeof(T) == 4 ? T(1e-6) : T(1e-14);

/// Elements in [-1, 1), the same in every run.
template <class T>
ux_matrix44<T> anyMatrix(std::mt19937& random) {
  ux_matrix44<T> m;
  for (T& element : m.e) element = std::uniform_real_distribution<T>(-1, 1)(random);
  return m;
}

template <class T>
void expectNear(const ux_vect3<T>& a, const TUxBaseVector<T>& b) {
  EXPECT_LE((a - b).sqr_length(), kTolerance<T> * kTolerance<T>) << a.x << ' ' << a.y << ' ' << a.z;
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
  m.trans(1, 2, 3);
  EXPECT_EQ(m * V(0, 0, 0), V(0, 0, 0));
  m.scale(2, 2, 2);
  m.add_trans(1, 0, 0);
  EXPECT_EQ(V(m * P(1, 0, 0)), V(3, 0, 0));
  m.add_scale(1, 2, 1);
  m.add_rot(0, 0, 1, T(kPi / 2));
  expectNear<T>(m * P(1, 1, 1), V(-4, 3, 2));
  // About (1, 1, 1) by a third of a turn the axes follow each other: x to y to z to x.
  const T third = std::sqrt(T(1) / 3);
  m.rot(third, third, third, T(2 * kPi / 3));
  expectNear<T>(m * V(1, 2, 3), V(3, 1, 2));
  m.lookat(P(1, 2, 3), P(4, 2, 3), V(0, 0, 1));  // looking along +X, +Y is on the left
  EXPECT_EQ(V(m * P(6, 3, 5)), V(-1, 2, -5));
}

TYPED_TEST(Matrix, Projections) {
  using T = TypeParam;
  using V = ux_vect3<T>;
  using P = ux_point3<T>;
  ux_matrix44<T> m;
  m.ortho_proj(-1, 3, -1, 1, 2, 10);
  EXPECT_EQ(V(m * P(3, -1, 10)), V(1, -1, -1));  // required: depth 0 to -1
  EXPECT_EQ((m * P(1, 0, 2)).z, 0);
  m.oblique_proj(-1, 1, -1, 1, 0, 2, T(0.5), T(0.25));
  EXPECT_EQ(V(m * P(1, 1, 1)), V(1, 1, T(-0.875)));
  m.persp_proj(90, 2, 1, 100);
  expectNear<T>({m(0, 0), m(1, 1), 0}, V(1, 2, 0));
  m.persp_proj(90, T(0.5), 1, 100);
  ux_matrix44<T> window;
  window.frustum(T(-0.5), T(0.5), -1, 1, 1, 100);
  for (int i = 0; i < 16; ++i) EXPECT_NEAR(m.e[i], window.e[i], 100 * kTolerance<T>) << i;
  window.frustum(0, 2, 0, 2, 1, 3);  // off centre: the near corner goes to (1, 1, -1)
  const ux_point4<T> corner = window * ux_point4<T>(2, 2, -1, 1);
  EXPECT_EQ(V(corner.x, corner.y, corner.z) / corner.w, V(1, 1, -1));
}

// Four large elements, one in each row and column, keep the matrices far from singular.
TYPED_TEST(Matrix, TimesItsInverseIsTheIdentity) {
  using T = TypeParam;
  std::mt19937 random(1);
  for (int round = 0; round < 100; ++round) {
    ux_matrix44<T> m = anyMatrix<T>(random);
    for (int c = 0; c < 4; ++c) m((c * (1 + round % 2 * 2) + round / 2) % 4, c) += 4;
    const ux_matrix44<T> product = m * m.invert();
    for (int i = 0; i < 16; ++i) EXPECT_NEAR(product.e[i], i % 5 == 0, kTolerance<T>);
  }
  EXPECT_TRUE(sameBits(ux_matrix44<T>().invert(), ux_matrix44<T>()));  // no -0.0 either
  ux_matrix44<T> nearly;
  nearly.scale(T(1e-10), T(1e-10), T(1e-10));  // no tolerance
  EXPECT_NEAR(nearly.invert()(0, 0) * T(1e-10), 1, 1e-6);
}

TYPED_TEST(Matrix, ExactlySingularThrowsAndLeavesTheMatrix) {
  using T = TypeParam;
  std::mt19937 random(2);
  for (int round = 0; round < 48; ++round) {
    ux_matrix44<T> m = anyMatrix<T>(random);
    EXPECT_TRUE(m.is_invertible());
    const int a = round % 4, b = round / 4 % 4;
    for (int k = 0; k < 4; ++k) {
      if (round < 16) m(k, a) = 0;
      if (round >= 16) m(a, k) = round < 32 || a == b ? T(0) : m(b, k);
    }
    const ux_matrix44<T> before = m;
    EXPECT_FALSE(m.is_invertible());
    EXPECT_EQ(whatOf([&] { m.inverse(); }),
              "ux_matrix44<Type>::invert() - Matrix cannot be inverted");
    EXPECT_TRUE(sameBits(m, before));
  }
  EXPECT_THROW((ux_matrix44<T>() * 0).invert(), std::overflow_error);
}

TYPED_TEST(Matrix, ProductsSumFromTheFirstTermOn) {
  using T = TypeParam;
  std::mt19937 random(3);
  const ux_matrix44<T> a = anyMatrix<T>(random), b = anyMatrix<T>(random), product = a * b;
  for (int c = 0; c < 4; ++c) {
    const T x = b(0, c), y = b(1, c), z = b(2, c), w = b(3, c);
    const ux_point4<T> column = a * ux_point4<T>(x, y, z, w);
    T sum = a(0, 0) * x;
    sum += a(0, 1) * y;
    sum += a(0, 2) * z;
    EXPECT_EQ((a * ux_vect3<T>(x, y, z)).x, sum);
    EXPECT_EQ((a * ux_point3<T>(x, y, z)).x, sum + a(0, 3));
    EXPECT_EQ(column.x, sum + a(0, 3) * w);
    EXPECT_EQ(product(0, c), column.x);
    EXPECT_EQ(product(3, c), column.w);
  }
}

TYPED_TEST(Matrix, ComparisonIsExactAndIdentityShared) {
  using M = ux_matrix44<TypeParam>;
  M m = M::get_identity_matrix();
  EXPECT_EQ(&M::get_identity_matrix(), &M::get_identity_matrix());
  std::mt19937 random(4);
  M any = anyMatrix<TypeParam>(random), turned = any;
  turned.transpose();
  for (int i = 0; i < 16; ++i) {
    M other;
    EXPECT_TRUE(other.is_identity() && other == m);
    other.e[i] += std::numeric_limits<TypeParam>::epsilon();
    EXPECT_TRUE(other != m && !other.is_identity());
    EXPECT_EQ(turned(i / 4, i % 4), any(i % 4, i / 4));
  }
  EXPECT_EQ(any + any, any * 2);
  m.e[5] = std::numeric_limits<TypeParam>::quiet_NaN();
  EXPECT_FALSE(m == m);
}
