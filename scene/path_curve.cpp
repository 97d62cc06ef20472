#include "scene/path_curve.h"

#include "vexa/paths/XC3DPath.h"
#include "vexa/paths/XCZELPathInfo.h"

namespace vexa::scene {

std::vector<UxZel::CZelPoint> curveOf(const refhost::Path& path) {
  std::vector<UxZel::CZelPoint> points;
  if (path.mPoints.mElements.size() < 2) return points;
  Norvel::Vexa::XCZELPathInfo info(&path);
  const Norvel::Vexa::XC3DPath curve(&info);
  const int steps = 40 * path.mPoints.GetCount();
  for (int i = 0; i <= steps; ++i) {
    const auto p = curve.valueAt(float(i) / float(steps));
    points.push_back({double(p.x), double(p.y), double(p.z)});
  }
  return points;
}

}  // namespace vexa::scene
