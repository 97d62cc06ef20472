#include "vexa/tools/view_vectors.h"

#include <cmath>
#include <gtest/gtest.h>
#include <random>

#include "vexa/tools/plain_vector_internal.h"
#include "vexa/tools/uxs_camera_tool.h"

using namespace UXS;

namespace {

struct View {
  Vec3 dir, up, right;
};

View viewOf(const Vec3& dir, float roll = 0) {
  View view{dir, {}, {}};
  get_up_right_vectors(dir, roll, view.up, view.right);
  return view;
}

View faceOf(const Vec3& dir, const Vec3* up, unsigned face) {
  View view{{7, 7, 7}, {7, 7, 7}, {7, 7, 7}};
  get_panorama_vectors(dir, up, uxs_panorama_face(face), view.dir, view.up, view.right);
  return view;
}

void expectNear(const Vec3& a, const Vec3& b) {
  EXPECT_LT(dot(a - b, a - b), 1e-11f) << a.x << ' ' << a.y << ' ' << a.z;
}

}  // namespace

TEST(ViewVectors, AlongTheAxes) {
  EXPECT_EQ(viewOf({0, 0, -5}).right, Vec3(1, 0, 0));
  EXPECT_EQ(viewOf({0, 0, -5}).up, Vec3(0, 1, 0));
  EXPECT_EQ(viewOf({}, 30).up, Vec3());
  expectNear(viewOf({5, 0, 0}, 90).up, {0, 1, 0});
}

// The cosines are 0.98 exactly and a step below: only the first takes +Y for the world's up.
TEST(ViewVectors, ReferenceChangesAtExactly098) {
  EXPECT_NE(viewOf({0.203058243f, 0, -1}).right.x, 0);
  EXPECT_EQ(viewOf({0.203058824f, 0, -1}).right.x, 0);
}

TEST(ViewVectors, RollTurnsTheFrameAboutTheView) {
  std::mt19937 random(3);
  std::uniform_real_distribution<float> real(-1, 1);
  for (int n = 0; n < 200; ++n) {
    const Vec3 dir = normalised({real(random), real(random), real(random)});
    const float roll = 400 * real(random), angle = roll * 3.1415927f / 180;
    const View flat = viewOf(dir), rolled = viewOf(dir, roll);
    expectNear(rolled.right, cross(dir, rolled.up));
    expectNear(rolled.up, flat.up * std::cos(angle) - flat.right * std::sin(angle));
  }
}

TEST(ViewVectors, FacesOfAPanorama) {
  const Vec3 x(1, 0, 0), y(0, 1, 0), z(0, 0, 1);
  const Vec3 dirs[] = {x, y, -x, -y, z, -z}, ups[] = {z, z, z, z, -x, x};
  for (unsigned face = 0; face < 6; ++face) {
    const View view = faceOf({4, 0, 0}, nullptr, face);
    EXPECT_EQ(view.dir, dirs[face]) << face;
    EXPECT_EQ(view.up, ups[face]) << face;
    EXPECT_EQ(view.right, cross(dirs[face], ups[face])) << face;
  }
  const Vec3 tilted(9, 2, 0);
  EXPECT_EQ(faceOf(x, &tilted, 4).dir, y);
  EXPECT_EQ(faceOf(x, &tilted, 4).right, z);
  EXPECT_EQ(faceOf(x, &tilted, 6).up, Vec3(7, 7, 7));
}

// The tolerance is 2^-23 of the largest component, and at least 2^-23.
TEST(ViewVectors, ACameraLooksAlongYWhereItsPointsCoincide) {
  const auto upOf = uxs_camera_tool::get_upvector;
  const Vec3 far(1000, 2000, -3000);
  EXPECT_EQ(upOf(far, far, 0), Vec3(0, 0, 1));
  EXPECT_LT(upOf(far, {1000.0001f, 2000, -3000}, 90).x, -0.99f);
  expectNear(upOf(far, {1000.0005f, 2000, -3000}, 90), {0, 1, 0});
  expectNear(upOf({}, {1e-7f, 0, 0}, 90), {-1, 0, 0});
  expectNear(upOf({}, {0, 0, -2e-7f}, 0), {0, 1, 0});
}
