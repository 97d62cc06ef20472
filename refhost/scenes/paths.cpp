#include "refhost/scenes/paths.h"

#include <utility>

namespace vexa::refhost::scenes {

// Control points at a third of the length make position and parameter proportional.
Path straightPath(double length) {
  Path path;
  path.mName = "straight path";
  path.mPoints.add(smoothPoint({0, 0, 0}, {length / 3, 0, 0}));
  path.mPoints.add(smoothPoint({length, 0, 0}, {length / 3, 0, 0}));
  return path;
}

Path windingPath(int segments) {
  Path path;
  path.mName = "winding path";
  for (int i = 0; i <= segments; ++i) {
    path.mPoints.add(smoothPoint({10.0 * i, i % 2 == 0 ? 0.0 : 5.0, 0}, {10.0 / 3, 0, 0}));
  }
  return path;
}

Path circlePath(double radius) {
  // The customary cubic quarter circle: control points at 4/3 (sqrt(2) - 1) of the radius, which
  // puts the middle of each curve on the circle, too. The first point comes once more at the end.
  const double r = radius, c = 0.5522847498307936 * radius;
  Path path;
  path.mName = "circle";
  path.mPoints.add(smoothPoint({r, 0, 0}, {0, c, 0}));
  path.mPoints.add(smoothPoint({0, r, 0}, {-c, 0, 0}));
  path.mPoints.add(smoothPoint({-r, 0, 0}, {0, -c, 0}));
  path.mPoints.add(smoothPoint({0, -r, 0}, {c, 0, 0}));
  path.mPoints.add(smoothPoint({r, 0, 0}, {0, c, 0}));
  return path;
}

// Two keys of one value make the cart rest. The rest and the end keep the default linear curve, so
// the first key alone shows what easing does.
Scene ride(Path path) {
  Scene scene;
  path.mIdentity.mUUID = numberedUUID(1);
  scene.mPaths.add(std::move(path));
  Property place;
  place.mName = "place";
  place.mPropertyType = UxZel::kPropertyPosition;
  place.mPath = numberedUUID(1);
  place.mKeys.add(realKey(0, 0, UxZel::kInterpolationSinus));
  place.mKeys.add(realKey(40, 0.5));
  place.mKeys.add(realKey(60, 0.5));
  place.mKeys.add(realKey(100, 1));
  scene.mProperties.push_back(std::move(place));
  return scene;
}

}  // namespace vexa::refhost::scenes
