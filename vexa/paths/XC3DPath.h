#pragma once

#include "vexa/Export.h"
#include "vexa/paths/XCZELPathInfo.h"
#include "vexa/paths/XTBezierPath.h"

namespace Norvel::Vexa {

/// The Bezier path of one host path, ready for valueAt and directionAt once constructed.
class VEXA_EXPORT XC3DPath
    : public XTBezierPath<UXS::uxs_generic_vec3<float>, UXS::uxs_generic_vec3<float>, float> {
 public:
  /// The info is borrowed and must outlive the path. Throws std::runtime_error when it has no list
  /// of points; what reading the points throws passes.
  explicit XC3DPath(const XCZELPathInfo* info);
  ~XC3DPath() override;
};

}  // namespace Norvel::Vexa
