#pragma once

#include "vexa/Export.h"
#include "vexa/math/uxs_generic_vec3.h"

namespace Norvel::Vexa {

/// Edits the points of a path: what XTPathInfo reads, with the setters beside.
///
/// V is the type of points, W that of directions (the same type), S the scalar of weights. Points
/// are counted from 0. Positions of virtual operations are fixed; the destructor comes last.
template <class V, class W, class S>
class VEXA_EXPORT XTPathAgent {
 public:
  /// Whether there is a list of points at all; without one every operation by index throws.
  virtual bool PointsMgrExist() const = 0;
  virtual unsigned int getNbBezierPoints() const = 0;
  /// Inserts a new point, so that it gets this index. Returns true.
  virtual bool addNewPointAt(unsigned int index) = 0;
  /// Removes a point. Returns true.
  virtual bool removePointAt(unsigned int index) = 0;

  /// The point that the path passes through, scene units. Setting it moves both control points
  /// along, since they are kept relative to it.
  virtual V getPassagePointPositionAt(unsigned int index) const = 0;
  virtual void setPassagePointPositionAt(unsigned int index, const V& point) = 0;
  /// The control point through which the path arrives, absolute.
  virtual V getBeforeControlPointAt(unsigned int index) const = 0;
  virtual void setBeforeControlPointAt(unsigned int index, const V& point) = 0;
  /// The control point towards which the path leaves, absolute.
  virtual V getAfterControlPointAt(unsigned int index) const = 0;
  virtual void setAfterControlPointAt(unsigned int index, const V& point) = 0;
  /// The arriving control point relative to the passage point.
  virtual W getToBeforeCtrlPtAt(unsigned int index) const = 0;
  virtual void setToBeforeCtrlPtAt(unsigned int index, const W& offset) = 0;
  /// The leaving control point relative to the passage point.
  virtual W getToAfterCtrlPtAt(unsigned int index) const = 0;
  virtual void setToAfterCtrlPtAt(unsigned int index, const W& offset) = 0;
  /// Distance of the leaving control point from the passage point.
  virtual S getAfterControlPointWeightAt(unsigned int index) const = 0;
  /// Distance of the arriving control point from the passage point.
  virtual S getBeforeControlPointWeightAt(unsigned int index) const = 0;

  /// Whether both tangents are locked together: stored and reported only.
  virtual bool getTangentLockedAt(unsigned int index) const = 0;
  virtual void setTangentLockedAt(unsigned int index, bool locked) = 0;
  virtual bool getPathClosed() const = 0;
  virtual void setPathClosed(bool closed) = 0;

  /// For agents that notify somebody of each edit: hold the notifications back, and release them.
  virtual void BlockSynchronization() = 0;
  virtual void UnBlockSynchronization() = 0;

  virtual ~XTPathAgent() = default;
};

extern template class VEXA_EXPORT
    XTPathAgent<UXS::uxs_generic_vec3<float>, UXS::uxs_generic_vec3<float>, float>;

}  // namespace Norvel::Vexa
