// Driving instances of animated objects frame by frame.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <optional>

#include "vexa/animation/CZelObjectInstanceTool.h"
#include "vexa/animation/XCAnimationMgr.h"
#include "vexa/animation/entry_point_internal.h"
#include "vexa/animation/host_access_internal.h"
#include "vexa/framecollector/XCFrameCollector.h"
#include "vexa/math/conversion.h"
#include "vexa/mesh/Mesh.h"
#include "vexa/paths/path_cache_internal.h"

namespace Norvel::Vexa {

namespace {

using uValue = UxZel::IZelKeyFrame::uValue;
using Keys = UxZel::TZelObjectMgr<UxZel::IZelKeyFrame>;
using Vector = UXS::uxs_generic_vec3<float>;

constexpr char kSelection[] = "XCAnimationMgr::GetAnimatedObjectFrame";
constexpr char kAnchoring[] = "XCAnimationMgr::GetAEAnchorPos";
constexpr char kDriving[] = "XCAnimationMgr::ManageAnimatedObjectInstance";

uValue frameValue(int frame) {
  uValue value{};
  value.mInteger = frame;
  return value;
}

// Integer division that raises where the processor would trap; 64 bits hold every product of two.
std::int64_t divide(std::int64_t a, std::int64_t b, const char* fault) {
  if (b == 0) raise(kSelection, fault);
  return a / b;
}

UxZel::IZelAnimatedObject* animatedObjectOf(const UxZel::IZelZelObjectDefinition* definition) {
  return definition == nullptr ? nullptr : definition->GetAnimatedObject();
}

UxZel::IZelAnimationState& stateOf(const UxZel::IZelObjectInstance& instance,
                                   const char* operation) {
  UxZel::IZelAnimationState* state = instance.GetAnimationState();
  if (state == nullptr) raise(operation, "instance without animation state");
  return *state;
}

const UxZel::IZelKeyFrame& firstKeyOf(const Keys& keys) {
  return *elementAt(&keys, 0, kSelection, "list of keyframes is empty");
}
const UxZel::IZelKeyFrame& secondKeyOf(const Keys& keys) {
  return *elementAt(&keys, 1, kSelection, "second key frame is missing");
}

// The take that an instance shows.
const UxZel::IZelTake& takeOf(const UxZel::IZelAnimatedObject& object, unsigned int index,
                              const char* operation) {
  return *elementAt(object.GetTakes(), wrapToInt(index), operation, "bad take index");
}

// The anchor vertex of a registered object, deformed for frames of one take.
class Anchor {
 public:
  Anchor(const UxZel::IZelAnimatedObject& object,
         const XCAnimationMgr::sAnimatedInstanceData& record, unsigned int take,
         const char* operation)
      : mKind(object.GetAnimationKind()),
        mIndex(object.GetAnchorVertex()),
        mTake(take),
        mCollector(*record.mFrameCollector),
        mVertices(record.mMesh->GetVerticesArray()) {
    if (mIndex >= mVertices.size()) raise(operation, "bad anchor vertex");
  }

  // Required behaviour: for kind 1 the vertex goes by its index, which gives (0, 0, 0); any other
  // kind has no animation.
  Oru::TVector3D<float> at(int takeFrame) const {
    const auto frame = unsigned(takeFrame);
    if (mKind == 0) return mCollector.TransformPoint(&mVertices[mIndex], mTake, frame);
    if (mKind == 1) return mCollector.TransformPoint(mIndex, mTake, frame);
    return {};
  }

