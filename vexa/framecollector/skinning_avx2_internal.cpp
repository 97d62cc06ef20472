// Compiled for AVX2. What is inline in here must not be shared with other sources, or the linker
// might take this copy for all of them; hence no standard headers beyond those of Quads.h.
#include "vexa/framecollector/skinning_lanes_internal.h"

namespace Norvel::Vexa::skinning {

const Kernels kAvx2Kernels = kernelsOver<AvxQuads>();

}  // namespace Norvel::Vexa::skinning
