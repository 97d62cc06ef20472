#include "benchmarks/paths_references.h"

#include <cmath>

namespace vexa::benchmarks {

void scalarRoots(const float* in, float* out, int count) {
  // Compilers keep the roots scalar, because each may set errno.
  for (int i = 0; i < count; ++i) out[i] = std::sqrt(in[i]);
}

}  // namespace vexa::benchmarks
