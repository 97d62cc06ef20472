// The main operations at sizes that double over three decades, for scripts/bench --growth.
#include <benchmark/benchmark.h>
#include <filesystem>

#include "benchmarks/torus.h"
#include "refhost/scenes/paths.h"
#include "refhost/scenes/properties.h"
#include "refhost/scenes/walker.h"
#include "scene/fixtures/walker_animation.h"
#include "vexa/vexa.h"

namespace vexa::benchmarks {

namespace {

using Norvel::Vexa::XCFrameCollector;
using Norvel::Vexa::XIAnimationMgr;
using Matrix = UXS::uxs_generic_mat4<float>;

constexpr unsigned kNodes = 8;

XIAnimationMgr& manager() {
  static XIAnimationMgr* sManager = XIAnimationMgr::Create();
  return *sManager;
}

void addFrames(XCFrameCollector& ioCollector, unsigned takes, unsigned frames) {
  for (unsigned t = 0; t < takes; ++t) ioCollector.CreateTake();
  for (unsigned n = 0; n < kNodes; ++n) {
    int node = -1;
    for (unsigned f = 0; f < takes * frames; ++f) {
      Matrix matrix;
      matrix.e[12] = float(f + n);
      node = int(ioCollector.AddTransformation(matrix, f / frames, node));
    }
  }
}

// A frame of a torus of `vertices` vertices with `links` links each.
void frame(benchmark::State& state, unsigned vertices, unsigned links, Materials materials) {
  const auto rest = makeTorus({16, vertices / 16}, materials);
  XCFrameCollector collector(rest.get());
  addFrames(collector, 1, 30);
  Dice dice;
  for (unsigned v = 0; v < vertices; ++v) {
    for (unsigned i = 0; i < links; ++i) {
      collector.AddLink(int(dice.below(kNodes)), {}, v, 0.05 + double(dice.real()));
    }
  }
  unsigned shown = 0;
  collector.GetCurrentDefinition(0, 29, {});
  for (auto _ : state) {
    shown = (shown + 1) % 30;
    benchmark::DoNotOptimize(collector.GetCurrentDefinition(0, shown, {})->GetEdgesArray().data());
  }
}

void vertices(benchmark::State& state) {
  frame(state, unsigned(state.range(0)), 4, Materials::kBands);
}
void links(benchmark::State& state) {
  frame(state, 256, unsigned(state.range(0)), Materials::kNoTriangles);
}

void fill(benchmark::State& state, unsigned takes, unsigned frames) {
  UXS::Mesh mesh;
  for (auto _ : state) {
    XCFrameCollector collector(&mesh);
    addFrames(collector, takes, frames);
    benchmark::DoNotOptimize(collector.GetSize());
  }
}
void takes(benchmark::State& state) { fill(state, unsigned(state.range(0)), 4); }
void frames(benchmark::State& state) { fill(state, 1, unsigned(state.range(0))); }

void keys(benchmark::State& state) {
  const int count = int(state.range(0));
  const refhost::Property property = refhost::scenes::manyKeys(count);
  int at = 0;
  for (auto _ : state) {
    at = (at + 7) % (10 * count);
    auto result = manager().InterpolateValue(nullptr, &property, at, nullptr, nullptr);
    benchmark::DoNotOptimize(result);
  }
}

void segments(benchmark::State& state) {
  const refhost::Path host = refhost::scenes::windingPath(int(state.range(0)));
  for (auto _ : state) {
    const Norvel::Vexa::XCZELPathInfo info(&host);
    benchmark::DoNotOptimize(Norvel::Vexa::XC3DPath(&info).valueAt(0.7f));
  }
}

// The first commit of a mesh that has four triangles of each material.
void sections(benchmark::State& state) {
  const unsigned count = unsigned(state.range(0));
  for (auto _ : state) {
    state.PauseTiming();
    UXS::Mesh mesh;
    {
      UXS::Mesh::Editor editor(mesh, false);
      for (unsigned s = 0; s < count; ++s) {
        for (unsigned v = 0; v < 6; ++v) editor.AddVertex({float(v / 2), float(v % 2), float(s)});
        for (unsigned v = 0; v < 4; ++v) {
          editor.AddTriangle({6 * s + v, 6 * s + v + 1, 6 * s + v + 2}, s);
        }
      }
      state.ResumeTiming();
    }
    benchmark::DoNotOptimize(mesh.GetSectionsCount());
  }
}

// Driving that many walkers for one frame.
void instances(benchmark::State& state) {
  refhost::Scene scene =
      refhost::scenes::walk(refhost::scenes::windingPath(10), int(state.range(0)), 1000);
  const std::string file = std::filesystem::temp_directory_path() / "vexa_bench_growth.amo";
  writeAnimationFile(scene::walkerAnimation(), file);
  refhost::AnimatedObject& walker = *scene.mDefinitions[0].mAnimatedObject;
  XIAnimationMgr* const mgr = XIAnimationMgr::Create();
  for (refhost::Instance& instance : scene.mInstances.mElements) {
    mgr->RegisterAnimatedObject(&instance, &walker, file.c_str(), "", &walker.mPoints,
                                &walker.mPolygons);
  }
  std::filesystem::remove(file);
  int at = 0;
  for (auto _ : state) {
    at = (at + 1) % 200;
    for (const refhost::Property& property : scene.mProperties) {
      mgr->ManageAnimatedObjectInstance(&scene, &scene.mInstances.mElements[property.mInstance],
                                        &scene.mDefinitions[0], &property, at, nullptr);
    }
  }
  mgr->Delete();
}

BENCHMARK(vertices)->RangeMultiplier(2)->Range(256, 262144);
BENCHMARK(links)->RangeMultiplier(2)->Range(1, 1024);
BENCHMARK(takes)->RangeMultiplier(2)->Range(4, 4096);
BENCHMARK(frames)->RangeMultiplier(2)->Range(16, 16384);
BENCHMARK(keys)->RangeMultiplier(2)->Range(16, 16384);
BENCHMARK(segments)->RangeMultiplier(2)->Range(8, 8192);
BENCHMARK(sections)->RangeMultiplier(2)->Range(16, 16384);
BENCHMARK(instances)->RangeMultiplier(2)->Range(8, 8192);

}  // namespace

}  // namespace vexa::benchmarks
