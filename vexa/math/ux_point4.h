#pragma once

namespace Norvel::Vexa {

/// Homogeneous coordinates, operand and result of the full product with a ux_matrix44.
///
/// T is float or double. A plain value.
template <class T>
class ux_point4 {
 public:
  T x, y, z, w;

  /// Leaves the components unset.
  ux_point4() = default;
  constexpr ux_point4(T newX, T newY, T newZ, T newW) : x(newX), y(newY), z(newZ), w(newW) {}
};

}  // namespace Norvel::Vexa
