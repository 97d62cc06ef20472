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

/// Draws posed frames side by side and writes them as PNG.
///
/// Poses are seen from above at an angle, on a ground with a grid of round scene units and a soft
/// shadow. They are shaded in the colours of their triangles, else in one shade per material. Each
/// picture follows the meshes of its frame; all have one scale. The fewer frames, the larger the
/// pictures. `frames` names the frames of the meshes, in order, and becomes the captions. `ground`
/// are lines drawn on the ground, such as paths. Points that are not finite are left out.
void writeContactSheet(const std::string& path, const std::vector<formats::MovingMesh>& meshes,
                       const std::vector<int>& frames,
                       const std::vector<std::vector<UxZel::CZelPoint>>& ground);

}  // namespace vexa::plot
