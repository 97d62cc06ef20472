#pragma once

#include "vexa/Export.h"
#include "vexa/host/CZelPoint.h"
#include "vexa/host/IZelBezierPoint.h"

namespace Norvel::Vexa {

/// Reads one Bezier point of the host: turns its control offsets into absolute control points and
/// weights. In scene units, double precision.
class VEXA_EXPORT XCBezierPointTool {
 public:
  /// The point is borrowed, must not be null and must outlive the tool.
  explicit XCBezierPointTool(const UxZel::IZelBezierPoint* point) : mPoint(point) {}
  virtual ~XCBezierPointTool() = default;

  /// The control point through which the path arrives: passage point + before offset.
  UxZel::CZelPoint getBeforeCtrlPoint() const;
  /// The control point towards which the path leaves: passage point + after offset.
  UxZel::CZelPoint getAfterCtrlPoint() const;
  /// Lengths of the offsets: summed in double, the root taken in float.
  float getBeforeCtrlPtWeight() const;
  float getAfterCtrlPtWeight() const;

 private:
  const UxZel::IZelBezierPoint* mPoint;
};

}  // namespace Norvel::Vexa
