#include "vexa/tools/view_vectors.h"

#include <gtest/gtest.h>

#include "vexa/tools/plain_vector_internal.h"
#include "vexa/tools/uxs_camera_tool.h"

using namespace UXS;

TEST(ViewVectors, AlongTheAxes) {
  V3 up, right;
  get_up_right_vectors({0, 0, -5}, 0, up, right);
  EXPECT_EQ(right, V3(1, 0, 0));
  EXPECT_EQ(up, V3(0, 1, 0));
  EXPECT_EQ(uxs_camera_tool::get_upvector({1, 2, 3}, {1, 2, 3}, 0), V3(0, 0, 1));
}

TEST(ViewVectors, FacesOfAPanorama) {
  const V3 x(1, 0, 0), y(0, 1, 0), z(0, 0, 1);
  const V3 dirs[] = {x, y, -x, -y, z, -z}, ups[] = {z, z, z, z, -x, x};
  for (unsigned face = 0; face < 6; ++face) {
    V3 dir, up, right;
    get_panorama_vectors({4, 0, 0}, nullptr, uxs_panorama_face(face), dir, up, right);
    EXPECT_EQ(dir, dirs[face]) << face;
    EXPECT_EQ(up, ups[face]) << face;
    EXPECT_EQ(right, cross(dirs[face], ups[face])) << face;
  }
}
