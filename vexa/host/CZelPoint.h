#pragma once

namespace UxZel {

/// A position in the host's scene: scene units, +Z up.
struct CZelPoint {
  double x = 0, y = 0, z = 0;
};

}  // namespace UxZel
