#pragma once

#include "vexa/host/CZelPoint.h"
#include "vexa/host/CZelVector.h"

namespace UxZel {

/// One point of a 3D path with its two control points, in scene units.
///
/// Positions of virtual operations are fixed. What is returned is owned by the point and never
/// null; what is received is the caller's: copy it.
class IZelBezierPoint {
 public:
  virtual void reserved0() {}
  virtual void reserved1() {}

  /// 2: the point that the path passes through.
  virtual const CZelPoint* GetPassagePoint() const = 0;
  /// 3: receives the passage point.
  virtual void SetPassagePoint(const CZelPoint* point) = 0;
  /// 4: the arriving control point, relative to the passage point.
  virtual const CZelVector* GetBeforeControlOffset() const = 0;
  /// 5: receives the arriving control offset.
  virtual void SetBeforeControlOffset(const CZelVector* offset) = 0;
  /// 6: the leaving control point, relative to the passage point.
  virtual const CZelVector* GetAfterControlOffset() const = 0;
  /// 7: receives the leaving control offset.
  virtual void SetAfterControlOffset(const CZelVector* offset) = 0;
  /// 8: whether both tangents are locked together; kept for the host, never evaluated.
  virtual bool GetTangentLocked() const = 0;
  /// 9: receives that flag.
  virtual void SetTangentLocked(bool locked) = 0;

 protected:
  ~IZelBezierPoint() = default;
};

}  // namespace UxZel
