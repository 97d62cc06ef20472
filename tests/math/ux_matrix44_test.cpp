#include "vexa/math/ux_matrix44.h"

#include <gtest/gtest.h>

#include "tests/helpers/compare.h"
#include "tests/helpers/precisions.h"

using namespace Norvel::Vexa;
using vexa::tests::whatOf;

namespace {

constexpr double kPi = 3.141592653589793;
template <class T>
constexpr T kTolerance = sizeof(T) == 4 ? T(1e-6) : T(1e-14);

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

TYPED_TEST(Matrix, ASingularOneIsToldAndStays) {
  ux_matrix44<TypeParam> m;
  m.trans(1, 2, 3);
  EXPECT_EQ((m.invert() * ux_point3<TypeParam>(1, 2, 3)).x, 0);
  m(2, 2) = 0;
  const ux_matrix44<TypeParam> before = m;
  EXPECT_THROW(m.invert(), std::overflow_error);
  EXPECT_EQ(whatOf([&] { m.inverse(); }),
            "ux_matrix44<Type>::invert() - Matrix cannot be inverted");
  EXPECT_TRUE(m == before);
}

TYPED_TEST(Matrix, TheIdentityIsShared) {
  using M = ux_matrix44<TypeParam>;
  EXPECT_EQ(&M::get_identity_matrix(), &M::get_identity_matrix());
  EXPECT_TRUE(M::get_identity_matrix().is_identity());
}
