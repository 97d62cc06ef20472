#include "vexa/paths/arc_length_tables_internal.h"

#include <algorithm>

#include "vexa/math/simd/Float8.h"
#include "vexa/paths/arc_length_lanes_internal.h"

namespace Norvel::Vexa::arc_length {

namespace {

// The control points of segments as rows, one segment to a lane; the last is repeated.
template <std::size_t lanes>
void gather(const Curve* curves, std::size_t count, float (&rows)[12][lanes]) {
  for (std::size_t i = 0; i < lanes; ++i) {
    // The qualified names call the getters directly, without the virtual table.
    const Curve& curve = curves[std::min(i, count - 1)];
    const UXS::uxs_generic_vec3<float> points[4] = {
        curve.Curve::getStartValue(), curve.Curve::getStartControlPoint(),
        curve.Curve::getEndControlPoint(), curve.Curve::getEndValue()};
    for (std::size_t p = 0; p < 4; ++p) {
      rows[p][i] = points[p].x;
      rows[4 + p][i] = points[p].y;
      rows[8 + p][i] = points[p].z;
    }
  }
}

//   curves    0  1  2  3  4  5  6  7 | 8  9 10 .  .  .  .  .
//   lane      0  1  2  3  4  5  6  7 | 0  1  2  the last again, not stored
//
// `lengths` has a row for each of the sixteen entries and a lane for each segment; a table is a
// column of it.
template <std::size_t lanes>
void fillBy(void (*measureLanes)(const float*, float*), const Curve* curves, std::size_t count,
            Table* tables) {
  float controls[12][lanes], lengths[16][lanes];
  for (std::size_t first = 0; first < count; first += lanes) {
    const std::size_t used = std::min(lanes, count - first);
    gather(curves + first, used, controls);
    measureLanes(controls[0], lengths[0]);
    for (std::size_t i = 0; i < used; ++i) {
      for (std::size_t k = 0; k < 16; ++k) tables[first + i][k] = lengths[k][i];
    }
  }
}

}  // namespace

void fillTables(const Curve* curves, std::size_t count, Table* tables) {
#if defined(VEXA_AVX2)
  // One segment alone would fill one lane of eight.
  if (count > 1 && __builtin_cpu_supports("avx2")) {
    return fillBy<8>(measureEight, curves, count, tables);
  }
#endif
  fillBy<1>(measure<PlainFloat1>, curves, count, tables);
}

}  // namespace Norvel::Vexa::arc_length
