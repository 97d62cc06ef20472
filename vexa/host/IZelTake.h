#pragma once

namespace UxZel {

/// One clip of an animated object. Positions of virtual operations are fixed.
class IZelTake {
 public:
  virtual void reserved0() {}
  virtual void reserved1() {}

  /// 2: number of frames.
  virtual int GetFrameCount() const = 0;
  virtual void reserved3() {}
  virtual void reserved4() {}
  virtual void reserved5() {}

  /// 6: frames per time unit.
  virtual int GetFrameRate() const = 0;
  virtual void reserved7() {}
  /// 8: height above the path, scene units; 0 means the definition's default elevation.
  virtual double GetElevation() const = 0;

 protected:
  ~IZelTake() = default;
};

}  // namespace UxZel
