#include <gtest/gtest.h>

#include "tests/helpers/compare.h"
#include "vexa/math/TQuaternion.h"
#include "vexa/math/TVector2D.h"
#include "vexa/math/TVector3D.h"
#include "vexa/math/uxs_generic_mat4.h"
#include "vexa/math/uxs_generic_vec3.h"

using vexa::tests::sameBits;

// The constants come out of the shared library with their values.
TEST(Constants, AxesZerosAndIdentity) {
  using Consts = UXS::uxs_generic_vec3_consts<float>;
  const UXS::uxs_generic_vec3<float> zero;
  EXPECT_EQ(Consts::UXS_VEC3_ZERO, zero);
  EXPECT_EQ(Consts::UXS_X_AXIS_UNIT.x, 1);
  EXPECT_EQ(Consts::UXS_Y_AXIS_UNIT.y, 1);
  EXPECT_EQ(Consts::UXS_Z_AXIS_UNIT.z, 1);
  EXPECT_EQ(Consts::UXS_MINUS_X_AXIS_UNIT, zero - Consts::UXS_X_AXIS_UNIT);
  EXPECT_EQ(Consts::UXS_MINUS_Y_AXIS_UNIT, zero - Consts::UXS_Y_AXIS_UNIT);
  EXPECT_EQ(Consts::UXS_MINUS_Z_AXIS_UNIT, zero - Consts::UXS_Z_AXIS_UNIT);
  EXPECT_EQ(Oru::TVector2D<float>::ZeroVector, Oru::TVector2D<float>());
  EXPECT_EQ(Oru::TVector3D<float>::ZeroVector, Oru::TVector3D<float>());
  EXPECT_EQ(Oru::TVector3D<double>::ZeroVector, Oru::TVector3D<double>());
  EXPECT_TRUE(sameBits(Oru::TQuaternion<float>::Identity, Oru::TQuaternion<float>(0, 0, 0, 1)));
  EXPECT_TRUE(sameBits(Oru::TQuaternion<double>::Identity, Oru::TQuaternion<double>(0, 0, 0, 1)));
}

TEST(Mat4, TranslationAfterScaleMovesByTheWholeTranslation) {
  UXS::uxs_generic_mat4<float> scale, translation;
  scale.e[0] = scale.e[5] = scale.e[10] = 2;
  translation.e[12] = 1;
  EXPECT_EQ((translation * scale * Oru::TVector3D<float>(1, 0, 0)),
            (Oru::TVector3D<float>(3, 0, 0)));
  EXPECT_EQ((scale * translation * Oru::TVector3D<float>(1, 0, 0)),
            (Oru::TVector3D<float>(4, 0, 0)));
}
