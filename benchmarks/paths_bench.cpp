#include <benchmark/benchmark.h>
#include <vector>

#include "benchmarks/paths_references.h"
#include "models/literal_path.h"
#include "refhost/scenes/paths.h"
#include "vexa/paths/XC3DPath.h"

namespace vexa::benchmarks {

namespace {

using Norvel::Vexa::XC3DPath;
using Norvel::Vexa::XCZELPathInfo;

constexpr int kRootsPerSegment = 80;  // sixteen pieces of five legs

// Points in memory, so that next to nothing but the tables is measured.
struct MemoryInfo final : Norvel::Vexa::XTPathInfo<models::V3, models::V3, float> {
  using V3 = models::V3;

  explicit MemoryInfo(const XCZELPathInfo& info) {
    for (unsigned int i = 0; i < info.getNbBezierPoints(); ++i) {
      passage.push_back(info.getPassagePointPositionAt(i));
      before.push_back(info.getBeforeControlPointAt(i));
      after.push_back(info.getAfterControlPointAt(i));
    }
  }
  bool PointsMgrExist() const override { return true; }
  unsigned int getNbBezierPoints() const override { return unsigned(passage.size()); }
  V3 getPassagePointPositionAt(unsigned int i) const override { return passage[i]; }
  V3 getBeforeControlPointAt(unsigned int i) const override { return before[i]; }
  V3 getAfterControlPointAt(unsigned int i) const override { return after[i]; }
  V3 getToBeforeCtrlPtAt(unsigned int i) const override { return before[i] - passage[i]; }
  V3 getToAfterCtrlPtAt(unsigned int i) const override { return after[i] - passage[i]; }
  float getAfterControlPointWeightAt(unsigned int) const override { return 0; }
  float getBeforeControlPointWeightAt(unsigned int) const override { return 0; }
  bool getTangentLockedAt(unsigned int) const override { return false; }
  bool getPathClosed() const override { return false; }

  std::vector<V3> passage, before, after;  // one of each per point
};

// The arc-length tables of a path, whose cost is its square roots: sixteen pieces of five legs
// each.
void tables(benchmark::State& state) {
  const refhost::Path host = refhost::scenes::windingPath(int(state.range(0)));
  const XCZELPathInfo hostInfo(&host);
  const MemoryInfo info(hostInfo);
  for (auto _ : state) {
    Norvel::Vexa::XTBezierPath<models::V3, models::V3, float> path(&info);
    path.createBezierCurve();
    benchmark::DoNotOptimize(path.getTotalLength());
  }
}

// As many square roots as the tables of that path take, and nothing else.
void roots(benchmark::State& state) {
  const int count = int(state.range(0)) * kRootsPerSegment;
  std::vector<float> in(std::size_t(count), 2.0f), out(in.size());
  for (auto _ : state) {
    scalarRoots(in.data(), out.data(), count);
    benchmark::ClobberMemory();
  }
}

// The place at 0.7 of a path that the host has just handed over. Both sides read the host alike.
void request(benchmark::State& state) {
  const refhost::Path host = refhost::scenes::windingPath(int(state.range(0)));
  for (auto _ : state) {
    const XCZELPathInfo info(&host);
    benchmark::DoNotOptimize(XC3DPath(&info).valueAt(0.7f));
  }
}

void requestLiteral(benchmark::State& state) {
  const refhost::Path host = refhost::scenes::windingPath(int(state.range(0)));
  for (auto _ : state) {
    const XCZELPathInfo info(&host);
    benchmark::DoNotOptimize(models::LiteralPath(info).valueAt(0.7f));
  }
}

BENCHMARK(tables)->Arg(100);
BENCHMARK(roots)->Arg(100);
BENCHMARK(request)->Arg(100)->Arg(1000);
BENCHMARK(requestLiteral)->Arg(100)->Arg(1000);

}  // namespace

}  // namespace vexa::benchmarks
