#include "refhost/AnimatedObject.h"

namespace vexa::refhost {

Polygon triangle(unsigned int a, unsigned int b, unsigned int c, unsigned int material) {
  Polygon polygon;
  polygon.mMaterialIndex = material;
  for (const unsigned int point : {a, b, c}) polygon.mCorners.add().mPointIndex = point;
  return polygon;
}

}  // namespace vexa::refhost
