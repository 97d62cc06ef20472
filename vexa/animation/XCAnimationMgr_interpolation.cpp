// The value of a property at a frame.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>

#include "vexa/animation/XCAnimationMgr.h"
#include "vexa/animation/entry_point_internal.h"
#include "vexa/animation/host_access_internal.h"
#include "vexa/animation/keyframe_curves.h"
#include "vexa/math/conversion.h"
#include "vexa/paths/path_cache_internal.h"

namespace Norvel::Vexa {

namespace {

using uValue = UxZel::IZelKeyFrame::uValue;
using Keys = UxZel::TZelObjectMgr<UxZel::IZelKeyFrame>;

constexpr char kOperation[] = "XCAnimationMgr::InterpolateValue";

// Exact, whatever the two frames are.
std::int64_t frameDifference(std::int64_t a, std::int64_t b) { return a - b; }

// A frame to look up, and the curve that its pass prescribes; -1 for the keys' own.
struct Pass {
  int mFrame;
  int mForcedType = -1;
};

// Which pass of a cyclic value a frame falls into.
//
//   first       last
//     |-- span ---|-----------|-----------|
//       cycle 0         1           2          with 3 repeats
//       square       linear      one minus     eased, unless the first key is linear or a date
//                                 square
//
// Past the last repeat the frame stays as it is and the last key holds.
Pass passOf(const UxZel::IZelInterpolatedValue& value, const Keys& keys, int frame) {
  const UxZel::IZelKeyFrame& firstKey = *keys.GetAt(0);
  const int first = firstKey.GetFrame(), last = keys.GetAt(keys.GetCount() - 1)->GetFrame();
  const std::int64_t span = frameDifference(last, first);
  Pass pass{frame};
  if (span == 0) return pass;

  const std::int64_t cycle = frameDifference(frame, first) / span;
  const int repeats = value.GetRepeatCount(), type = firstKey.GetInterpolationType();
  const bool eases = type != UxZel::kInterpolationDate && type != UxZel::kInterpolationLinear;
  if (cycle == 0 && repeats > 0 && eases) pass.mForcedType = UxZel::kInterpolationSquare;
  if (frame > last) {
    // Required behaviour: the remainder is that of the absolute frame, and one is subtracted.
    if (cycle < repeats) pass.mFrame = wrapToInt(first + frame % span - 1);
    const bool isLastPass = cycle == std::int64_t{repeats} - 1;
    pass.mForcedType =
        isLastPass && eases ? UxZel::kInterpolationOneMinusSquare : UxZel::kInterpolationLinear;
  }
  return pass;
}

// The frame number of an object's own animation, which has `rate` frames and plays once while the
// host goes from the first key to the second.
int frameAtRate(const UxZel::IZelMgr& mgr, const UxZel::IZelInterpolatedValue& value,
                const Keys& keys, int frame, const double* rate) {
  const int start = keys.GetAt(0)->GetFrame();
  const std::int64_t elapsed = frameDifference(frame, start);
  if (rate == nullptr || elapsed <= 0) return 0;
  const int end = elementAt(&keys, 1, kOperation, "second key frame is missing")->GetFrame();
  const UxZel::IZelSettings& settings = settingsOf(&mgr, kOperation);
  const double scale = settings.GetTimeScale();
  const double seconds = double(elapsed) / settings.GetTimeScale();
  // rate * elapsed / span, by way of milliseconds, whose rounding is part of the result
  const double x = scale * (*rate / 1000.0) * (seconds * 1000.0) /
                   double(frameDifference(end, start));  // order: exact floats
  const int n = truncToInt(x);
  const bool wraps =
      n > *rate && value.IsCyclic() && value.GetRepeatCount() >= truncToInt(x / *rate);
  if (!wraps) return n;
  const std::int64_t frames = truncToInt(*rate);
  if (frames == 0) raise(kOperation, "rate is less than one frame");
  return int(n % frames);
}

// Position on the value's path, and the direction there.
uValue positionAt(PathCache& paths, const UxZel::IZelMgr& mgr,
                  const UxZel::IZelInterpolatedValue& value, int min, int max, int frame,
                  uValue& direction, const double* rate) {
  const UxZel::IZel3DPath* path = find3DPath(&mgr, *value.GetPathUUID());
  if (path == nullptr) raise(kOperation, "key frame of position, but the path doesn't exists !");
  const Keys& keys = *value.GetKeyFrames();
  const std::shared_ptr<const BezierPath> bezier = paths.pathOf(path);
  uValue position{};
  if (rate == nullptr) {
    positionOn(*bezier, *path, keys, min, max, frame, position, direction);
  } else {
    positionOn(*bezier, *path, keys, min, max, frame, position, direction, *rate);
  }
  return position;
}

// Keys whose frames are read before they are compared: one kilobyte of the stack.
constexpr int kKeysAtOnce = 256;

// The keys around a frame, of those visited so far.
class NearestKeys {
 public:
  NearestKeys(int frame, int beforeIndex, int afterIndex)
      : mFrame(frame), mBeforeIndex(beforeIndex), mAfterIndex(afterIndex) {}

