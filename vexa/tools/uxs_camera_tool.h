#pragma once

#include "vexa/Export.h"
#include "vexa/math/uxs_generic_vec3.h"

namespace UXS {

/// Orients a camera that looks from one point to another. Has no state.
class VEXA_EXPORT uxs_camera_tool {
 public:
  /// The unit up vector; roll in degrees, as in get_up_right_vectors.
  ///
  /// Where target and position coincide within single precision, the camera looks along +Y.
  static uxs_generic_vec3<float> get_upvector(const uxs_generic_vec3<float>& position,
                                              const uxs_generic_vec3<float>& target, float roll);
};

}  // namespace UXS
