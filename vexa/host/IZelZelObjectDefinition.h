#pragma once

#include "vexa/host/IZelAnimatedObject.h"

namespace UxZel {

/// Sizes of an object definition; only the elevation is read.
struct sSizeRecord {
  double mWidth = 0;
  double mDepth = 0;
  double mElevation = 0;  ///< default height of an instance that walks along a path, scene units
};

/// What an instance is an instance of. Positions of virtual operations are fixed.
class IZelZelObjectDefinition {
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

  /// 11: the sizes of the definition; owned by the host.
  virtual const sSizeRecord* GetSizeRecord() const = 0;
  virtual void reserved12() {}
  virtual void reserved13() {}
  virtual void reserved14() {}
  virtual void reserved15() {}
  virtual void reserved16() {}
  virtual void reserved17() {}
  virtual void reserved18() {}
  virtual void reserved19() {}
  virtual void reserved20() {}
  virtual void reserved21() {}
  virtual void reserved22() {}
  virtual void reserved23() {}
  virtual void reserved24() {}
  virtual void reserved25() {}
  virtual void reserved26() {}
  virtual void reserved27() {}
  virtual void reserved28() {}
  virtual void reserved29() {}
  virtual void reserved30() {}
  virtual void reserved31() {}
  virtual void reserved32() {}
  virtual void reserved33() {}
  virtual void reserved34() {}
  virtual void reserved35() {}
  virtual void reserved36() {}
  virtual void reserved37() {}
  virtual void reserved38() {}
  virtual void reserved39() {}
  virtual void reserved40() {}
  virtual void reserved41() {}
  virtual void reserved42() {}
  virtual void reserved43() {}
  virtual void reserved44() {}
  virtual void reserved45() {}
  virtual void reserved46() {}
  virtual void reserved47() {}
  virtual void reserved48() {}
  virtual void reserved49() {}
  virtual void reserved50() {}
  virtual void reserved51() {}

  /// 52: the animated object of the definition, or null; owned by the host.
  virtual IZelAnimatedObject* GetAnimatedObject() const = 0;

 protected:
  ~IZelZelObjectDefinition() = default;
};

}  // namespace UxZel
