#include "scene/path_curve.h"

#include "vexa/paths/XC3DPath.h"
#include "vexa/paths/XCZELPathInfo.h"

namespace vexa::scene {

std::vector<UxZel::CZelPoint> curveOf(const refhost::Path& path) {
  std::vector<UxZel::CZelPoint> points;
  if (path.mPoints.mElements.size() < 2) return points;
  // By the library's own path, so that the drawn curve is the one that is followed.
  Norvel::Vexa::XCZELPathInfo info(&path);
  const Norvel::Vexa::XC3DPath curve(&info);
  // Forty pieces per point of the path look smooth at the size of a plot.
  const int steps = 40 * path.mPoints.GetCount();
  for (int i = 0; i <= steps; ++i) {
    const auto p = curve.valueAt(float(i) / float(steps));
    points.push_back({double(p.x), double(p.y), double(p.z)});
  }
  return points;
}

}  // namespace vexa::scene
