#pragma once

#include "vexa/host/IZel3DPath.h"
#include "vexa/host/IZelObjectInstance.h"
#include "vexa/host/IZelSettings.h"
#include "vexa/host/TZelObjectMgr.h"

namespace UxZel {

/// The host's scene, passed to every entry point that needs it. Positions of virtual operations
/// are fixed. All lists are owned by the host and never null.
class IZelMgr {
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

  /// 33: all object instances of the scene.
  virtual TZelObjectMgr<IZelObjectInstance>* GetObjectInstances() const = 0;
  virtual void reserved34() {}
  virtual void reserved35() {}
  virtual void reserved36() {}
  virtual void reserved37() {}
  virtual void reserved38() {}
  virtual void reserved39() {}
  virtual void reserved40() {}
  virtual void reserved41() {}
  virtual void reserved42() {}

  /// 43: the settings; only the first element is read.
  virtual TZelObjectMgr<IZelSettings>* GetSettingsList() const = 0;
  /// 44: all 3D paths of the scene.
  virtual TZelObjectMgr<IZel3DPath>* Get3DPaths() const = 0;

 protected:
  ~IZelMgr() = default;
};

}  // namespace UxZel
