#include "refhost/scenes/properties.h"

#include <utility>

namespace vexa::refhost::scenes {

namespace {

Property property(const char* name, const Key& first, const Key& second) {
  Property result;
  result.mName = name;
  result.mKeys.add(first);
  result.mKeys.add(second);
  return result;
}

}  // namespace

Scene lamp() {
  using UxZel::kInterpolationSinus;
  Scene scene;
  scene.mProperties = {
      property("brightness", realKey(0, 0, kInterpolationSinus), realKey(100, 1)),
      property("colour", colorKey(0, 0, 0, 0, 255), colorKey(100, 255, 255, 255, 255)),
      property("place", vectorKey(0, 0, 0, 0), vectorKey(100, 10, 20, 30)),
      property("switches", integerKey(0, 0, kInterpolationSinus), integerKey(100, 3)),
      property("mode", stepKey(0, 7), stepKey(50, 9)),
      property("pulse", realKey(0, 0), realKey(10, 1)),
  };
  scene.mProperties.back().mCyclic = true;
  scene.mProperties.back().mRepeatCount = 3;
  return scene;
}

Scene calendar() {
  constexpr std::int64_t kDay = 86400;
  // 19783 days after 1970. The three weeks include the equinox, and 210 frames are ten a day.
  constexpr std::int64_t kFirstOfMarch2024 = 19783 * kDay;
  Scene scene;
  scene.mProperties = {property("date", dateKey(0, kFirstOfMarch2024 + kDay / 2),
                                dateKey(210, kFirstOfMarch2024 + 21 * kDay + 3 * kDay / 4))};
  return scene;
}

// A value that is its key's number shows at once which keys were found.
Property manyKeys(int count) {
  Property result;
  result.mName = "many keys";
  for (int i = 0; i < count; ++i) result.mKeys.add(realKey(10 * i, i));
  return result;
}

}  // namespace vexa::refhost::scenes
