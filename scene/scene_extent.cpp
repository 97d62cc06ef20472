#include "scene/scene_extent.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <vector>

namespace vexa::scene {
namespace {

constexpr unsigned int kTakeFrame = UxZel::kPropertyAnimatedFrame;

// Host frames of one pass; takes count frames per time unit, and so does the time scale.
int lengthOf(const refhost::Scene& scene, const refhost::Take& take) {
  const double scale = scene.mSettings.mElements[0].mTimeScale;
  // Rounded to a whole host frame, and never 0: both keys would be at one frame.
  const double length = std::round(take.mFrameCount * scale / take.mFrameRate);
  return int(std::clamp(length, 1.0, 1e9));
}

void playOnce(const refhost::Scene& scene, const refhost::Take& take, refhost::Property& ioValue) {
  auto& keys = ioValue.mKeys.mElements;
  if (ioValue.mPropertyType != kTakeFrame || keys.size() < 2) return;
  // In 64 bits: both summands may be near the largest int.
  const std::int64_t end = std::int64_t{keys[0].mFrame} + lengthOf(scene, take);
  // The second key is reached when the take has run for its whole length, and shows its last frame.
  keys[0].mValue.mInteger = 0;
  keys[1].mFrame = int(std::min<std::int64_t>(end, 2147483647));
  keys[1].mValue.mInteger = take.mFrameCount - 1;
}

}  // namespace

void showTake(refhost::Scene& ioScene, const std::string& take) {
  std::vector<const refhost::Take*> chosen(ioScene.mInstances.mElements.size(), nullptr);
  bool isFound = false;
  for (std::size_t i = 0; i < chosen.size(); ++i) {
    refhost::Instance& instance = ioScene.mInstances.mElements[i];
    if (instance.mDefinition == refhost::kNone) continue;
    const auto& object = ioScene.mDefinitions[instance.mDefinition].mAnimatedObject;
    if (object == nullptr) continue;
    const auto& takes = object->mTakes.mElements;
    const auto found = std::find_if(takes.begin(), takes.end(),
                                    [&take](const auto& each) { return each.mName == take; });
    if (found == takes.end()) continue;
    instance.mState.mTakeIndex = static_cast<unsigned int>(found - takes.begin());
    chosen[i] = &*found;
    isFound = true;
  }
  if (!isFound) throw std::runtime_error("no instance has a take \"" + take + "\"");
  for (refhost::Property& value : ioScene.mProperties) {
    if (value.mInstance == refhost::kNone || chosen[value.mInstance] == nullptr) continue;
    playOnce(ioScene, *chosen[value.mInstance], value);
  }
}

int lastFrame(const refhost::Scene& scene) {
  int last = 0;
  for (const refhost::Property& value : scene.mProperties) {
    // A cyclic "takeFrame" from frame 0 to 24 shows at 24 what it showed at 0.
    const bool repeats = value.mPropertyType == kTakeFrame && value.mCyclic;
    for (const refhost::Key& key : value.mKeys.mElements) {
      last = std::max(last, key.mFrame - (repeats ? 1 : 0));
    }
  }
  return last;
}

}  // namespace vexa::scene
