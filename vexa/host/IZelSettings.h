#pragma once

namespace UxZel {

/// One element of the scene's settings. Positions of virtual operations are fixed.
class IZelSettings {
 public:
  virtual void reserved0() {}
  virtual void reserved1() {}
  virtual void reserved2() {}
  virtual void reserved3() {}
  virtual void reserved4() {}
  virtual void reserved5() {}
  virtual void reserved6() {}
  virtual void reserved7() {}
  virtual void reserved8() {}
  virtual void reserved9() {}
  virtual void reserved10() {}
  virtual void reserved11() {}
  virtual void reserved12() {}
  virtual void reserved13() {}
  virtual void reserved14() {}
  virtual void reserved15() {}

  /// 16: host frames per time unit.
  virtual int GetTimeScale() const = 0;

 protected:
  ~IZelSettings() = default;
};

}  // namespace UxZel