 private:
  int mKind;
  unsigned int mIndex, mTake;
  const XCFrameCollector& mCollector;
  const std::vector<Oru::TVector3D<float>>& mVertices;
};

// What a take does to its anchor in the horizontal plane, object space. The frames between the two
// ends do not count: a foot that swings out and back adds no way.
//
//    y |             end, at the take's last frame
//      |          . '
//      |      shown          mStride   from start to end
//      |   . '               mPartial  from start to the frame shown, in a straight line
//      |start
//      +-------------- x
struct Walk {
  Oru::TVector3D<float> mAnchor;           // at the frame shown
  float mPartial = 0, mStride = 0;         // way from frame 0 to the frame shown, and to the last
  float mDirectionX = 0, mDirectionY = 0;  // of the stride, unit length; zero without a stride
};

Walk walkOf(const Anchor& anchor, int takeFrame, int lastFrame) {
  const Oru::TVector3D<float> start = anchor.at(0), end = anchor.at(lastFrame);
  Walk walk;
  walk.mAnchor = anchor.at(takeFrame);
  const float px = walk.mAnchor.x - start.x, py = walk.mAnchor.y - start.y;
  const float sx = end.x - start.x, sy = end.y - start.y;
  walk.mPartial = std::sqrt(px * px + py * py);
  walk.mStride = std::sqrt(sx * sx + sy * sy);
  // A take that stays in place has no direction: zero, not NaN.
  if (walk.mStride > 0) {
    walk.mDirectionX = sx / walk.mStride;
    walk.mDirectionY = sy / walk.mStride;
  }
  return walk;
}

// The rotation about +Z that turns the direction of a walk to +Y. The direction of the path is
// added to it later, as a turn of +Y (getHeading).
double rotationOf(const Walk& walk) {
  constexpr double kHalfPi = 1.5707963705062866;  // pi/2 as a float
  // The square of a tiny stride loses digits: the quotient may pass 1.
  const float a = std::acos(std::clamp(walk.mDirectionX, -1.0f, 1.0f));
  return kHalfPi - double(walk.mDirectionY < 0 ? -a : a);
}

// The fraction of a path that a walk has covered: each whole cycle carries it one stride on. It
// stays at the end of the path.
float fractionOf(const Walk& walk, int cycles, float pathLength) {
  const float covered = walk.mPartial + walk.mStride * float(cycles);
  const double fraction = double(covered) / double(pathLength);
  return float(fraction > 1.0 ? 1.0 : fraction);
}

// The direction scaled to unit length; zero for a length that counts as zero.
UxZel::CZelVector unitDirection(const Vector& v) {
  ux_vect3<float> unit(v.x, v.y, v.z);
  unit.normalize();
  return {double(unit.x), double(unit.y), double(unit.z)};
}

// The height that the foot walks at: a take without an elevation of its own has its object's.
double elevationOf(const UxZel::IZelTake& take, const UxZel::IZelZelObjectDefinition& definition) {
  const double elevation = take.GetElevation();
  if (elevation != 0) return elevation;
  const UxZel::sSizeRecord* sizes = definition.GetSizeRecord();
  if (sizes == nullptr) raise(kDriving, "definition without size record");
  return sizes->mElevation;
}

// The position at which an instance of that heading has its anchor at `point`, in the parent's
// space. `factor` is the scale that its parents give it. The anchor follows the path, and the
// instance is placed relative to it:
//
//   point on the path = position + R(heading) S anchor
UxZel::CZelPoint positionUnder(const UxZel::CZelPoint& point, const Oru::TVector3D<float>& anchor,
                               const double* scale, float factor, double heading) {
  const double x = double(anchor.x) * (scale[0] * double(factor));
  const double y = double(anchor.y) * (scale[1] * double(factor));
  const double s = std::sin(heading), c = std::cos(heading);
  return {point.x - (c * x - s * y), point.y - (s * x + c * y), point.z};
}

}  // namespace

// From a frame of the scene to a frame of the take:
//
//   first key            frame          second key
//       |--- elapsed ------|                |
//       |--------------- span --------------|
//
//   stretch   elapsed * speed / span      `speed` host frames pass between the two keys
//   convert   * rate / scale              take frames per second over host frames per second
//   wrap      0 .. count-1 | 0 .. count-1 | ...      outCycles counts the whole takes
//
// Each step truncates to an integer before the next. The host is asked in this order, and a fault
// is raised only when its value is needed.
uValue XCAnimationMgr::GetAnimatedObjectFrame(UxZel::IZelMgr* mgr,
                                              UxZel::IZelObjectInstance* instance,
                                              const UxZel::IZelZelObjectDefinition* definition,
                                              const UxZel::IZelInterpolatedValue* value, int frame,
                                              int& outCycles, int speed, bool wrapFreely,
                                              bool addOffset) const {
  outCycles = 0;
  const Keys& keys = *value->GetKeyFrames();
  const UxZel::IZelKeyFrame& firstKey = firstKeyOf(keys);
  const UxZel::IZelAnimatedObject* object = animatedObjectOf(definition);
  if (object == nullptr) return *firstKey.GetValue();

  const UxZel::IZelAnimationState& state = stateOf(*instance, kSelection);
  const UxZel::IZelTake& take = takeOf(*object, state.GetTakeIndex(), kSelection);
  const std::int64_t scale = settingsOf(mgr, kSelection).GetTimeScale();
  const std::int64_t rate = take.GetFrameRate(), count = take.GetFrameCount();
  if (speed < 0) speed = wrapToInt(divide(count * scale, rate, "frame rate is zero"));

  const int firstFrame = firstKey.GetFrame();
  if (firstFrame > frame) return *firstKey.GetValue();
  std::int64_t elapsed = std::int64_t{frame} - firstFrame;
  if (speed != 0) {
    const std::int64_t span = std::int64_t{secondKeyOf(keys).GetFrame()} - firstFrame;
    if (span == 0) raise(kSelection, "first two key frames are equal");
    elapsed = truncToInt(double(elapsed) * speed / double(span));
  }
  std::int64_t shown = divide(elapsed * rate, scale, "time scale is zero");
  if (addOffset) shown += divide(scale * state.GetFrameOffset(), rate, "frame rate is zero");

  // In double: a take without frames gives infinity or NaN, which convert, where integers would
  // trap.
  outCycles = truncToInt(double(shown) / double(count));
  if (shown < count) return frameValue(wrapToInt(shown));
  if (!wrapFreely && (!value->IsCyclic() || value->GetRepeatCount() < outCycles)) {
    return *secondKeyOf(keys).GetValue();
  }
  if (count == 0) raise(kSelection, "take without frames");
  return frameValue(wrapToInt(shown % count + (wrapFreely ? 1 : 0)));
}

UxZel::CZelPoint XCAnimationMgr::GetAEAnchorPos(UxZel::IZelMgr* /*mgr*/,
                                                UxZel::IZelObjectInstance* instance,
                                                const UxZel::IZelZelObjectDefinition* definition,
                                                int takeFrame) const {
  const UxZel::IZelAnimatedObject* object = animatedObjectOf(definition);
  const sAnimatedInstanceData* record = findRecord(object);
  if (record == nullptr) return {};
  const unsigned int index = stateOf(*instance, kAnchoring).GetTakeIndex();
  const UxZel::IZelTake& take = takeOf(*object, index, kAnchoring);
  const Oru::TVector3D<float> anchor = Anchor(*object, *record, index, kAnchoring).at(takeFrame);
  return {double(anchor.x), double(anchor.y), double(float(take.GetElevation()))};
}

uValue XCAnimationMgr::ManageAnimatedObjectInstance(
    UxZel::IZelMgr* mgr, UxZel::IZelObjectInstance* instance,
    const UxZel::IZelZelObjectDefinition* definition, const UxZel::IZelInterpolatedValue* value,
    int frame, UxZel::CZelVector* outDirection) const {
  return guardEntryPoint(kDriving, uValue{}, [&] {
    switch (value->GetPropertyType()) {
      case UxZel::kPropertyAnimatedFrame:
        return showTakeFrame(mgr, instance, definition, value, frame);
      case UxZel::kPropertyAnimatedWalk:
        return walkAlongPath(mgr, instance, definition, value, frame, outDirection);
      default:
        return uValue{};
    }
  });
}

uValue XCAnimationMgr::showTakeFrame(UxZel::IZelMgr* mgr, UxZel::IZelObjectInstance* instance,
                                     const UxZel::IZelZelObjectDefinition* definition,
                                     const UxZel::IZelInterpolatedValue* value, int frame) const {
  int cycles = 0;
  const uValue shown =
      GetAnimatedObjectFrame(mgr, instance, definition, value, frame, cycles, -1, false, true);
  UxZel::IZelAnimationState& state = stateOf(*instance, kDriving);
  if (state.GetCurrentFrame() != shown.mInteger) state.SetCurrentFrame(shown.mInteger);
  return shown;
}

uValue XCAnimationMgr::walkAlongPath(UxZel::IZelMgr* mgr, UxZel::IZelObjectInstance* instance,
                                     const UxZel::IZelZelObjectDefinition* definition,
                                     const UxZel::IZelInterpolatedValue* value, int frame,
                                     UxZel::CZelVector* outDirection) const {
  const Keys& keys = *value->GetKeyFrames();
  const UxZel::IZelAnimatedObject* object = animatedObjectOf(definition);
  if (object == nullptr) return *firstKeyOf(keys).GetValue();
  UxZel::IZelAnimationState& state = stateOf(*instance, kDriving);
  const int startOffset = state.GetStartOffset();
  const int lastFrame = secondKeyOf(keys).GetFrame();
  int cycles = 0;
  const uValue shown =
      GetAnimatedObjectFrame(mgr, instance, definition, value, std::min(frame, lastFrame), cycles,
                             startOffset, true, false);

  const std::shared_ptr<const BezierPath> builtPath =
      mPaths->pathOf(find3DPath(mgr, *value->GetPathUUID()));
  const BezierPath& path = *builtPath;
  const unsigned int takeIndex = state.GetTakeIndex();
  const UxZel::IZelTake& take = takeOf(*object, takeIndex, kDriving);
  Walk walk;
  if (const sAnimatedInstanceData* record = findRecord(object); record != nullptr) {
    const Anchor anchor(*object, *record, takeIndex, kDriving);
    walk = walkOf(anchor, shown.mInteger, wrapSub(take.GetFrameCount(), 1));
  }
  const float fraction = fractionOf(walk, cycles, path.getTotalLength());
  const UxZel::CZelVector direction = unitDirection(path.directionAt(fraction));
  const Vector onPath = path.valueAt(fraction);
  const UxZel::CZelPoint point{double(onPath.x), double(onPath.y), elevationOf(take, *definition)};
  const double rotation = rotationOf(walk);
  const double* scale = instance->GetScale();
  const std::optional<Space> parent = parentSpaceOf(mgr, instance);
  const UxZel::CZelPoint anchor = inParent(parent, point);
  // Required behaviour: the height is set as it is, whatever the parent.
  const UxZel::CZelPoint position = positionUnder(
      {anchor.x, anchor.y, point.z}, walk.mAnchor, scale, parent ? parent->mScale : 1.0f,
      UxZel::CZelObjectInstanceTool::getHeading(rotation, direction));

  // Everything is known, so that a fault leaves the instance as it was. The order of the calls is
  // fixed, and SetStartOffset with the value just read is one of them.
  instance->SetRotation(rotation);
  instance->SetDirection(&direction);
  instance->SetPosition(&position);
  instance->SetAnchor(&anchor);
  state.SetStartOffset(startOffset);
  if (outDirection != nullptr) *outDirection = direction;
  return shown;
}

}  // namespace Norvel::Vexa