  // Visits keys from `first` on.
  void visit(const Keys& keys, int first, int count) {
    int frames[kKeysAtOnce];
    // Keys are in order as a rule. Then it is enough to count those up to the frame, without a
    // branch that depends on it.
    int previous = mLast, before = 0;
    bool disordered = false;
    for (int i = 0; i < count; ++i) {
      const int frame = keys.GetAt(first + i)->GetFrame();
      frames[i] = frame;
      disordered |= frame <= previous;
      before += frame <= mFrame;
      previous = frame;
    }
    if (disordered) return compare(first, frames, count);
    if (before > 0) setBefore(first + before - 1, frames[before - 1]);
    if (before < count && mAfter == kNoneAfter) setAfter(first + before, frames[before]);
    mLast = previous;
  }
  void get(int& outMin, int& outMax) const {
    const bool hasBefore = mBefore != kNoneBefore, hasAfter = mAfter != kNoneAfter;
    outMin = hasBefore || !hasAfter ? mBeforeIndex : mAfterIndex;
    outMax = hasAfter ? mAfterIndex : outMin;
  }

 private:
  static constexpr std::int64_t kNoneBefore = std::numeric_limits<std::int64_t>::min();
  static constexpr std::int64_t kNoneAfter = std::numeric_limits<std::int64_t>::max();

  void compare(int first, const int* frames, int count) {
    mLast = std::numeric_limits<int>::max();  // what follows is not in order either
    for (int i = 0; i < count; ++i) {
      if (frames[i] == -1) continue;
      if (frames[i] <= mFrame && frames[i] > mBefore) {
        setBefore(first + i, frames[i]);
      } else if (frames[i] >= mFrame && frames[i] < mAfter) {
        setAfter(first + i, frames[i]);
      }
    }
  }
  void setBefore(int index, int keyFrame) {
    mBefore = keyFrame;
    mBeforeIndex = index;
  }
  void setAfter(int index, int keyFrame) {
    mAfter = keyFrame;
    mAfterIndex = index;
  }

  int mFrame;
  int mLast = -1;  // the frame before those to come, which are in order when they are above it
  int mBeforeIndex, mAfterIndex;
  std::int64_t mBefore = kNoneBefore, mAfter = kNoneAfter;
};

}  // namespace

void XCAnimationMgr::GetKeyFrameRange(int frame, int& minIndex, int& maxIndex,
                                      const Keys* keys) const {
  NearestKeys nearest(frame, minIndex, maxIndex);
  const int count = keys->GetCount();
  for (int first = 0; first < count; first += kKeysAtOnce) {
    nearest.visit(*keys, first, std::min(count - first, kKeysAtOnce));
  }
  nearest.get(minIndex, maxIndex);
}

uValue XCAnimationMgr::InterpolateValue(UxZel::IZelMgr* mgr,
                                        const UxZel::IZelInterpolatedValue* value, int frame,
                                        UxZel::CZelVector* outDirection, double* rate) {
  return guardEntryPoint(kOperation, uValue{}, [&] {
    const Keys& keys = *value->GetKeyFrames();
    if (keys.GetCount() < 1) raise(kOperation, "list of keyframes is empty");
    if (frame < 0) raise(kOperation, "given frame number is negative");
    const Pass pass = value->IsCyclic() ? passOf(*value, keys, frame) : Pass{frame};
    // -1 on either side: every key is at frame -1, which counts as absent.
    int min = -1, max = -1;
    GetKeyFrameRange(pass.mFrame, min, max, &keys);
    if (min < 0) raise(kOperation, "bad min index");
    if (max < 0) raise(kOperation, "bad max index");

    uValue result{}, direction{};
    const unsigned int type = value->GetPropertyType();
    if (UxZel::isPositionType(type)) {
      result = positionAt(*mPaths, *mgr, *value, min, max, pass.mFrame, direction, rate);
      if (outDirection != nullptr) {
        std::memcpy(outDirection, direction.mBytes, sizeof(*outDirection));
      }
    } else if (type == UxZel::kPropertyAnimatedFrameRate) {
      result.mInteger = frameAtRate(*mgr, *value, keys, pass.mFrame, rate);
    } else {
      uxInterpolate(keys.GetAt(min), keys.GetAt(max), pass.mFrame, result, pass.mForcedType);
    }
    return result;
  });
}

}  // namespace Norvel::Vexa
