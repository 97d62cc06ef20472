#include "vexa/animation/CZelObjectInstanceTool.h"

#include <cmath>
#include <cstring>

using Matrix = Norvel::Vexa::ux_matrix44<double>;
using Point3 = Norvel::Vexa::ux_point3<double>;

namespace UxZel {

namespace {

// The angle about +Z that turns +Y towards (x, y); 0 for no direction at all. A turn by the angle a
// takes +Y to (-sin a, cos a), hence the arguments.
double turnOfY(double x, double y) { return x == 0 && y == 0 ? 0 : std::atan2(-x, y); }

double headingOf(const IZelObjectInstance& instance) {
  const CZelVector* direction = instance.GetDirection();
  return CZelObjectInstanceTool::getHeading(instance.GetRotation(),
                                            direction != nullptr ? *direction : CZelVector{});
}

bool facesItsViewer(const IZelObjectInstance& instance) {
  return std::strcmp(instance.GetClassName(), "Billboard") == 0 && instance.GetBillboardEnabled();
}

}  // namespace

double CZelObjectInstanceTool::getHeading(double rotation, const CZelVector& direction) {
  return rotation + turnOfY(direction.x, direction.y);
}

Matrix CZelObjectInstanceTool::getObjectTransformToWorld(
    const IZelObjectInstance* instance, float scale, const Matrix& parent,
    const CZelPoint* firstAnchor, const CZelPoint* /*secondAnchor*/, bool /*reserved0*/,
    bool /*reserved1*/, bool /*plantGroup*/, bool /*lastOfChain*/) {
  const CZelPoint& position = *instance->GetPosition();
  double heading = headingOf(*instance);
  // The viewer is compared with the position, which is in the parent's space.
  if (firstAnchor != nullptr && facesItsViewer(*instance)) {
    const Point3 viewer = parent.invert() * Point3(firstAnchor->x, firstAnchor->y, firstAnchor->z);
    const double x = viewer.x - position.x, y = viewer.y - position.y;
    if (x != 0 || y != 0) heading = turnOfY(x, y);
  }
  const auto factor = double(scale);
  const double* factors = instance->GetScale();
  // add_ multiplies from the left: scale first, then the turn, then the translation.
  Matrix placement;
  placement.scale(factors[0] * factor, factors[1] * factor, factors[2] * factor);
  placement.add_rot(0, 0, 1, heading);
  placement.add_trans(position.x, position.y, position.z);
  return parent * placement;
}

}  // namespace UxZel
