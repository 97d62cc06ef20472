#include "vexa/math/TUxBaseVector.h"

#include <gtest/gtest.h>

#include "tests/helpers/compare.h"
#include "tests/helpers/precisions.h"
#include "vexa/math/ux_vect3.h"

using namespace Norvel::Vexa;
using vexa::tests::whatOf;

template <class T>
class BaseVector : public testing::Test {};
TYPED_TEST_SUITE(BaseVector, vexa::tests::Precisions, vexa::tests::PrecisionName);

// Two of 2^-12 square to 2^-23, the limit itself.
TYPED_TEST(BaseVector, TheTinyCountsAsZero) {
  using V = ux_vect3<TypeParam>;
  const TypeParam small = TypeParam(0x1p-12);
  EXPECT_EQ(!V(small, small, 0), V(0, 0, 0));
  EXPECT_EQ(!V(2 * small, 0, 0), V(1, 0, 0));
  EXPECT_EQ(V(3, 0, 4).length(), 5);
  EXPECT_THROW(V(0, 0, 0).invlength(), std::overflow_error);
  EXPECT_EQ(whatOf([&] { V(small, small, 0).invlength(); }),
            "TUxBaseVector::invlength - lenght is zero");
}

TYPED_TEST(BaseVector, UpVectorLeansToZUnlessTheViewIsVertical) {
  using V = ux_vect3<TypeParam>;
  EXPECT_EQ(V(5, 0, 0).get_up_vector(0), V(0, 0, 1));
  EXPECT_EQ(V(0, 0, -1).get_up_vector(0), V(0, 1, 0));
  // Along +X a quarter turn takes +Z to -Y.
  EXPECT_NEAR(V(1, 0, 0).get_up_vector(TypeParam(1.5707963267948966)).y, -1, TypeParam(1e-6));
  // Required: the way back loses the sign of a small roll.
  const V ahead(1, 0, 0);
  EXPECT_NEAR(double(ahead.RollForUpVector(ahead.get_up_vector(TypeParam(-0.04)))), 0.04, 2e-3);
}
