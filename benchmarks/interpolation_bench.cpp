#include <benchmark/benchmark.h>
#include <cmath>

#include "vexa/interpolation/timed_curves.h"

namespace vexa::benchmarks {

namespace {

using namespace Norvel::Vexa;

// One call at each of 1024 times over the whole interval [0, 10]. No time is an end, where a curve
// computes nothing, and half of them lie in each half of the square curves.
template <class Call>
void atEachTime(benchmark::State& state, Call call) {
  constexpr int kTimes = 1024;
  for (auto _ : state) {
    for (int i = 0; i < kTimes; ++i) benchmark::DoNotOptimize(call(10.0 * (i + 0.5) / kTimes));
  }
  state.SetItemsProcessed(state.iterations() * kTimes);
}

// The floor of the cosine curves: each takes one sine.
void sine(benchmark::State& state) {
  atEachTime(state, [](double t) { return std::sin(t); });
}
// The free functions, which make the curve anew for each value as the manager does.
void lerp(benchmark::State& state) {
  atEachTime(state, [](double t) { return Lerp(0, 10, 1.0, 2.0, t); });
}
void sinerp(benchmark::State& state) {
  atEachTime(state, [](double t) { return Sinerp(0, 10, 1.0, 2.0, t); });
}
void sqerp(benchmark::State& state) {
  atEachTime(state, [](double t) { return Sqerp(0, 10, 1.0, 2.0, t); });
}
void oneMinSqerp(benchmark::State& state) {
  atEachTime(state, [](double t) { return OneMinSqerp(0, 10, 1.0, 2.0, t); });
}

BENCHMARK(sine);
BENCHMARK(lerp);
BENCHMARK(sinerp);
BENCHMARK(sqerp);
BENCHMARK(oneMinSqerp);

}  // namespace

}  // namespace vexa::benchmarks
