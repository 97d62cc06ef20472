#include "vexa/tools/view_vectors.h"

#include <cmath>
#include <gtest/gtest.h>
#include <random>

#include "vexa/tools/uxs_camera_tool.h"

using UXS::get_panorama_vectors;
using UXS::get_up_right_vectors;
using UXS::uxs_camera_tool;
using UXS::uxs_panorama_face;
using Vec3 = UXS::uxs_generic_vec3<float>;

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

float dot(const Vec3& a, const Vec3& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

void expectNear(const Vec3& a, const Vec3& b) {
  const Vec3 d = a - b;
  EXPECT_LT(dot(d, d), 1e-11f) << a.x << ' ' << a.y << ' ' << a.z;
}

// right = dir x up, all of length 1 and at right angles.
void expectFrame(const View& v) {
  EXPECT_NEAR(dot(v.up, v.up), 1, 1e-6);
  EXPECT_NEAR(dot(v.up, v.dir), 0, 1e-6);
  expectNear(v.right, {v.dir.y * v.up.z - v.dir.z * v.up.y, v.dir.z * v.up.x - v.dir.x * v.up.z,
                       v.dir.x * v.up.y - v.dir.y * v.up.x});
}

}  // namespace

TEST(UpRightVectors, AlongTheAxes) {
  EXPECT_EQ(viewOf({1, 0, 0}).right, Vec3(0, -1, 0));
  EXPECT_EQ(viewOf({5, 0, 0}).up, Vec3(0, 0, 1));
  EXPECT_EQ(viewOf({0, 0, -1}).right, Vec3(1, 0, 0));
  EXPECT_EQ(viewOf({0, 0, -1}).up, Vec3(0, 1, 0));
  EXPECT_EQ(viewOf({0, 0, 2}).up, Vec3(0, 1, 0));
  EXPECT_EQ(viewOf({}).up, Vec3());
  EXPECT_EQ(viewOf({}, 30).right, Vec3());
}

TEST(UpRightVectors, RollTurnsAgainstTheRightHand) {
  expectNear(viewOf({1, 0, 0}, 90).up, {0, 1, 0});
  expectNear(viewOf({1, 0, 0}, 90).right, {0, 0, 1});
  expectNear(viewOf({0, 0, -1}, -90).up, {1, 0, 0});
}

// A cosine of exactly 0.98 already takes +Y; one step below does not.
TEST(UpRightVectors, ReferenceChangesAtExactly098) {
  int equal = 0, below = 0;
  for (float x = 0.203058f; x < 0.203062f; x = std::nextafter(x, 1.0f)) {
    const float z = 1 / std::sqrt(x * x + 1);
    const bool tookY = viewOf({x, 0, 1}).right.x != 0;
    EXPECT_EQ(tookY, z >= 0.98f);
    EXPECT_EQ(viewOf({x, 0, -1}).right.x != 0, tookY);
    equal += z == 0.98f;
    below += z < 0.98f;
  }
  EXPECT_GT(equal, 0);
  EXPECT_GT(below, 0);
}

TEST(UpRightVectors, EveryViewAndFaceIsAFrame) {
  std::mt19937 random(3);
  std::uniform_real_distribution<float> real(-1, 1);
  for (int n = 0; n < 200; ++n) {
    Vec3 dir(real(random), real(random), real(random));
    dir = dir * (1 / std::sqrt(dot(dir, dir)));
    const float roll = 400 * real(random);
    const View flat = viewOf(dir), rolled = viewOf(dir, roll);
    expectFrame(flat);
    expectFrame(rolled);
    EXPECT_NEAR(dot(flat.up, rolled.up), std::cos(double(roll) * 3.141592653589793 / 180), 2e-6);
    EXPECT_NEAR(dot(flat.right, rolled.up), -std::sin(double(roll) * 3.141592653589793 / 180),
                2e-6);
    const Vec3 tilted(real(random), 0, 3);
    for (unsigned face = 0; face < 6; ++face) {
      expectFrame(faceOf(dir, nullptr, face));
      expectFrame(faceOf(dir, &tilted, face));
    }
  }
}

TEST(PanoramaVectors, FacesAroundAView) {
  const Vec3 x(1, 0, 0), y(0, 1, 0), z(0, 0, 1);
  const View expected[] = {{x, z, -y},  {y, z, x},   {-x, z, y},
                           {-y, z, -x}, {z, -x, -y}, {-z, x, -y}};
  for (unsigned face = 0; face < 6; ++face) {
    const View view = faceOf({4, 0, 0}, nullptr, face);
    EXPECT_EQ(view.dir, expected[face].dir) << face;
    EXPECT_EQ(view.up, expected[face].up) << face;
    EXPECT_EQ(view.right, expected[face].right) << face;
  }
  const Vec3 sideways(0, 5, 0);
  EXPECT_EQ(faceOf(x, &sideways, 0).up, y);
  EXPECT_EQ(faceOf(x, &sideways, 0).right, z);
  for (const unsigned unknown : {6u, 300u, ~0u})
    EXPECT_EQ(faceOf(x, &z, unknown).up, Vec3(7, 7, 7));
}

TEST(CameraTool, LooksAlongYWhereThePointsCoincide) {
  const Vec3 far(1000, 2000, -3000);
  EXPECT_EQ(uxs_camera_tool::get_upvector(far, far, 0), Vec3(0, 0, 1));
  expectNear(uxs_camera_tool::get_upvector(far, far, 90), {-1, 0, 0});
  // 3000 * 2^-23 is the tolerance: half a thousandth is more, a step of the first float is not.
  const Vec3 beside(std::nextafter(1000.f, 2000.f), 2000, -3000), aside(1000.0005f, 2000, -3000);
  EXPECT_LT(uxs_camera_tool::get_upvector(far, beside, 90).x, -0.99f);
  expectNear(uxs_camera_tool::get_upvector(far, aside, 90), {0, 1, 0});
  // Near the origin the tolerance is 2^-23 itself.
  expectNear(uxs_camera_tool::get_upvector({}, {1e-7f, 0, 0}, 90), {-1, 0, 0});
  expectNear(uxs_camera_tool::get_upvector({}, {0, 0, -2e-7f}, 0), {0, 1, 0});
}
