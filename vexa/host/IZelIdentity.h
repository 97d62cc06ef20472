#pragma once

#include "vexa/host/CZelUUID.h"

namespace UxZel {

/// The identity of a scene object. Positions of virtual operations are fixed.
class IZelIdentity {
 public:
  virtual void reserved0() {}
  virtual void reserved1() {}

  /// 2: the identifier, never null; owned by the identity.
  virtual const CZelUUID* GetUUID() const = 0;

 protected:
  ~IZelIdentity() = default;
};

}  // namespace UxZel
