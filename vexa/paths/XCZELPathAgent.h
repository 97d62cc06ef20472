#pragma once

#include "vexa/Export.h"
#include "vexa/paths/XTHostPoints.h"

namespace Norvel::Vexa {

extern template class VEXA_EXPORT
    XTHostPoints<XTPathAgent<UXS::uxs_generic_vec3<float>, UXS::uxs_generic_vec3<float>, float>>;

/// Reads and edits the points of a host path, narrowed to float and widened again.
///
/// The getters are those of XTHostPoints; the setters throw likewise, before anything is changed.
class VEXA_EXPORT XCZELPathAgent
    : public XTHostPoints<
          XTPathAgent<UXS::uxs_generic_vec3<float>, UXS::uxs_generic_vec3<float>, float>> {
 public:
  /// The path is borrowed and must outlive this; its list of points is asked for once, here. A null
  /// path is one without a list.
  explicit XCZELPathAgent(UxZel::IZel3DPath* path);
  /// Edits the points of a list without their path: points cannot be added or removed. The list is
  /// borrowed, may be null and must outlive this.
  explicit XCZELPathAgent(const PointList* points);

  /// Both throw std::runtime_error on an agent built from a list, and without a list of points.
  /// Required behaviour: the text for an agent built from a list names addNewPointAt for both.
  bool addNewPointAt(unsigned int index) override;
  bool removePointAt(unsigned int index) override;

  void setPassagePointPositionAt(unsigned int index, const V3& position) override;
  void setBeforeControlPointAt(unsigned int index, const V3& control) override;
  void setAfterControlPointAt(unsigned int index, const V3& control) override;
  void setToBeforeCtrlPtAt(unsigned int index, const V3& offset) override;
  void setToAfterCtrlPtAt(unsigned int index, const V3& offset) override;
  void setTangentLockedAt(unsigned int index, bool locked) override;
  /// Throws std::runtime_error without a path.
  void setPathClosed(bool closed) override;
  /// Nothing: the host hears of every edit at once.
  void BlockSynchronization() override;
  void UnBlockSynchronization() override;
  ~XCZELPathAgent() override;

 private:
  PointList* editableList(const char* missingList) const;

  bool mBuiltFromPath;
};

}  // namespace Norvel::Vexa
