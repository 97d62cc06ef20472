#include "vexa/paths/XCZELPathInfo.h"

namespace Norvel::Vexa {

XCZELPathInfo::XCZELPathInfo(const UxZel::IZel3DPath* path)
    : XTHostPoints(path, path != nullptr ? path->GetBezierPoints() : nullptr) {}

XCZELPathInfo::~XCZELPathInfo() = default;

}  // namespace Norvel::Vexa
