#include "vexa/paths/XC3DPath.h"

#include <stdexcept>

namespace Norvel::Vexa {

XC3DPath::XC3DPath(const XCZELPathInfo* info) : XTBezierPath(info) {
  if (info == nullptr || !info->PointsMgrExist()) {
    throw std::runtime_error("XC3DPath::XC3DPath - probleme path ! ");
  }
  createBezierCurve();
}

XC3DPath::~XC3DPath() = default;

}  // namespace Norvel::Vexa
