#pragma once

#include "vexa/Export.h"
#include "vexa/host/CZelPoint.h"
#include "vexa/host/CZelVector.h"
#include "vexa/host/IZelObjectInstance.h"
#include "vexa/math/ux_matrix44.h"

namespace UxZel {

/// Computes the placement of object instances.
class VEXA_EXPORT CZelObjectInstanceTool {
 public:
  /// The angle about +Z, in radians, by which an instance is turned: its rotation, then the turn of
  /// +Y into its direction in the horizontal plane (none for a vertical or zero direction).
  static double getHeading(double rotation, const CZelVector& direction);

  /// From the instance's own coordinates into the world:
  ///
  ///   parent * T(position) * R(heading about +Z) * S(the instance's scale factors * scale)
  ///
  /// A "Billboard" whose billboard behaviour is enabled is turned, instead of by its heading, so
  /// that its +Y faces `firstAnchor`, a point of the world, where that is given and not straight
  /// above or below. Then throws std::overflow_error when the parent has no inverse.
  /// `secondAnchor` and the four flags are ignored; they are part of the signature that hosts call.
  static Norvel::Vexa::ux_matrix44<double> getObjectTransformToWorld(
      const IZelObjectInstance* instance, float scale,
      const Norvel::Vexa::ux_matrix44<double>& parent, const CZelPoint* firstAnchor,
      const CZelPoint* secondAnchor, bool reserved0, bool reserved1, bool plantGroup,
      bool lastOfChain);
};

}  // namespace UxZel
