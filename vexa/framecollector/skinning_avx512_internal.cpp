// Compiled for AVX-512. What is inline in here must not be shared with other sources, or the linker
// might take this copy for all of them; hence no standard headers beyond those of Quads.h.
#include "vexa/framecollector/skinning_lanes_internal.h"

namespace Norvel::Vexa::skinning {

const Kernels kAvx512Kernels = kernelsOver<Avx512Quads>();

}  // namespace Norvel::Vexa::skinning
