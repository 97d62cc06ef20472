#pragma once

namespace UxZel {

/// A 4x4 transformation as the host stores it: row after row, mElements[row][column].
///
/// A new one is the identity.
struct CZelMatrix {
  double mElements[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};
};

}  // namespace UxZel
