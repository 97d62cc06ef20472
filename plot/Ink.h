#pragma once

namespace vexa::plot {

/// A colour to draw with, components in 0..1.
struct Ink {
  double r = 0, g = 0, b = 0;
};

}  // namespace vexa::plot
