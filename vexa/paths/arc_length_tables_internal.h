#pragma once

#include <array>
#include <cstddef>

#include "vexa/paths/XTBezierCurve.h"

namespace Norvel::Vexa::arc_length {

using Curve = XTBezierCurve<UXS::uxs_generic_vec3<float>, UXS::uxs_generic_vec3<float>, float>;
using Table = std::array<float, 16>;

// Fills the arc-length table of each of `count` segments, several segments at a time where the
// machine can; the bits do not depend on it.
void fillTables(const Curve* curves, std::size_t count, Table* tables);

}  // namespace Norvel::Vexa::arc_length
