#include "vexa/paths/XC3DPath.h"

#include <stdexcept>

namespace Norvel::Vexa {

// A list that is missing is a fault here; the base would only leave the path empty.
XC3DPath::XC3DPath(const XCZELPathInfo* info) : XTBezierPath(info) {
  if (info == nullptr || !info->PointsMgrExist()) {
    throw std::runtime_error("XC3DPath::XC3DPath - probleme path ! ");
  }
  createBezierCurve();
}

XC3DPath::~XC3DPath() = default;

}  // namespace Norvel::Vexa
