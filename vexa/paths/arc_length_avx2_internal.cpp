// Compiled for AVX2. What is inline in here must not be shared with other sources, or the linker
// might take this copy for all of them; hence no standard headers beyond those of Float8.h.
#include "vexa/math/simd/Float8.h"
#include "vexa/paths/arc_length_lanes_internal.h"

namespace Norvel::Vexa::arc_length {

void measureEight(const float* controls, float* lengths) { measure<AvxFloat8>(controls, lengths); }

}  // namespace Norvel::Vexa::arc_length
