#include <benchmark/benchmark.h>
#include <new>

#include "benchmarks/math_references.h"
#include "vexa/math/ux_matrix44.h"

namespace vexa::benchmarks {

namespace {

using Norvel::Vexa::ux_matrix44;
using Norvel::Vexa::ux_point3;

constexpr int kMatrices = 100;  // in the first-level cache together with their results
constexpr int kPoints = 500;

// Operands and results of both sides: plain values, and the same bytes as our types.
template <class T>
struct Operands {
  alignas(64) T matrices[kMatrices * 16], results[kMatrices * 16];
  alignas(64) T points[kPoints * 3], moved[kPoints * 3];
  ux_matrix44<T> ours[kMatrices], ourResults[kMatrices];
  ux_point3<T> ourPoints[kPoints], ourMoved[kPoints];

  Operands() {
    unsigned state = 1;
    const auto next = [&] {
      return T(int((state = state * 1664525 + 1013904223) >> 8)) / T(1 << 24);
    };
    for (int i = 0; i < kMatrices * 16; ++i) {
      matrices[i] = ours[i / 16].e[i % 16] = next() + T(i % 5 == 0);  // far from singular
    }
    for (int i = 0; i < kPoints * 3; ++i) points[i] = ourPoints[i / 3][i % 3] = next();
  }
};
// Static, because they are larger than a stack frame should be.
template <class T>
Operands<T>& operands() {
  static Operands<T> sOperands;
  return sOperands;
}

// The compiler must take the operands for changed before each call and the results for read after
// it.
template <class T, class Call>
void measure(benchmark::State& state, int items, Call call) {
  Operands<T>& o = operands<T>();
  for (auto _ : state) {
    benchmark::DoNotOptimize(&o);
    call(o);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * items);
}

template <class T>
void inverse(benchmark::State& state) {
  measure<T>(state, kMatrices, [](Operands<T>& o) {
    // Made in place, as Eigen writes its result; an assignment would copy it once more.
    for (int i = 0; i < kMatrices; ++i) new (&o.ourResults[i]) ux_matrix44<T>(o.ours[i].invert());
  });
}
template <class T>
void inverseEigen(benchmark::State& state) {
  measure<T>(state, kMatrices,
             [](Operands<T>& o) { eigenInvert(o.matrices, o.results, kMatrices); });
}

// Products of neighbours, so that each matrix is loaded twice, as in a chain of transformations.
template <class T>
void product(benchmark::State& state) {
  measure<T>(state, kMatrices - 1, [](Operands<T>& o) {
    for (int i = 0; i < kMatrices - 1; ++i) o.ourResults[i] = o.ours[i] * o.ours[i + 1];
  });
}
template <class T>
void productGlm(benchmark::State& state) {
  measure<T>(state, kMatrices - 1, [](Operands<T>& o) {
    glmMultiply(o.matrices, o.matrices + 16, o.results, kMatrices - 1);
  });
}

// One matrix for many points. The copy tells the compiler that no result overwrites it; the others
// have one, too.
template <class T>
void transform(benchmark::State& state) {
  measure<T>(state, kPoints, [](Operands<T>& o) {
    const ux_matrix44<T> m = o.ours[0];
    for (int i = 0; i < kPoints; ++i) o.ourMoved[i] = m * o.ourPoints[i];
  });
}
template <class T>
void transformEigen(benchmark::State& state) {
  measure<T>(state, kPoints,
             [](Operands<T>& o) { eigenTransform(o.matrices, o.points, o.moved, kPoints); });
}
template <class T>
void transformGlm(benchmark::State& state) {
  measure<T>(state, kPoints,
             [](Operands<T>& o) { glmTransform(o.matrices, o.points, o.moved, kPoints); });
}

BENCHMARK(inverse<float>);
BENCHMARK(inverseEigen<float>);
BENCHMARK(inverse<double>);
BENCHMARK(inverseEigen<double>);
BENCHMARK(product<float>);
BENCHMARK(productGlm<float>);
BENCHMARK(product<double>);
BENCHMARK(productGlm<double>);
BENCHMARK(transform<float>);
BENCHMARK(transformEigen<float>);
BENCHMARK(transformGlm<float>);
BENCHMARK(transform<double>);
BENCHMARK(transformEigen<double>);
BENCHMARK(transformGlm<double>);

}  // namespace

}  // namespace vexa::benchmarks
