#pragma once

#include "vexa/Export.h"
#include "vexa/paths/XTHostPoints.h"

namespace Norvel::Vexa {

extern template class VEXA_EXPORT
    XTHostPoints<XTPathInfo<UXS::uxs_generic_vec3<float>, UXS::uxs_generic_vec3<float>, float>>;

/// Reads the points of a host path; see XTHostPoints.
class VEXA_EXPORT XCZELPathInfo
    : public XTHostPoints<
          XTPathInfo<UXS::uxs_generic_vec3<float>, UXS::uxs_generic_vec3<float>, float>> {
 public:
  /// The path is borrowed and must outlive this; its list of points is asked for once, here. A null
  /// path is one without a list.
  explicit XCZELPathInfo(const UxZel::IZel3DPath* path);
  ~XCZELPathInfo() override;
};

}  // namespace Norvel::Vexa
