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

// right = dir x up, all of length 1 and at right angles.
void expectFrame(const View& v) {
  EXPECT_NEAR(dot(v.up, v.up), 1, 1e-6);
  EXPECT_NEAR(dot(v.up, v.dir), 0, 1e-6);
  expectNear(v.right, cross(v.dir, v.up));
}

}  // namespace

TEST(ViewVectors, AlongTheAxes) {
  EXPECT_EQ(viewOf({5, 0, 0}).right, Vec3(0, -1, 0));
  EXPECT_EQ(viewOf({5, 0, 0}).up, Vec3(0, 0, 1));
  EXPECT_EQ(viewOf({0, 0, -1}).right, Vec3(1, 0, 0));
  EXPECT_EQ(viewOf({0, 0, -1}).up, Vec3(0, 1, 0));
  EXPECT_EQ(viewOf({}, 30).up, Vec3());
  expectNear(viewOf({1, 0, 0}, 90).up, {0, 1, 0});
  expectNear(viewOf({1, 0, 0}, 90).right, {0, 0, 1});
}

// A cosine of exactly 0.98 already takes +Y for the world's up; one step below does not.
TEST(ViewVectors, ReferenceChangesAtExactly098) {
  int equal = 0, below = 0;
  for (float x = 0.203058f; x < 0.203062f; x = std::nextafter(x, 1.0f)) {
    const float z = 1 / std::sqrt(x * x + 1);
    EXPECT_EQ(viewOf({x, 0, -1}).right.x != 0, z >= 0.98f);
    equal += z == 0.98f;
    below += z < 0.98f;
  }
  EXPECT_TRUE(equal > 0 && below > 0);
}

TEST(ViewVectors, EveryViewAndFaceIsAFrame) {
  std::mt19937 random(3);
  std::uniform_real_distribution<float> real(-1, 1);
  for (int n = 0; n < 200; ++n) {
    const Vec3 dir = normalised({real(random), real(random), real(random)});
    const float roll = 400 * real(random);
    const View flat = viewOf(dir), rolled = viewOf(dir, roll);
    expectFrame(rolled);
    const double angle = double(roll) * 3.141592653589793 / 180;
    EXPECT_NEAR(dot(flat.up, rolled.up), std::cos(angle), 2e-6);
    EXPECT_NEAR(dot(flat.right, rolled.up), -std::sin(angle), 2e-6);
    const Vec3 tilted(real(random), 0, 3);
    for (unsigned face = 0; face < 6; ++face) expectFrame(faceOf(dir, &tilted, face));
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
  EXPECT_EQ(faceOf(x, &y, 0).right, z);
  for (const unsigned unknown : {6u, ~0u}) EXPECT_EQ(faceOf(x, &z, unknown).up, Vec3(7, 7, 7));
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
