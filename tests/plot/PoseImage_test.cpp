#include "plot/PoseImage.h"

#include <gtest/gtest.h>

namespace vexa::plot {
namespace {

using Corner = PoseImage::Corner;

std::uint32_t pixelAt(const PoseImage& image, int x, int y, int softness = 0) {
  return image.pixels(softness)[std::size_t(y * image.width() + x)];
}

// Two triangles that make the square from (2, 2) to (8, 8), at a depth.
void fillSquare(PoseImage& image, double depth, const Ink& ink) {
  image.fill({{2, 2, depth}, {8, 2, depth}, {8, 8, depth}}, ink);
  image.fill({{2, 2, depth}, {8, 8, depth}, {2, 8, depth}}, ink);
}

TEST(PoseImage, ASquareOfTwoTrianglesHasNoSeamAndSharpEdges) {
  PoseImage image(10, 10);
  fillSquare(image, 0, {1, 0, 0});
  for (int i = 2; i < 8; ++i) EXPECT_EQ(pixelAt(image, i, i), 0xFFFF0000U) << i;
  EXPECT_EQ(pixelAt(image, 1, 5), 0U);
  EXPECT_EQ(pixelAt(image, 8, 5), 0U);
}

TEST(PoseImage, TheNearerTriangleWinsInAnyOrder) {
  PoseImage image(10, 10);
  fillSquare(image, 1, {0, 0, 1});
  fillSquare(image, 2, {0, 1, 0});
  fillSquare(image, -1, {1, 0, 0});
  EXPECT_EQ(pixelAt(image, 5, 5), 0xFF00FF00U);
}

TEST(PoseImage, AShadowDarkensOnlyWhatIsNotCovered) {
  PoseImage image(10, 10);
  image.castShadow({{0, 0, 0}, {20, 0, 0}, {0, 20, 0}});
  fillSquare(image, 0, {1, 1, 1});
  EXPECT_EQ(pixelAt(image, 5, 5), 0xFFFFFFFFU);
  const std::uint32_t shadow = pixelAt(image, 0, 0);
  EXPECT_EQ(shadow & 0xFFFFFF, 0U);
  EXPECT_GT(shadow >> 24, 60U);
  EXPECT_LT(pixelAt(image, 0, 9, 3) >> 24, shadow >> 24);  // softer towards the edge
}

TEST(PoseImage, TrianglesOutsideOrWithoutAreaDrawNothing) {
  PoseImage image(4, 4);
  image.fill({{-9, -9, 0}, {-5, -9, 0}, {-9, -5, 0}}, {1, 1, 1});
  image.fill({{1, 1, 0}, {2, 2, 0}, {3, 3, 0}}, {1, 1, 1});
  image.fill({{1e300, 0, 0}, {-1e300, 1, 0}, {0, 1e300, 0}}, {1, 1, 1});
  for (const std::uint32_t pixel : image.pixels(2)) EXPECT_EQ(pixel, 0U);
}

}  // namespace
}  // namespace vexa::plot
