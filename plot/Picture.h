#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "plot/Ink.h"

namespace vexa::plot {

/// A picture that was read from a file, to take colours from.
class Picture {
 public:
  /// Reads a PNG or JPEG file, recognised by its first bytes. Empty for any other file, one that
  /// cannot be read, and one of more than 64 million pixels: a texture is only decoration.
  static Picture read(const std::string& path);

  bool isEmpty() const { return mPixels.empty(); }

  /// The colour at texture coordinates, u to the right and v up from the lower left corner, both
  /// repeating beyond 0..1; the nearest pixel counts. White when u or v is not finite. The picture
  /// must not be empty.
  Ink at(double u, double v) const;

 private:
  int mWidth = 0, mHeight = 0;
  std::vector<std::uint32_t> mPixels;  // 0x00RRGGBB, row after row from the top
};

}  // namespace vexa::plot
