#include "vexa/tools/view_vectors.h"

#include <cmath>

#include "vexa/tools/plain_vector_internal.h"

namespace UXS {

namespace {

using Consts = uxs_generic_vec3_consts<float>;

// A rotation about the unit axis d with sine s and cosine k, row by row. It is grouped otherwise
// than ux_matrix44::rot, and the last bits differ.
struct Rotation {
  V3 rows[3];

  Rotation(const V3& d, float s, float k)
      : rows{
            {k + d.x * d.x * (1 - k), d.x * d.y * (1 - k) - d.z * s, d.x * d.z * (1 - k) + d.y * s},
            {d.x * d.y * (1 - k) + d.z * s, k + d.y * d.y * (1 - k), d.y * d.z * (1 - k) - d.x * s},
            {d.x * d.z * (1 - k) - d.y * s, d.y * d.z * (1 - k) + d.x * s,
             k + d.z * d.z * (1 - k)}} {}  // order: exact floats

  V3 operator*(const V3& v) const { return {dot(rows[0], v), dot(rows[1], v), dot(rows[2], v)}; }
};

}  // namespace

void get_up_right_vectors(const V3& dir, float roll, V3& up, V3& right) {
  const V3 d = normalised(dir);
  // Near the vertical +Z has almost no part across the view; 0.98 is the cosine of 11.5 degrees.
  const bool vertical = std::abs(dot(d, Consts::UXS_Z_AXIS_UNIT)) >= 0.98f;
  right = normalised(cross(d, vertical ? Consts::UXS_Y_AXIS_UNIT : Consts::UXS_Z_AXIS_UNIT));
  up = normalised(cross(right, d));
  if (roll == 0) return;
  const float angle = roll * 3.1415927f / 180;
  const Rotation turn(d, std::sin(-angle), std::cos(angle));
  up = normalised(turn * up);
  right = normalised(turn * right);
}

//            front d           Seen from above. Top looks along u with -d up, bottom along -u
//               ^              with d up: their images continue the front's at its upper and
//   left -r <-- o --> r right  lower edge.
//               v
//            back -d
void get_panorama_vectors(const V3& dir, const V3* up, const uxs_panorama_face& face, V3& faceDir,
                          V3& faceUp, V3& faceRight) {
  if (face > panorama_bottom) return;
  const V3 d = normalised(dir);
  V3 u, r;
  if (up != nullptr) {
    r = normalised(cross(d, normalised(*up)));
    u = normalised(cross(r, d));
  } else {
    get_up_right_vectors(d, 0, u, r);
  }
  const V3 faces[][3] = {{d, u, r}, {-r, u, d}, {-d, u, -r}, {r, u, -d}, {u, -d, r}, {-u, d, r}};
  const V3(&chosen)[3] = faces[face];
  faceDir = chosen[0];
  faceUp = chosen[1];
  faceRight = chosen[2];
}

}  // namespace UXS
