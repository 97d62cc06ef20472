#include "plot/PoseImage.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace vexa::plot {
namespace {

constexpr float kNothing = -std::numeric_limits<float>::infinity();
// How dark a full shadow is: the ground has to stay visible in it.
constexpr float kShadowStrength = 0.35F;

std::uint32_t byteOf(double part) {
  return std::uint32_t(std::lround(255 * std::clamp(part, 0.0, 1.0)));
}

std::uint32_t colorOf(const Ink& ink) {
  return byteOf(ink.r) << 16 | byteOf(ink.g) << 8 | byteOf(ink.b);
}

// One pass of a running mean along rows; two passes and a transposition smooth both ways.
std::vector<float> smoothedTransposed(const std::vector<float>& image, int width, int height,
                                      int radius) {
  std::vector<float> result(image.size());
  for (int y = 0; y < height; ++y) {
    const auto at = [&](int x) {
      return x < 0 || x >= width ? 0.0F
                                 : image[std::size_t(y) * std::size_t(width) + std::size_t(x)];
    };
    // The window around x moves by one: the pixel that enters is added, the one that leaves
    // subtracted, so the time does not depend on the radius.
    float sum = 0;
    for (int x = -radius; x < radius; ++x) sum += at(x);
    for (int x = 0; x < width; ++x) {
      sum += at(x + radius);
      result[std::size_t(x) * std::size_t(height) + std::size_t(y)] = sum / float(2 * radius + 1);
      sum -= at(x - radius);
    }
  }
  return result;
}

}  // namespace

PoseImage::PoseImage(int width, int height)
    : mWidth(width),
      mHeight(height),
      mDepth(std::size_t(width * kSamples) * std::size_t(height * kSamples), kNothing),
      mColor(mDepth.size()),
      mShadow(mDepth.size()) {}

// Calls paint(sample, depth) for the samples inside a triangle, by barycentric coordinates:
//
//        c          w_a is the part of the triangle that lies opposite a, and so on; a point is
//       / \         inside where no part is negative. The depth is w_a a.z + w_b b.z + w_c c.z.
//      a---b
template <class Paint>
void PoseImage::visit(const Corner (&corners)[3], Paint paint) {
  const int columns = mWidth * kSamples, rows = mHeight * kSamples;
  const Corner a = corners[0] * double(kSamples), b = corners[1] * double(kSamples),
               c = corners[2] * double(kSamples);
  const double area = (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y);
  // Seen from its edge, or out of the range of numbers: there is nothing to fill.
  if (!(std::abs(area) > 1e-12) || !std::isfinite(area)) return;
  const auto bound = [](double value, int most) {
    return int(std::clamp(value, 0.0, double(most)));
  };
  const int left = bound(std::floor(std::min({a.x, b.x, c.x})), columns);
  const int right = bound(std::ceil(std::max({a.x, b.x, c.x})), columns);
  const int top = bound(std::floor(std::min({a.y, b.y, c.y})), rows);
  const int bottom = bound(std::ceil(std::max({a.y, b.y, c.y})), rows);
  for (int y = top; y < bottom; ++y) {
    for (int x = left; x < right; ++x) {
      // A sample is at the middle of its square.
      const double px = x + 0.5, py = y + 0.5;
      const double wb = ((px - a.x) * (c.y - a.y) - (c.x - a.x) * (py - a.y)) / area;
      const double wc = ((b.x - a.x) * (py - a.y) - (px - a.x) * (b.y - a.y)) / area;
      const double wa = 1 - wb - wc;
      if (wa < 0 || wb < 0 || wc < 0) continue;
      const double z = (wa * corners[0].z) + (wb * corners[1].z) + (wc * corners[2].z);
      paint(std::size_t(y) * std::size_t(columns) + std::size_t(x), float(z));
    }
  }
}

void PoseImage::fill(const Corner (&corners)[3], const Ink& ink) {
  const std::uint32_t color = colorOf(ink);
  visit(corners, [&](std::size_t sample, float depth) {
    // The nearest triangle wins, whatever the order of drawing; of two at one depth the first.
    if (depth <= mDepth[sample]) return;
    mDepth[sample] = depth;
    mColor[sample] = color;
  });
}

void PoseImage::castShadow(const Corner (&corners)[3]) {
  visit(corners, [&](std::size_t sample, float) { mShadow[sample] = 1; });
}

std::vector<float> PoseImage::softShadow(int softness) const {
  std::vector<float> shadow(std::size_t(mWidth) * std::size_t(mHeight));
  const int columns = mWidth * kSamples;
  for (std::size_t s = 0; s < mShadow.size(); ++s) {
    const int x = int(s % std::size_t(columns)) / kSamples,
              y = int(s / std::size_t(columns)) / kSamples;
    shadow[std::size_t(y) * std::size_t(mWidth) + std::size_t(x)] +=
        float(mShadow[s]) / float(kPerPixel);
  }
  // Two running means in a row come close to a bell curve; one alone leaves a visible box.
  for (int pass = 0; softness > 0 && pass < 2; ++pass) {
    shadow = smoothedTransposed(shadow, mWidth, mHeight, softness);
    shadow = smoothedTransposed(shadow, mHeight, mWidth, softness);
  }
  return shadow;
}

std::vector<std::uint32_t> PoseImage::pixels(int softness) const {
  const std::vector<float> shadow = softShadow(softness);
  std::vector<std::uint32_t> result(shadow.size());
  const std::size_t columns = std::size_t(mWidth) * kSamples;
  for (std::size_t p = 0; p < result.size(); ++p) {
    const std::size_t first =
        (p / std::size_t(mWidth)) * kSamples * columns + (p % std::size_t(mWidth)) * kSamples;
    std::uint32_t sum[3] = {};
    int covered = 0;
    for (std::size_t i = 0; i < kPerPixel; ++i) {
      const std::size_t sample = first + (i / kSamples) * columns + i % kSamples;
      if (mDepth[sample] == kNothing) continue;
      ++covered;
      for (int k = 0; k < 3; ++k) sum[k] += mColor[sample] >> (16 - 8 * k) & 0xFF;
    }
    // Colours are summed over the covered samples alone and divided by all of them: that makes them
    // premultiplied by the cover, as Cairo wants them.
    const float cover = float(covered) / float(kPerPixel);
    const float alpha = cover + (1 - cover) * kShadowStrength * shadow[p];
    const auto part = [&](int k) { return sum[k] / kPerPixel; };
    result[p] = byteOf(double(alpha)) << 24 | part(0) << 16 | part(1) << 8 | part(2);
  }
  return result;
}

}  // namespace vexa::plot
