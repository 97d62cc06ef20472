#pragma once

namespace UxZel {

/// The state of one instance's own animation. Positions of virtual operations are fixed.
class IZelAnimationState {
 public:
  /// 0: the take frame shown.
  virtual int GetCurrentFrame() const = 0;
  /// 1: receives the take frame to show.
  virtual void SetCurrentFrame(int frame) = 0;
  /// 2: index of the take in the animated object's list.
  virtual unsigned int GetTakeIndex() const = 0;
  virtual void reserved3() {}
  /// 4: offset in take frames used by walking along a path.
  virtual int GetStartOffset() const = 0;
  /// 5: receives that offset.
  virtual void SetStartOffset(int frames) = 0;
  /// 6: offset in host frames added to the frame shown.
  virtual int GetFrameOffset() const = 0;

 protected:
  ~IZelAnimationState() = default;
};

}  // namespace UxZel
