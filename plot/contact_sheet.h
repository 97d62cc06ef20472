#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "formats/MovingMesh.h"
#include "vexa/host/CZelPoint.h"

namespace vexa::plot {

/// Which of `count` frames a sheet shows: at most twelve, evenly spread, with the first and the
/// last.
std::vector<std::size_t> contactSheetFrames(std::size_t count);

/// Draws posed frames side by side, flatly shaded and seen from above at an angle, and writes them
/// as PNG.
///
/// `frames` names the frames of the meshes, in order, and becomes the captions. `ground` are lines
/// drawn under the meshes, such as paths. All pictures share one view, which holds everything.
/// Points that are not finite are left out.
void writeContactSheet(const std::string& path, const std::vector<formats::MovingMesh>& meshes,
                       const std::vector<int>& frames,
                       const std::vector<std::vector<UxZel::CZelPoint>>& ground);

}  // namespace vexa::plot
