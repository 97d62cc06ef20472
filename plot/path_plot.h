#pragma once

#include <string>
#include <vector>

#include "vexa/host/CZelPoint.h"

namespace vexa::plot {

/// A path as it is drawn: finely sampled, with its points and control points.
struct PathDrawing {
  std::string mName;
  std::vector<UxZel::CZelPoint> mCurve;
  /// Three per passage point: the control point before, the point, the control point after.
  std::vector<UxZel::CZelPoint> mControls;
};

/// Where something that moves stood, frame after frame.
struct Track {
  std::string mName;
  std::vector<UxZel::CZelPoint> mPositions;
};

/// Draws paths and tracks as seen from above, +Y up the sheet, in one scale, and writes them as
/// SVG.
void writePathPlot(const std::string& path, const std::vector<PathDrawing>& paths,
                   const std::vector<Track>& tracks);

}  // namespace vexa::plot
