#pragma once

#include "vexa/Export.h"
#include "vexa/math/uxs_generic_vec3.h"

namespace Norvel::Vexa {

/// Where a Bezier path reads its points: passage points with their control points, read-only.
///
/// V is the type of points, W that of directions (the same type), S the scalar of weights. Points
/// are counted from 0; an index past the last point is an error of the caller, which the
/// implementation reports as it can. Positions of virtual operations are fixed; the destructor
/// comes last.
template <class V, class W, class S>
class VEXA_EXPORT XTPathInfo {
 public:
  /// Whether there is a list of points at all; without one every operation by index throws.
  virtual bool PointsMgrExist() const = 0;
  virtual unsigned int getNbBezierPoints() const = 0;

  /// The point that the path passes through, scene units.
  virtual V getPassagePointPositionAt(unsigned int index) const = 0;
  /// The control point through which the path arrives, absolute.
  virtual V getBeforeControlPointAt(unsigned int index) const = 0;
  /// The control point towards which the path leaves, absolute.
  virtual V getAfterControlPointAt(unsigned int index) const = 0;
  /// The arriving control point relative to the passage point.
  virtual W getToBeforeCtrlPtAt(unsigned int index) const = 0;
  /// The leaving control point relative to the passage point.
  virtual W getToAfterCtrlPtAt(unsigned int index) const = 0;
  /// Distance of the leaving control point from the passage point.
  virtual S getAfterControlPointWeightAt(unsigned int index) const = 0;
  /// Distance of the arriving control point from the passage point.
  virtual S getBeforeControlPointWeightAt(unsigned int index) const = 0;

  /// Whether both tangents are locked together; an editor's flag, which evaluation never reads.
  virtual bool getTangentLockedAt(unsigned int index) const = 0;
  /// Whether the path is closed; a closed path gets no segment from its last point to its first.
  virtual bool getPathClosed() const = 0;

  virtual ~XTPathInfo() = default;
};

extern template class VEXA_EXPORT
    XTPathInfo<UXS::uxs_generic_vec3<float>, UXS::uxs_generic_vec3<float>, float>;

}  // namespace Norvel::Vexa
