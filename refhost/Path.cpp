#include "refhost/Path.h"

namespace vexa::refhost {

BezierPoint smoothPoint(const UxZel::CZelPoint& passage, const UxZel::CZelVector& after) {
  BezierPoint point;
  point.mPassage = passage;
  point.mBefore = {-after.x, -after.y, -after.z};
  point.mAfter = after;
  point.mTangentLocked = true;
  return point;
}

}  // namespace vexa::refhost
