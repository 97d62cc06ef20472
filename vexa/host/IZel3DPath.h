#pragma once

#include "vexa/host/IZelBezierPoint.h"
#include "vexa/host/IZelIdentity.h"
#include "vexa/host/TZelObjectMgr.h"

namespace UxZel {

/// A 3D path of the scene. Positions of virtual operations are fixed.
class IZel3DPath {
 public:
  virtual void reserved0() {}
  virtual void reserved1() {}
  virtual void reserved2() {}
  virtual void reserved3() {}
  virtual void reserved4() {}
  virtual void reserved5() {}

  /// 6: the path's identity, never null.
  virtual const IZelIdentity* GetIdentity() const = 0;
  /// 7: whether the path is closed; a closed path never eases, and gets no closing segment.
  virtual bool IsPathClosed() const = 0;
  /// 8: receives the closed flag.
  virtual void SetPathClosed(bool closed) = 0;
  /// 9: the Bezier points, possibly null; owned by the host.
  virtual const TZelObjectMgr<IZelBezierPoint>* GetBezierPoints() const = 0;
  /// 10: the same list, writable.
  virtual TZelObjectMgr<IZelBezierPoint>* GetBezierPoints() = 0;

 protected:
  ~IZel3DPath() = default;
};

}  // namespace UxZel
