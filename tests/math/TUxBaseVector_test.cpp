#include "vexa/math/TUxBaseVector.h"

#include <gtest/gtest.h>
#include <limits>

#include "tests/helpers/compare.h"
#include "tests/helpers/precisions.h"
#include "vexa/math/ux_vect3.h"

using namespace Norvel::Vexa;
using vexa::tests::sameBits;
using vexa::tests::whatOf;

template <class T>
class BaseVector : public testing::Test {};
TYPED_TEST_SUITE(BaseVector, vexa::tests::Precisions, vexa::tests::PrecisionName);

TYPED_TEST(BaseVector, TheTinyCountsAsZeroAndUnitLengthIsLeftAlone) {
  using T = TypeParam;
  using V = ux_vect3<T>;
  // 2^-11 squares to 2^-22, above the limit; two of 2^-12 to 2^-23, the limit itself. The square of
  // the last but one rounds to 1.
  const T small = T(0x1p-12), fifth = T(1.0 / 5.0), almost = std::numeric_limits<T>::epsilon() / 4;
  const std::pair<V, V> cases[] = {{V(0, 0, T(1e-4)), V(0, 0, 0)},
                                   {V(small, small, 0), V(0, 0, 0)},
                                   {V(2 * small, 0, 0), V(1, 0, 0)},
                                   {V(1, almost, 0), V(1, almost, 0)},
                                   {V(3, 0, 4), V(3 * fifth, 0, 4 * fifth)}};
  for (const auto& each : cases) {
    const auto &v = each.first, &unit = each.second;
    EXPECT_TRUE(sameBits(!v, TUxUnitVector<T>(unit))) << v.x;
    const bool isZero = !unit.not_null();
    EXPECT_EQ(v.length() == 0, isZero) << v.x;
    EXPECT_EQ(whatOf([&] { EXPECT_EQ(v.invlength(), v == unit ? 1 : 1 / v.length()); }),
              isZero ? "TUxBaseVector::invlength - lenght is zero" : "nothing was thrown");
  }
  EXPECT_THROW(V(0, 0, 0).invlength(), std::overflow_error);
}

// A float's root and reciprocal go through double: rounding twice in float would differ.
TEST(BaseVectorFloat, ReciprocalLengthIsRoundedOnce) {
  const ux_vect3<float> v(1.02f, 1, 0);
  const float s = v.sqr_length(), once = float(1 / std::sqrt(double(s)));
  EXPECT_EQ(v.invlength(), once);
  EXPECT_EQ((!v).x, 1.02f * once);
  EXPECT_NE(1 / std::sqrt(s), once);
}

TYPED_TEST(BaseVector, ArithmeticIsExactAndNaNIsUnequal) {
  using T = TypeParam;
  using V = ux_vect3<T>;
  const V a(1, 2, 3), b(4, 5, 6);
  EXPECT_EQ(a ^ b, V(-3, 6, -3));
  EXPECT_EQ(a * b, 32);
  EXPECT_EQ(-a + b - a * 2, V(1, -1, -3));
  EXPECT_EQ((V(1, 0, 0) / 0).x, std::numeric_limits<T>::infinity());
  const V strange(0, std::numeric_limits<T>::quiet_NaN(), 0);
  EXPECT_TRUE(strange != strange && strange.not_null());
  EXPECT_FALSE(strange == strange || V(0, -T(0), 0).not_null());
}

TYPED_TEST(BaseVector, UpVectorLeansToZUnlessTheViewIsVertical) {
  using T = TypeParam;
  using V = ux_vect3<T>;
  EXPECT_EQ(V(5, 0, 0).get_up_vector(0), V(0, 0, 1));
  EXPECT_EQ(V(0, 0, -1).get_up_vector(0), V(0, 1, 0));
  EXPECT_EQ(V(0, 0, 0).get_up_vector(0), V(0, 0, 0));
  // A cosine of 0.979 still leans to +Z, one of 0.981 to +Y.
  EXPECT_GT(V(T(0.20386), 0, T(0.979)).get_up_vector(0).z, 0);
  EXPECT_EQ(V(T(0.19401), 0, T(0.981)).get_up_vector(0), V(0, 1, 0));
  // Along +X a quarter turn takes +Z to -Y.
  EXPECT_NEAR(V(1, 0, 0).get_up_vector(T(1.5707963267948966)).y, -1, T(1e-6));
}

TYPED_TEST(BaseVector, RollForUpVectorUndoesGetUpVector) {
  using V = ux_vect3<TypeParam>;
  const double turn = 6.283185307179586;
  const double tolerance =
      sizeof(TypeParam) == 4 ? 2e-3 : 1e-7;  // the arccosine is flat at its end
  for (const V& view : {V(1, 2, 3), V(-4, 0, 1), V(0, TypeParam(0.1), -1)}) {
    for (double roll = -2.875; roll < 3.15; roll += 0.25) {
      const TypeParam back = view.RollForUpVector(view.get_up_vector(TypeParam(roll)));
      EXPECT_NEAR(double(back), roll > 0 ? roll : turn + roll, tolerance);
    }
  }
  // Required: both rolls are so near that the first one is taken.
  const V ahead(1, 0, 0);
  EXPECT_NEAR(double(ahead.RollForUpVector(ahead.get_up_vector(TypeParam(-0.04)))), 0.04,
              tolerance);
}
