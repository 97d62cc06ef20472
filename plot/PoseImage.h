#pragma once

#include <cstdint>
#include <vector>

#include "plot/Ink.h"
#include "vexa/math/TVector3D.h"

namespace vexa::plot {

/// Triangles drawn with a depth buffer, and the shadow that they throw.
///
/// Corners are in pixels of the picture, the origin at the upper left, y down; z grows towards the
/// viewer. Each pixel is sampled three by three times, so neighbours share no visible seam.
class PoseImage {
 public:
  using Corner = Oru::TVector3D<double>;

  PoseImage(int width, int height);

  void fill(const Corner (&corners)[3], const Ink& ink);
  /// Darkens what lies under the triangle and is not covered by a fill.
  void castShadow(const Corner (&corners)[3]);

  /// The picture as premultiplied 32-bit pixels, alpha in the upper byte, row after row;
  /// transparent where nothing was drawn. The shadow's edge is soft over `softness` pixels.
  std::vector<std::uint32_t> pixels(int softness) const;

  int width() const { return mWidth; }
  int height() const { return mHeight; }

 private:
  static constexpr int kSamples = 3;  // along each side of a pixel
  static constexpr std::uint32_t kPerPixel = 9;

  template <class Paint>
  void visit(const Corner (&corners)[3], Paint paint);
  std::vector<float> softShadow(int softness) const;

  int mWidth, mHeight;                // of the picture
  std::vector<float> mDepth;          // per sample; minus infinity where nothing is
  std::vector<std::uint32_t> mColor;  // per sample, 0x00RRGGBB
  std::vector<std::uint8_t> mShadow;  // per sample, 0 or 1
};

}  // namespace vexa::plot
