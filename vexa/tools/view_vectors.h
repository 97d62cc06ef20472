#pragma once

#include <cstdint>

#include "vexa/Export.h"
#include "vexa/math/uxs_generic_vec3.h"

/// Directions around a view, in single precision, with +Z up. Nothing is signalled; a direction of
/// length 0 stays 0, and what follows from it is 0 too.
namespace UXS {

/// The six faces of a cube around the viewer.
enum uxs_panorama_face : std::uint32_t {
  panorama_front,  ///< along the view
  panorama_left,
  panorama_back,
  panorama_right,
  panorama_top,
  panorama_bottom
};

/// The unit up and right vectors of a view along dir, of any length.
///
/// A view within acos 0.98 of the vertical takes +Y in place of +Z for the world's up. Both are
/// turned by -roll degrees about dir, by the right-hand rule.
VEXA_EXPORT void get_up_right_vectors(const uxs_generic_vec3<float>& dir, float roll,
                                      uxs_generic_vec3<float>& up, uxs_generic_vec3<float>& right);

/// The view, up and right vectors of one face of the cube whose front looks along dir.
///
/// `up` may be null: the up vector is then that of get_up_right_vectors without roll. An unknown
/// face writes nothing.
VEXA_EXPORT void get_panorama_vectors(const uxs_generic_vec3<float>& dir,
                                      const uxs_generic_vec3<float>* up,
                                      const uxs_panorama_face& face,
                                      uxs_generic_vec3<float>& faceDir,
                                      uxs_generic_vec3<float>& faceUp,
                                      uxs_generic_vec3<float>& faceRight);

}  // namespace UXS
