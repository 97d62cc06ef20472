#include "vexa/framecollector/skinning_internal.h"

#include "vexa/framecollector/skinning_lanes_internal.h"

namespace Norvel::Vexa::skinning {

const Kernels kPlainKernels = kernelsOver<PlainQuads>();
const Kernels kBaselineKernels = kernelsOver<Quads>();

// The three features are what the compiler may use for the AVX-512 sources. A machine is asked at
// each call, which is a load and a test.
const Kernels& kernels() {
#if defined(VEXA_NEWER_MACHINES)
  if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl") &&
      __builtin_cpu_supports("avx512dq")) {
    return kAvx512Kernels;
  }
  if (__builtin_cpu_supports("avx2")) return kAvx2Kernels;
#endif
  return kBaselineKernels;
}

}  // namespace Norvel::Vexa::skinning
