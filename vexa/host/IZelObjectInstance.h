#pragma once

#include "vexa/host/CZelPoint.h"
#include "vexa/host/CZelUUID.h"
#include "vexa/host/CZelVector.h"
#include "vexa/host/IZelAnimationState.h"
#include "vexa/host/IZelIdentity.h"

namespace UxZel {

/// A placed instance of an object definition. Returned pointers are owned by the host.
///
/// Positions of virtual operations are fixed but for the four getters marked "our choice", whose
/// positions this library has settled.
class IZelObjectInstance {
 public:
  virtual void reserved0() {}
  virtual void reserved1() {}
  virtual void reserved2() {}
  virtual void reserved3() {}
  virtual void reserved4() {}
  virtual void reserved5() {}

  /// 6: the instance's identity, never null.
  virtual const IZelIdentity* GetIdentity() const = 0;
  /// 7: names the kind of instance, such as "Billboard" or "3DPlantGroupInstances".
  virtual const char* GetClassName() const = 0;
  virtual void reserved8() {}
  /// 9: identifier of the enclosing instance, all zero for none; never null.
  virtual const CZelUUID* GetParentUUID() const = 0;
  virtual void reserved10() {}
  /// 11: receives the anchor, in the parent's space. The point is the caller's: copy it.
  virtual void SetAnchor(const CZelPoint* point) = 0;
  virtual void reserved12() {}
  virtual void reserved13() {}
  virtual void reserved14() {}
  virtual void reserved15() {}

  /// 16: three scale factors along x, y, z; never null.
  virtual const double* GetScale() const = 0;
  virtual void reserved17() {}
  virtual void reserved18() {}
  virtual void reserved19() {}
  virtual void reserved20() {}

  /// 21 (our choice): position in the parent's space; never null.
  virtual const CZelPoint* GetPosition() const = 0;
  /// 22: receives the position. The point is the caller's: copy it.
  virtual void SetPosition(const CZelPoint* position) = 0;
  virtual void reserved23() {}
  virtual void reserved24() {}
  virtual void reserved25() {}
  virtual void reserved26() {}

  /// 27 (our choice): rotation about +Z in radians.
  virtual double GetRotation() const = 0;
  /// 28: receives the rotation about +Z in radians.
  virtual void SetRotation(double radians) = 0;
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

  /// 47: the state of the instance's own animation.
  virtual IZelAnimationState* GetAnimationState() const = 0;
  virtual void reserved48() {}
  virtual void reserved49() {}
  virtual void reserved50() {}
  virtual void reserved51() {}

  /// 52 (our choice): the direction that the instance faces.
  virtual const CZelVector* GetDirection() const = 0;
  /// 53: receives the direction, a unit vector or zero. The vector is the caller's: copy it.
  virtual void SetDirection(const CZelVector* direction) = 0;
  virtual void reserved54() {}
  virtual void reserved55() {}
  virtual void reserved56() {}
  virtual void reserved57() {}
  virtual void reserved58() {}
  virtual void reserved59() {}
  virtual void reserved60() {}
  virtual void reserved61() {}
  virtual void reserved62() {}
  virtual void reserved63() {}
  virtual void reserved64() {}
  virtual void reserved65() {}
  virtual void reserved66() {}
  virtual void reserved67() {}
  virtual void reserved68() {}
  virtual void reserved69() {}

  /// 70: handed to the world transform when the enclosing instance is a plant group.
  virtual bool GetPlantGroupFlag() const = 0;
  /// 71 (our choice): whether a "Billboard" turns towards the viewer.
  virtual bool GetBillboardEnabled() const = 0;

 protected:
  ~IZelObjectInstance() = default;
};

}  // namespace UxZel
