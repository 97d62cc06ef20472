#pragma once

#include "vexa/Export.h"
#include "vexa/host/IZel3DPath.h"
#include "vexa/paths/XTPathInfo.h"

namespace Norvel::Vexa {

/// Reads the points of a host path, narrowed to float.
///
/// Every operation by index, and getNbBezierPoints, throws std::runtime_error when the path has no
/// list of points ("XC3DPath::<operation> - can not get path's BezierPointsMgr") and when the list
/// has no such point ("XCZELPathAgent::<operation> : can not get BezierPoint (pointer is NULL)").
class VEXA_EXPORT XCZELPathInfo
    : public XTPathInfo<UXS::uxs_generic_vec3<float>, UXS::uxs_generic_vec3<float>, float> {
 public:
  using V3 = UXS::uxs_generic_vec3<float>;

  /// The path is borrowed and must outlive this; its list of points is asked for once, here. A null
  /// path is one without a list.
  explicit XCZELPathInfo(const UxZel::IZel3DPath* path);

  bool PointsMgrExist() const override;
  /// A negative count of the host is none.
  unsigned int getNbBezierPoints() const override;
  V3 getPassagePointPositionAt(unsigned int index) const override;
  V3 getBeforeControlPointAt(unsigned int index) const override;
  V3 getAfterControlPointAt(unsigned int index) const override;
  V3 getToBeforeCtrlPtAt(unsigned int index) const override;
  V3 getToAfterCtrlPtAt(unsigned int index) const override;
  float getAfterControlPointWeightAt(unsigned int index) const override;
  float getBeforeControlPointWeightAt(unsigned int index) const override;
  bool getTangentLockedAt(unsigned int index) const override;
  /// A null path is not closed.
  bool getPathClosed() const override;
  ~XCZELPathInfo() override;

 private:
  const UxZel::IZel3DPath* mPath;
  const UxZel::TZelObjectMgr<UxZel::IZelBezierPoint>* mPoints;
};

}  // namespace Norvel::Vexa
