#include <benchmark/benchmark.h>
#include <filesystem>
#include <string>

#include "benchmarks/animation_references.h"
#include "refhost/scenes/paths.h"
#include "refhost/scenes/properties.h"
#include "refhost/scenes/walker.h"
#include "scene/fixtures/walker_animation.h"
#include "vexa/vexa.h"

namespace vexa::benchmarks {

namespace {

using namespace refhost;

Norvel::Vexa::XIAnimationMgr& manager() {
  static Norvel::Vexa::XIAnimationMgr* sManager = Norvel::Vexa::XIAnimationMgr::Create();
  return *sManager;
}

template <int Count>
void walkKeys(benchmark::State& state) {
  const Property property = scenes::manyKeys(Count);
  for (auto _ : state) benchmark::DoNotOptimize(sumOfKeyFrames(property));
}
BENCHMARK(walkKeys<16>);
BENCHMARK(walkKeys<64>);
BENCHMARK(walkKeys<512>);

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

constexpr int kWalkers = 1000;
constexpr int kSegments = 10;

/// The walker's animation file, while it is needed.
class WalkerFile {
 public:
  WalkerFile() { writeAnimationFile(scene::walkerAnimation(), mPath); }
  ~WalkerFile() { std::filesystem::remove(mPath); }
  WalkerFile(const WalkerFile&) = delete;
  WalkerFile& operator=(const WalkerFile&) = delete;
  const char* c_str() const { return mPath.c_str(); }

 private:
  std::string mPath = std::filesystem::temp_directory_path() / "vexa_bench_walker.amo";
};

/// A thousand registered walkers on one path.
Scene& crowd() {
  static Scene sScene = [] {
    Scene scene = scenes::walk(scenes::windingPath(kSegments), kWalkers, 1000);
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

void driveCrowd(benchmark::State& state) {
  Scene& scene = crowd();
  int frame = 0;
  for (auto _ : state) {
    frame = (frame + 1) % 200;
    for (const Property& property : scene.mProperties) {
      manager().ManageAnimatedObjectInstance(&scene,
                                             &scene.mInstances.mElements[property.mInstance],
                                             &scene.mDefinitions[0], &property, frame, nullptr);
    }
  }
  state.SetItemsProcessed(state.iterations() * kWalkers);
}
BENCHMARK(driveCrowd)->Unit(benchmark::kMicrosecond);

/// What a driven crowd can not do without: a path, two places on it, three anchors, and calls on
/// the host for each walker.
void buildPaths(benchmark::State& state) {
  const Path& path = crowd().mPaths.mElements[0];
  float fraction = 0;
  for (auto _ : state) {
    for (int i = 0; i < kWalkers; ++i) {
      const Norvel::Vexa::XCZELPathInfo info(&path);
      const Norvel::Vexa::XC3DPath built(&info);
      fraction = fraction < 0.9f ? fraction + 0.001f : 0;
      auto place = built.valueAt(fraction), direction = built.directionAt(fraction);
      benchmark::DoNotOptimize(place);
      benchmark::DoNotOptimize(direction);
    }
  }
}
BENCHMARK(buildPaths)->Unit(benchmark::kMicrosecond);

void transformAnchors(benchmark::State& state) {
  const Scene scene = scenes::walk(scenes::straightPath(1), 1, 1);
  UXS::Mesh mesh;
  {
    UXS::Mesh::Editor editor(mesh, false);
    for (const UxZel::CZelPoint& p : scene.mDefinitions[0].mAnimatedObject->mPoints.mElements) {
      editor.AddVertex({static_cast<float>(p.x), static_cast<float>(p.y), static_cast<float>(p.z)});
    }
  }
  Norvel::Vexa::XCFrameCollector collector(&mesh);
  const WalkerFile file;
  Norvel::XCAMOFileIOTool(file.c_str()).Read(&collector);
  const auto* anchor = mesh.GetVerticesArray().data();
  unsigned int frame = 0;
  for (auto _ : state) {
    frame = (frame + 1) % 24;
    for (int i = 0; i < kWalkers; ++i) {
      for (const unsigned int takeFrame : {0u, frame, 24u}) {
        auto point = collector.TransformPoint(anchor, 0, takeFrame);
        benchmark::DoNotOptimize(point);
      }
    }
  }
}
BENCHMARK(transformAnchors)->Unit(benchmark::kMicrosecond);

void callHost(benchmark::State& state) {
  Scene& scene = crowd();
  const UxZel::CZelPoint point{1, 2, 3};
  const UxZel::CZelVector direction{1, 0, 0};
  for (auto _ : state) {
    for (const Property& property : scene.mProperties) {
      UxZel::IZelObjectInstance* instance = &scene.mInstances.mElements[property.mInstance];
      const UxZel::IZelInterpolatedValue* value = &property;
      const UxZel::IZelMgr* mgr = &scene;
      benchmark::DoNotOptimize(instance);
      benchmark::DoNotOptimize(value);
      benchmark::DoNotOptimize(mgr);
      int read = static_cast<int>(value->GetPropertyType()) + value->IsCyclic();
      const auto* keys = value->GetKeyFrames();
      read += keys->GetCount() + keys->GetAt(0)->GetFrame() + keys->GetAt(1)->GetFrame();
      UxZel::IZelAnimationState* animation = instance->GetAnimationState();
      read += static_cast<int>(animation->GetTakeIndex()) + mgr->GetSettingsList()->GetCount() +
              mgr->GetSettingsList()->GetAt(0)->GetTimeScale() + mgr->Get3DPaths()->GetCount();
      bool found = *mgr->Get3DPaths()->GetAt(0)->GetIdentity()->GetUUID() == *value->GetPathUUID();
      const UxZel::IZelAnimatedObject* object = scene.mDefinitions[0].GetAnimatedObject();
      const UxZel::IZelTake* take = object->GetTakes()->GetAt(0);
      read += take->GetFrameCount() + take->GetFrameRate() + object->GetAnimationKind();
      instance->SetRotation(*instance->GetScale());
      instance->SetDirection(&direction);
      instance->SetPosition(&point);
      instance->SetAnchor(&point);
      animation->SetStartOffset(animation->GetStartOffset());
      benchmark::DoNotOptimize(read);
      benchmark::DoNotOptimize(found);
    }
  }
}
BENCHMARK(callHost)->Unit(benchmark::kMicrosecond);

}  // namespace

}  // namespace vexa::benchmarks
