#include <benchmark/benchmark.h>
#include <filesystem>
#include <string>

#include "benchmarks/animation_references.h"
#include "models/literal_path.h"
#include "refhost/scenes/paths.h"
#include "refhost/scenes/properties.h"
#include "refhost/scenes/walker.h"
#include "scene/fixtures/walker_animation.h"
#include "vexa/vexa.h"

namespace vexa::benchmarks {

namespace {

using namespace refhost;

// One manager for all rows, as a host has one: its path cache is warm except where a row says so.
Norvel::Vexa::XIAnimationMgr& manager() {
  static Norvel::Vexa::XIAnimationMgr* sManager = Norvel::Vexa::XIAnimationMgr::Create();
  return *sManager;
}

// The floor of interpolateValue: every search for the nearest keys asks each key for its frame.
template <int Count>
void walkKeys(benchmark::State& state) {
  const Property property = scenes::manyKeys(Count);
  for (auto _ : state) benchmark::DoNotOptimize(sumOfKeyFrames(property));
}
BENCHMARK(walkKeys<16>);
BENCHMARK(walkKeys<64>);
BENCHMARK(walkKeys<512>);

// A real value between two of `Count` keys. Steps of seven frames visit all spans, so that no
// branch can be learned from one span.
template <int Count>
void interpolateValue(benchmark::State& state) {
  const Property property = scenes::manyKeys(Count);
  int frame = 0;
  for (auto _ : state) {
    frame = (frame + 7) % (10 * Count);
    auto result = manager().InterpolateValue(nullptr, &property, frame, nullptr, nullptr);
    benchmark::DoNotOptimize(result);
  }
}
BENCHMARK(interpolateValue<16>);
BENCHMARK(interpolateValue<64>);
BENCHMARK(interpolateValue<512>);

// Where a cart is on a path of 100 segments. `edited`: one point moves before each request, so
// that the path is built anew.
void positionOnPath(benchmark::State& state, bool edited) {
  Scene scene = scenes::ride(scenes::windingPath(100));
  double& number = scene.mPaths.mElements[0].mPoints.mElements[50].mPassage.z;
  int frame = 0;
  for (auto _ : state) {
    frame = (frame + 7) % 100;
    if (edited) number = 0.01 * frame;
    auto result =
        manager().InterpolateValue(&scene, scene.mProperties.data(), frame, nullptr, nullptr);
    benchmark::DoNotOptimize(result);
  }
}
BENCHMARK_CAPTURE(positionOnPath, unchanged, false);
BENCHMARK_CAPTURE(positionOnPath, edited, true);

// The literal form of such a request: the tables of all segments, then one place.
void positionOnLiteralPath(benchmark::State& state) {
  const Path path = scenes::windingPath(100);
  for (auto _ : state) {
    const Norvel::Vexa::XCZELPathInfo info(&path);
    benchmark::DoNotOptimize(models::LiteralPath(info).valueAt(0.7f));
  }
}
BENCHMARK(positionOnLiteralPath);

// A crowd as a large scene has it: many walkers, few paths.
constexpr int kWalkers = 10000;
constexpr int kPaths = 100;
constexpr int kSegments = 10;

// The walker's animation file, while it is needed.
class WalkerFile {
 public:
  WalkerFile() { writeAnimationFile(vexa::scene::walkerAnimation(), mPath); }
  ~WalkerFile() { std::filesystem::remove(mPath); }
  WalkerFile(const WalkerFile&) = delete;
  WalkerFile& operator=(const WalkerFile&) = delete;
  const char* c_str() const { return mPath.c_str(); }

 private:
  std::string mPath = std::filesystem::temp_directory_path() / "vexa_bench_walker.amo";
};

// Registered walkers, each on one of the paths in turn.
Scene& crowd() {
  // Made once: registering takes longer than many frames of driving.
  static Scene sScene = [] {
    Scene scene = scenes::walk(scenes::windingPath(kSegments), kWalkers, 1000);
    for (unsigned int i = 1; i < kPaths; ++i) {
      Path path = scenes::windingPath(kSegments);
      path.mIdentity.mUUID = numberedUUID(100000 + i);
      scene.mPaths.add(path);
    }
    for (std::size_t i = 0; i < scene.mProperties.size(); ++i) {
      scene.mProperties[i].mPath = scene.mPaths.mElements[i % kPaths].mIdentity.mUUID;
    }
    const WalkerFile file;
    AnimatedObject& walker = *scene.mDefinitions[0].mAnimatedObject;
    for (Instance& instance : scene.mInstances.mElements) {
      manager().RegisterAnimatedObject(&instance, &walker, file.c_str(), "", &walker.mPoints,
                                       &walker.mPolygons);
    }
    return scene;
  }();
  return sScene;
}

// One frame of the whole crowd. Frames 0 to 199 keep every walker on its path.
void driveCrowd(benchmark::State& state) {
  Scene& scene = crowd();
  int frame = 0;
  for (auto _ : state) {
    frame = (frame + 1) % 200;
    for (const Property& property : scene.mProperties) {
      manager().ManageAnimatedObjectInstance(&scene,
                                             &scene.mInstances.mElements[property.mInstance],
                                             scene.mDefinitions.data(), &property, frame, nullptr);
    }
  }
  state.SetItemsProcessed(state.iterations() * kWalkers);
}
BENCHMARK(driveCrowd)->Unit(benchmark::kMicrosecond);

// What a driven crowd cannot do without: the calls on the host and three anchors for each walker,
// at the first frame of its take, at the one shown and at the last. The collector is filled like
// the manager's own, which nobody can reach.
void callHostAndTransformAnchors(benchmark::State& state) {
  Scene& scene = crowd();
  const AnimatedObject& object = *scene.mDefinitions[0].mAnimatedObject;
  UXS::Mesh mesh;
  {
    UXS::Mesh::Editor editor(mesh, false);
    for (const UxZel::CZelPoint& p : object.mPoints.mElements) {
      editor.AddVertex({float(p.x), float(p.y), float(p.z)});
    }
  }
  Norvel::Vexa::XCFrameCollector collector(&mesh);
  const WalkerFile file;
  Norvel::XCAMOFileIOTool(file.c_str()).Read(&collector);
  const auto* anchor = mesh.GetVerticesArray().data();
  unsigned int frame = 0;
  for (auto _ : state) {
    frame = (frame + 1) % 24;
    for (const Property& property : scene.mProperties) {
      double read = callHost(scene, property, scene.mInstances.mElements[property.mInstance],
                             scene.mDefinitions[0]);
      benchmark::DoNotOptimize(read);
      for (const unsigned int takeFrame : {0u, frame, 24u}) {
        auto point = collector.TransformPoint(anchor, 0, takeFrame);
        benchmark::DoNotOptimize(point);
      }
    }
  }
}
BENCHMARK(callHostAndTransformAnchors)->Unit(benchmark::kMicrosecond);

}  // namespace

}  // namespace vexa::benchmarks
