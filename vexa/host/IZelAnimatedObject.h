#pragma once

#include "vexa/host/IZelTake.h"
#include "vexa/host/TZelObjectMgr.h"

namespace UxZel {

/// An object that carries its own animation. Positions of virtual operations are fixed.
class IZelAnimatedObject {
 public:
  /// 0: 0 when the animation is stored in an animation file of the library's own format; with any
  /// other kind there is no such file and the object is not registered.
  virtual int GetAnimationKind() const = 0;
  virtual void reserved1() {}
  virtual void reserved2() {}
  virtual void reserved3() {}

  /// 4: the takes (clips) of the object; owned by the host.
  virtual TZelObjectMgr<IZelTake>* GetTakes() const = 0;
  virtual void reserved5() {}
  /// 6: index of the anchor vertex in the object's mesh.
  virtual unsigned int GetAnchorVertex() const = 0;

 protected:
  ~IZelAnimatedObject() = default;
};

}  // namespace UxZel
