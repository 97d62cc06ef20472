#include <gtest/gtest.h>

#include "vexa/math/TQuaternion.h"
#include "vexa/math/TVector2D.h"
#include "vexa/math/TVector3D.h"
#include "vexa/math/uxs_generic_mat4.h"
#include "vexa/math/uxs_generic_vec3.h"

// The constants come out of the shared library with their values.
TEST(Constants, AxesZerosAndIdentity) {
  using Consts = UXS::uxs_generic_vec3_consts<float>;
  using Vec3 = UXS::uxs_generic_vec3<float>;
  EXPECT_EQ(Consts::UXS_VEC3_ZERO, Vec3());
  EXPECT_EQ(Consts::UXS_X_AXIS_UNIT, Vec3(1, 0, 0));
  EXPECT_EQ(Consts::UXS_Y_AXIS_UNIT, Vec3(0, 1, 0));
  EXPECT_EQ(Consts::UXS_Z_AXIS_UNIT, Vec3(0, 0, 1));
  EXPECT_EQ(Consts::UXS_MINUS_X_AXIS_UNIT, Vec3(-1, 0, 0));
  EXPECT_EQ(Consts::UXS_MINUS_Y_AXIS_UNIT, Vec3(0, -1, 0));
  EXPECT_EQ(Consts::UXS_MINUS_Z_AXIS_UNIT, Vec3(0, 0, -1));
  EXPECT_EQ(Oru::TVector2D<float>::ZeroVector, Oru::TVector2D<float>());
  EXPECT_EQ(Oru::TVector3D<float>::ZeroVector, Oru::TVector3D<float>());
  EXPECT_EQ(Oru::TVector3D<double>::ZeroVector, Oru::TVector3D<double>());
  EXPECT_EQ(Oru::TQuaternion<float>::Identity.w - Oru::TQuaternion<float>::Identity.x, 1);
  EXPECT_EQ(Oru::TQuaternion<double>::Identity.w - Oru::TQuaternion<double>::Identity.x, 1);
}

TEST(Mat4, TheRightHandTransformationComesFirst) {
  UXS::uxs_generic_mat4<float> scale, translation;
  scale.e[0] = scale.e[5] = scale.e[10] = 2;
  translation.e[12] = 1;
  const Oru::TVector3D<float> x(1, 0, 0);
  EXPECT_EQ(translation * scale * x, (Oru::TVector3D<float>(3, 0, 0)));
  EXPECT_EQ(scale * translation * x, (Oru::TVector3D<float>(4, 0, 0)));
}
