#pragma once

#include "vexa/Export.h"
#include "vexa/host/IZel3DPath.h"
#include "vexa/paths/XTPathAgent.h"
#include "vexa/paths/XTPathInfo.h"

namespace Norvel::Vexa {

/// The getters that a path info and a path agent share. They read a host path and narrow what it
/// returns to float.
///
/// `Contract` is the XTPathInfo or XTPathAgent to implement.
/// Every operation by index, and getNbBezierPoints, throws std::runtime_error when there is no list
/// of points ("XC3DPath::<operation> - can not get path's BezierPointsMgr") and when the list has
/// no such point ("XCZELPathAgent::<operation> : can not get BezierPoint (pointer is NULL)").
template <class Contract>
class VEXA_EXPORT XTHostPoints : public Contract {
 public:
  using V3 = UXS::uxs_generic_vec3<float>;
  using PointList = UxZel::TZelObjectMgr<UxZel::IZelBezierPoint>;

  bool PointsMgrExist() const override;
  /// A negative count of the host counts as 0.
  unsigned int getNbBezierPoints() const override;
  V3 getPassagePointPositionAt(unsigned int index) const override;
  V3 getBeforeControlPointAt(unsigned int index) const override;
  V3 getAfterControlPointAt(unsigned int index) const override;
  V3 getToBeforeCtrlPtAt(unsigned int index) const override;
  V3 getToAfterCtrlPtAt(unsigned int index) const override;
  float getAfterControlPointWeightAt(unsigned int index) const override;
  float getBeforeControlPointWeightAt(unsigned int index) const override;
  bool getTangentLockedAt(unsigned int index) const override;
  /// Without a path it is not closed.
  bool getPathClosed() const override;

 protected:
  XTHostPoints(const UxZel::IZel3DPath* path, const PointList* points)
      : mPath(path), mPoints(points) {}

  /// Throws the two faults of an operation; the texts are the caller's.
  const PointList* list(const char* missingList) const;
  UxZel::IZelBezierPoint* point(unsigned int index, const char* missingList,
                                const char* missingPoint) const;

  const UxZel::IZel3DPath* mPath;
  const PointList* mPoints;
};

}  // namespace Norvel::Vexa
