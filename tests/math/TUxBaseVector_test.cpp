#include "vexa/math/TUxBaseVector.h"

#include <gtest/gtest.h>
#include <limits>

#include "tests/helpers/compare.h"
#include "tests/helpers/precisions.h"
#include "vexa/math/ux_vect3.h"

using namespace Norvel::Vexa;
using vexa::tests::sameBits;
using vexa::tests::whatOf;

namespace {

template <class T>
ux_vect3<T> normalized(ux_vect3<T> v) {
  return v.normalize();
}

}  // namespace

template <class T>
class BaseVector : public testing::Test {};
TYPED_TEST_SUITE(BaseVector, vexa::tests::Precisions, vexa::tests::PrecisionName);

TYPED_TEST(BaseVector, NormalizeSilencesTheTinyAndLeavesUnitLengthAlone) {
  using T = TypeParam;
  using V = ux_vect3<T>;
  EXPECT_EQ(normalized<T>({0, 0, T(1e-4)}), V(0, 0, 0));
  EXPECT_EQ(normalized<T>({3, 0, 4}), V(3 * T(1.0 / 5.0), 0, 4 * T(1.0 / 5.0)));
  // 2^-12 squares to 2^-24, below the limit; 2^-11 to 2^-22, above it.
  EXPECT_EQ(normalized<T>({T(0x1p-12), 0, 0}), V(0, 0, 0));
  EXPECT_EQ(normalized<T>({T(0x1p-11), 0, 0}), V(1, 0, 0));
  // The limit itself, 2^-23, is still zero: two components of 2^-12.
  EXPECT_EQ(normalized<T>({T(0x1p-12), T(0x1p-12), 0}), V(0, 0, 0));
  // Not of length 1, but its square rounds to it.
  const V almost(1, std::numeric_limits<T>::epsilon() / 4, 0);
  EXPECT_TRUE(sameBits(normalized<T>(almost), almost));
}

TYPED_TEST(BaseVector, LengthIsZeroWhereTheReciprocalThrows) {
  using V = ux_vect3<TypeParam>;
  const V tiny(0, 0, TypeParam(3e-4));
  EXPECT_EQ(tiny.length(), 0);
  EXPECT_EQ(whatOf([&] { tiny.invlength(); }), "TUxBaseVector::invlength - lenght is zero");
  EXPECT_THROW(V(0, 0, 0).invlength(), std::overflow_error);
  EXPECT_EQ(V(2, 0, 0).invlength(), TypeParam(0.5));
  EXPECT_EQ(V(2, 3, 6).length(), 7);
}

// A float's root and reciprocal go through double: rounding twice in float would differ.
TEST(BaseVectorFloat, ReciprocalLengthIsRoundedOnce) {
  int differs = 0;
  for (float x = 1; x < 2; x += 0.01f) {
    const ux_vect3<float> v(x, 1, 0);
    const float s = v.sqr_length();
    EXPECT_EQ(v.invlength(), float(1 / std::sqrt(double(s))));
    EXPECT_EQ(ux_vect3<float>(!v).x, x * v.invlength());
    differs += v.invlength() != 1 / std::sqrt(s);
  }
  EXPECT_GT(differs, 0);
}

TYPED_TEST(BaseVector, ArithmeticIsExactAndNaNIsUnequal) {
  using T = TypeParam;
  using V = ux_vect3<T>;
  const V a(1, 2, 3), b(4, 5, 6);
  EXPECT_EQ(a ^ b, V(-3, 6, -3));
  EXPECT_EQ(a * b, 32);
  EXPECT_EQ(-a + b, V(3, 3, 3));
  EXPECT_EQ(b - a * 2, V(2, 1, 0));
  const T n = sizeof(T) == 4 ? 41 : 49;
  EXPECT_NE((V(n, 1, 0) / n).x, 1);  // the reciprocal is rounded first
  EXPECT_EQ((V(1, 0, 0) / 0).x, std::numeric_limits<T>::infinity());
  const V strange(0, std::numeric_limits<T>::quiet_NaN(), 0);
  EXPECT_TRUE(strange != strange);
  EXPECT_FALSE(strange == strange);
  EXPECT_TRUE(strange.not_null());
  EXPECT_FALSE(V(0, -T(0), 0).not_null());
}

TYPED_TEST(BaseVector, UpVectorLeansToZUnlessTheViewIsVertical) {
  using T = TypeParam;
  using V = ux_vect3<T>;
  EXPECT_EQ(V(5, 0, 0).get_up_vector(0), V(0, 0, 1));
  EXPECT_EQ(V(0, 0, -1).get_up_vector(0), V(0, 1, 0));
  EXPECT_EQ(V(0, 0, 0).get_up_vector(0), V(0, 0, 0));
  // A cosine of 0.96 still leans to +Z, one of 0.99 to +Y.
  EXPECT_GT(V(0, T(0.28), T(0.96)).get_up_vector(0).z, 0);
  EXPECT_GT(V(0, T(-0.141), T(0.99)).get_up_vector(0).y, T(0.9));
  // Along +X a quarter turn takes +Z to -Y.
  EXPECT_NEAR(V(1, 0, 0).get_up_vector(T(1.5707963267948966)).y, -1, T(1e-6));
}

TYPED_TEST(BaseVector, RollForUpVectorUndoesGetUpVector) {
  using T = TypeParam;
  const double turn = 6.283185307179586;
  const double tolerance = sizeof(T) == 4 ? 2e-3 : 1e-7;  // the arccosine is flat at 1 and -1
  for (const ux_vect3<T>& view :
       {ux_vect3<T>(1, 2, 3), ux_vect3<T>(-4, 0, 1), ux_vect3<T>(0, T(0.1), -1)}) {
    for (double roll = -3; roll < 3.15; roll += 0.25) {
      if (roll == 0) continue;
      const T back = view.RollForUpVector(view.get_up_vector(T(roll)));
      EXPECT_NEAR(double(back), roll > 0 ? roll : turn + roll, tolerance);
    }
  }
  // Required: both rolls are so near that the first one is taken.
  const ux_vect3<T> view(1, 0, 0);
  EXPECT_NEAR(double(view.RollForUpVector(view.get_up_vector(T(-0.04)))), 0.04, tolerance);
}
