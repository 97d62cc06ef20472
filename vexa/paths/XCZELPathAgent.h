#pragma once

#include "vexa/Export.h"
#include "vexa/host/IZel3DPath.h"
#include "vexa/paths/XTPathAgent.h"

namespace Norvel::Vexa {

/// Reads and edits the points of a host path, narrowed to float and widened again.
///
/// The getters throw as those of XCZELPathInfo; the setters likewise, before anything is changed.
class VEXA_EXPORT XCZELPathAgent
    : public XTPathAgent<UXS::uxs_generic_vec3<float>, UXS::uxs_generic_vec3<float>, float> {
 public:
  using V3 = UXS::uxs_generic_vec3<float>;
  using PointList = UxZel::TZelObjectMgr<UxZel::IZelBezierPoint>;

  /// The path is borrowed and must outlive this; its list of points is asked for once, here. A null
  /// path is one without a list.
  explicit XCZELPathAgent(UxZel::IZel3DPath* path);
  /// Edits the points of a list without their path: points cannot be added or removed. The list is
  /// borrowed, may be null and must outlive this.
  explicit XCZELPathAgent(const PointList* points);

  bool PointsMgrExist() const override;
  /// A negative count of the host is none.
  unsigned int getNbBezierPoints() const override;
  /// Both throw std::runtime_error on an agent built from a list, and without a list of points.
  /// Required behaviour: the text for an agent built from a list names addNewPointAt for both.
  bool addNewPointAt(unsigned int index) override;
  bool removePointAt(unsigned int index) override;

  V3 getPassagePointPositionAt(unsigned int index) const override;
  void setPassagePointPositionAt(unsigned int index, const V3& point) override;
  V3 getBeforeControlPointAt(unsigned int index) const override;
  void setBeforeControlPointAt(unsigned int index, const V3& point) override;
  V3 getAfterControlPointAt(unsigned int index) const override;
  void setAfterControlPointAt(unsigned int index, const V3& point) override;
  V3 getToBeforeCtrlPtAt(unsigned int index) const override;
  void setToBeforeCtrlPtAt(unsigned int index, const V3& offset) override;
  V3 getToAfterCtrlPtAt(unsigned int index) const override;
  void setToAfterCtrlPtAt(unsigned int index, const V3& offset) override;
  float getAfterControlPointWeightAt(unsigned int index) const override;
  float getBeforeControlPointWeightAt(unsigned int index) const override;
  bool getTangentLockedAt(unsigned int index) const override;
  void setTangentLockedAt(unsigned int index, bool locked) override;

  /// Without a path it is not closed.
  bool getPathClosed() const override;
  /// Throws std::runtime_error without a path.
  void setPathClosed(bool closed) override;
  /// Nothing: the host hears of every edit at once.
  void BlockSynchronization() override;
  void UnBlockSynchronization() override;
  ~XCZELPathAgent() override;

 private:
  PointList* editableList(const char* operation) const;

  UxZel::IZel3DPath* mPath;
  PointList* mEditablePoints;  // null when built from a list
  const PointList* mPoints;
  bool mBuiltFromPath;
};

}  // namespace Norvel::Vexa
