#include "vexa/paths/path_position.h"

#include <cmath>

#include "vexa/interpolation/timed_curves.h"
#include "vexa/math/conversion.h"
#include "vexa/paths/XC3DPath.h"
#include "vexa/paths/XCZELPathInfo.h"
#include "vexa/paths/path_position_internal.h"
#include "vexa/paths/vector_length_internal.h"

namespace Norvel::Vexa {

namespace {

using KeyList = UxZel::TZelObjectMgr<UxZel::IZelKeyFrame>;
using UxZel::IZelKeyFrame;
using V3 = UXS::uxs_generic_vec3<float>;

double fractionOf(const KeyList& keys, int index) { return keys.GetAt(index)->GetValue()->mReal; }

bool allLinear(const KeyList& keys, int count) {
  for (int i = 0; i < count; ++i) {
    if (keys.GetAt(i)->GetInterpolationType() != UxZel::kInterpolationLinear) return false;
  }
  return true;
}

// The difference is NaN, and so no rest, where a fraction is.
bool sameFraction(double a, double b) { return std::fabs(a - b) < 0.000001; }

bool atOneFrame(const KeyList& keys, int minIndex, int maxIndex) {
  return keys.GetAt(maxIndex)->GetFrame() == keys.GetAt(minIndex)->GetFrame();
}

// The fraction that a request is about, as the path takes it. Keys at one frame have no span to
// divide by: outside of all keys it is the same key twice.
float fractionAt(const KeyList& keys, const UxZel::IZel3DPath& path, int minIndex, int maxIndex,
                 int frame) {
  if (atOneFrame(keys, minIndex, maxIndex)) return float(fractionOf(keys, minIndex));
  return float(getInterpolatedPathPosition(&keys, minIndex, maxIndex, frame, path.IsPathClosed()));
}

V3 divided(const V3& v, float length) { return {v.x / length, v.y / length, v.z / length}; }

void write(const V3& v, IZelKeyFrame::uValue& out) {
  out.mVector[0] = double(v.x);
  out.mVector[1] = double(v.y);
  out.mVector[2] = double(v.z);
}

// From a place of the path to its end, and a unit step further: a look past the end still has a
// direction when the place is the end itself.
V3 beyondTheEnd(const BezierPath& path, const V3& place) {
  const V3 end = path.valueAt(1);
  V3 step = path.directionAt(1);
  const float length = vectorLength(step);
  if (length != 0) step = divided(step, length);
  return (end - place) + step;  // order: exact floats
}

}  // namespace

double getInterpolatedPathPosition(const KeyList* keys, int minIndex, int maxIndex, int frame,
                                   bool pathClosed) {
  const int count = keys->GetCount();
  const int startFrame = keys->GetAt(minIndex)->GetFrame();
  const int endFrame = keys->GetAt(maxIndex)->GetFrame();
  const double start = fractionOf(*keys, minIndex), end = fractionOf(*keys, maxIndex);

  //   fraction
  //     |         .--.--    A key rests when its neighbour on the far side has the same fraction,
  //     |       /           and at the ends of the list. The curve is slow near a key that rests.
  //     | . - '             A closed path, or keys that are all linear, are never eased.
  //     +-+-------+--+-- frame
  const double slope = (end - start) / double(wrapSub(endFrame, startFrame));
  const double linear = start + slope * double(wrapSub(frame, startFrame));
  if (pathClosed || allLinear(*keys, count)) return linear;

  const bool restsAtStart = minIndex == 0 || sameFraction(fractionOf(*keys, minIndex - 1), start);
  const bool restsAtEnd =
      maxIndex == count - 1 || sameFraction(fractionOf(*keys, maxIndex + 1), end);
  if (!restsAtStart && !restsAtEnd) return linear;
  const auto startTime = double(startFrame), endTime = double(endFrame), time = double(frame);
  if (restsAtStart && restsAtEnd) return Sinerp(startTime, endTime, start, end, time);
  if (restsAtStart) return Sqerp(startTime, endTime, start, end, time);
  return OneMinSqerp(startTime, endTime, start, end, time);
}

void positionOn(const BezierPath& bezier, const UxZel::IZel3DPath& path, const KeyList& keys,
                int minIndex, int maxIndex, int frame, IZelKeyFrame::uValue& outPosition,
                IZelKeyFrame::uValue& outDirection) {
  const float fraction = fractionAt(keys, path, minIndex, maxIndex, frame);
  const V3 position = bezier.valueAt(fraction);
  V3 direction = bezier.directionAt(fraction);
  // Required behaviour: only a direction at a key outside of the span has unit length.
  if (atOneFrame(keys, minIndex, maxIndex)) {
    const float length = vectorLength(direction);
    if (length > 0) direction = divided(direction, length);
  }
  write(position, outPosition);
  write(direction, outDirection);
}

void positionOn(const BezierPath& bezier, const UxZel::IZel3DPath& path, const KeyList& keys,
                int minIndex, int maxIndex, int frame, IZelKeyFrame::uValue& outPosition,
                IZelKeyFrame::uValue& outDirection, double lookAhead) {
  const float fraction = fractionAt(keys, path, minIndex, maxIndex, frame);
  const V3 position = bezier.valueAt(fraction);
  const float total = bezier.getTotalLength();
  const float ahead = (float(lookAhead) + fraction * total) / total;  // order: exact floats
  const V3 direction =
      0 <= ahead && ahead <= 1 ? bezier.valueAt(ahead) - position : beyondTheEnd(bezier, position);
  write(position, outPosition);
  write(direction, outDirection);
}

void uxInterpolated3DPath(const KeyList* keys, const UxZel::IZel3DPath* path, int minIndex,
                          int maxIndex, int frame, IZelKeyFrame::uValue& outPosition,
                          IZelKeyFrame::uValue& outDirection) {
  const XCZELPathInfo info(path);
  const XC3DPath bezier(&info);  // throws where there is no path
  positionOn(bezier, *path, *keys, minIndex, maxIndex, frame, outPosition, outDirection);
}

void uxInterpolated3DPath(const KeyList* keys, const UxZel::IZel3DPath* path, int minIndex,
                          int maxIndex, int frame, IZelKeyFrame::uValue& outPosition,
                          IZelKeyFrame::uValue& outDirection, double lookAhead) {
  const XCZELPathInfo info(path);
  const XC3DPath bezier(&info);  // throws where there is no path
  positionOn(bezier, *path, *keys, minIndex, maxIndex, frame, outPosition, outDirection, lookAhead);
}

}  // namespace Norvel::Vexa
