#pragma once

namespace UxZel {

/// A direction in the host's scene, of any length; 24 bytes, copied whole.
struct CZelVector {
  double x = 0, y = 0, z = 0;
};

}  // namespace UxZel
