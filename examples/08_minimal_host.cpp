// The smallest host: one property with two keys, in fifty lines and without the reference host.
// Only the operations that the library calls are implemented; see docs/host.md for the others.
#include <cstdio>
#include <vector>

#include "vexa/vexa.h"

namespace {

struct Key final : UxZel::IZelKeyFrame {
  int mFrame;
  uValue mValue{};

  Key(int frame, double value) : mFrame(frame) { mValue.mReal = value; }
  unsigned int GetValueType() const override { return UxZel::kValueReal; }
  const uValue* GetValue() const override { return &mValue; }
  int GetFrame() const override { return mFrame; }
  int GetInterpolationType() const override { return UxZel::kInterpolationSinus; }
};

// The list is the host's own; the library asks it for one key at a time.
struct KeyList final : UxZel::TZelObjectMgr<UxZel::IZelKeyFrame> {
  mutable std::vector<Key> mKeys;

  int GetCount() const override { return static_cast<int>(mKeys.size()); }
  UxZel::IZelKeyFrame* GetAt(int index) const override {
    return &mKeys[static_cast<std::size_t>(index)];
  }
  void RemoveAt(unsigned int) override {}  // called for the points of paths only
  void InsertAt(unsigned int) override {}  // likewise
};

struct Property final : UxZel::IZelInterpolatedValue {
  KeyList mKeys;
  // Never null, also for a property without a path.
  UxZel::CZelUUID mNoPath;

  unsigned int GetPropertyType() const override { return 0; }
  const UxZel::TZelObjectMgr<UxZel::IZelKeyFrame>* GetKeyFrames() const override { return &mKeys; }
  bool IsCyclic() const override { return false; }
  int GetRepeatCount() const override { return 0; }
  const UxZel::CZelUUID* GetPathUUID() const override { return &mNoPath; }
};

}  // namespace

int main() {
  Property height;
  height.mKeys.mKeys = {Key(0, 1.5), Key(50, 4.0)};
  Norvel::Vexa::XIAnimationMgr* manager = Norvel::Vexa::XIAnimationMgr::Create();
  // An ordinary property needs no scene: the first argument may be null.
  const double middle = manager->InterpolateValue(nullptr, &height, 25, nullptr, nullptr).mReal;
  std::printf("height at frame 25: %.2f\n", middle);
  manager->Delete();
  return middle == 2.75 ? 0 : 1;
}
