#pragma once

/// What path tables are measured against.
namespace vexa::benchmarks {

/// The square roots of `count` numbers, one after the other.
void scalarRoots(const float* in, float* out, int count);

}  // namespace vexa::benchmarks
