#include <algorithm>
#include <benchmark/benchmark.h>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <malloc.h>
#include <map>
#include <numeric>

#include "benchmarks/framecollector_references.h"
#include "benchmarks/torus.h"
#include "formats/AnimationFile.h"
#include "models/LiteralFrameCollector.h"
#include "models/literal_animation_file.h"
#include "models/mesh_walks.h"
#include "vexa/framecollector/XCAMOFileIOTool.h"
#include "vexa/framecollector/XCFrameCollector.h"
#include "vexa/framecollector/skinning_internal.h"

namespace vexa::benchmarks {

namespace {

using Norvel::Vexa::XCFrameCollector;
using Norvel::Vexa::XIFrameCollector;
using tests::LiteralFrameCollector;
using Matrix = UXS::uxs_generic_mat4<float>;
using Point = Oru::TVector3D<float>;

constexpr unsigned kNodes = 64, kFrames = 30;
constexpr UxZel::CZelUUID kNone{};

// What makes deforming quick or slow: links per vertex, whether they are equally many, whether
// there is a global product, whether all nodes show one frame.
struct Rig {
  const char* mName;
  unsigned mLeastLinks, mMostLinks;
  bool mIdentity = false;       // the global transformation
  bool mUnequalFrames = false;  // some nodes hold their last frame
};
constexpr Rig kFour{"links4", 4, 4}, kOne{"links1", 1, 1}, kTwo{"links2", 2, 2},
    kOneToEight{"links1to8", 1, 8}, kIdentity{"identity", 4, 4, true},
    kClamped{"clamped", 4, 4, false, true};

// A turn about +Z with a shift: far from singular, with no zeros where they would help.
Matrix nodeMatrix(Dice& ioDice) {
  const float a = ioDice.real(), c = std::cos(a), s = std::sin(a);
  return {{c, s, 0.01f, 0, -s, c, 0.02f, 0, 0.03f, 0.04f, 1, 0, a, ioDice.real(), 1 - a, 1}};
}

// Fills any collector by its interface, the library's own and the literal one alike. Weights do not
// sum to 1, so that no form gains from it.
void fill(XIFrameCollector& ioCollector, const Rig& rig, std::size_t vertices) {
  Dice dice;
  ioCollector.CreateTake();
  if (!rig.mIdentity) ioCollector.SetGlobalTransformation(nodeMatrix(dice));
  for (unsigned n = 0; n < kNodes; ++n) {
    int node = -1;
    const unsigned frames = rig.mUnequalFrames ? kFrames / 2 + n % 16 : kFrames;
    for (unsigned f = 0; f < frames; ++f) {
      node = int(ioCollector.AddTransformation(nodeMatrix(dice), 0, node));
    }
  }
  for (unsigned v = 0; v < vertices; ++v) {
    const unsigned links = rig.mLeastLinks + dice.below(rig.mMostLinks - rig.mLeastLinks + 1);
    for (unsigned i = 0; i < links; ++i) {
      ioCollector.AddLink(int(dice.below(kNodes)), kNone, v, 0.05 + double(dice.real()));
    }
  }
}

// What a collector is made on.
template <class Collector>
decltype(auto) restOf(UXS::Mesh& ioMesh) {
  if constexpr (std::is_same_v<Collector, XCFrameCollector>) {
    return &ioMesh;
  } else {
    return (ioMesh.GetVerticesArray());
  }
}

// A torus with a filled collector, made once per program.
template <class Collector>
struct Scene {
  UXS::uxs_autoptr<UXS::Mesh> mMesh;
  Collector mCollector;
  unsigned mFrame = 0;

  Scene(const Rig& rig, long vertices, Materials materials)
      : mMesh(makeTorus(torusSize(vertices), materials)), mCollector(restOf<Collector>(*mMesh)) {
    fill(mCollector, rig, mMesh->GetVerticesArray().size());
    // Links are laid out once, before the first mesh.
    mCollector.GetCurrentDefinition(0, kFrames - 1, kNone);
  }

  const std::vector<Point>& vertices() const { return mMesh->GetVerticesArray(); }
  // Another one each time, so that no definition is at hand.
  unsigned nextFrame() { return mFrame = (mFrame + 1) % kFrames; }
};

// Scenes are kept: filling one takes longer than a row measures.
template <class Collector>
Scene<Collector>& scene(const Rig& rig, long vertices, Materials materials) {
  static std::map<std::string, std::unique_ptr<Scene<Collector>>> sScenes;
  auto& kept = sScenes[rig.mName + std::to_string(vertices) + char('0' + int(materials))];
  if (!kept) kept = std::make_unique<Scene<Collector>>(rig, vertices, materials);
  return *kept;
}

// Asks for everything that a commit derives, in case it is left for later.
void touch(const UXS::Mesh& mesh) {
  benchmark::DoNotOptimize(mesh.GetVerticesArray().back());
  benchmark::DoNotOptimize(mesh.GetAABB());
  benchmark::DoNotOptimize(mesh.GetEdgesArray().size());
  if (mesh.GetTrianglesArray().empty()) return;
  benchmark::DoNotOptimize(mesh.GetTrianglesArray().back());
  benchmark::DoNotOptimize(mesh.GetSectionsCount());
  benchmark::DoNotOptimize(mesh.GetTriangleSmoothNormals(0));
  benchmark::DoNotOptimize(mesh.GetTriangleUVCoords(0));
  benchmark::DoNotOptimize(mesh.GetTriangleGroupID(0));
  benchmark::DoNotOptimize(mesh.GetMaterialAABB(0));
}

// One deformed frame; without triangles a commit has nothing to derive, which leaves the
// deformation.
void frames(benchmark::State& ioState, const Rig& rig, Materials materials) {
  auto& s = scene<XCFrameCollector>(rig, ioState.range(0), materials);
  for (auto _ : ioState) touch(*s.mCollector.GetCurrentDefinition(0, s.nextFrame(), kNone));
  ioState.SetItemsProcessed(ioState.iterations() * ioState.range(0));
}
void deform(benchmark::State& ioState, const Rig& rig) {
  frames(ioState, rig, Materials::kNoTriangles);
}
void frame(benchmark::State& ioState, Materials materials) { frames(ioState, kFour, materials); }

// The host keeps each frame until it has the next: no memory can be used again.
void frameInNewMemory(benchmark::State& ioState, Materials materials) {
  auto& s = scene<XCFrameCollector>(kFour, ioState.range(0), materials);
  UXS::uxs_autoptr<UXS::Mesh> held;
  for (auto _ : ioState) {
    UXS::Mesh* mesh = s.mCollector.GetCurrentDefinition(0, s.nextFrame(), kNone);
    touch(*mesh);
    mesh->increment();
    held = UXS::uxs_autoptr<UXS::Mesh>(mesh);
  }
}

// E: the same torus, 64 nodes and 30 frames, four links each. The palettes of all frames are there
// already, which the collector has to gather.
void deformEigen(benchmark::State& ioState) {
  const long vertices = ioState.range(0);
  Dice dice;
  std::vector<Matrix> palettes(kFrames * kNodes);
  for (Matrix& m : palettes) m = nodeMatrix(dice);
  const auto mesh = makeTorus(torusSize(vertices), Materials::kNoTriangles);
  std::vector<std::uint16_t> nodes(std::size_t(4 * vertices));
  std::vector<float> weights(nodes.size()), out(std::size_t(3 * vertices));
  for (std::uint16_t& n : nodes) n = std::uint16_t(dice.below(kNodes));
  for (float& w : weights) w = 0.05f + dice.real();
  unsigned frame = 0;
  for (auto _ : ioState) {
    frame = (frame + 1) % kFrames;
    eigenSkin(palettes[frame * kNodes].e, nodes.data(), weights.data(),
              &mesh->GetVerticesArray()[0].x, out.data(), int(vertices));
    benchmark::ClobberMemory();
  }
  ioState.SetItemsProcessed(ioState.iterations() * vertices);
}

// The kernels by themselves, four links each: what a machine without AVX2 or AVX-512 takes.
void deformBy(benchmark::State& ioState, const Norvel::Vexa::skinning::Kernels& kernels) {
  using namespace Norvel::Vexa::skinning;
  const auto vertices = std::size_t(ioState.range(0));
  Dice dice;
  std::vector<Matrix> palettes(kFrames * kNodes);
  for (Matrix& m : palettes) m = nodeMatrix(dice);
  const auto mesh = makeTorus(torusSize(ioState.range(0)), Materials::kNoTriangles);
  std::vector<Link> links(4 * vertices);
  for (Link& link : links) link = {dice.below(kNodes), 0.05f + dice.real()};
  std::vector<float> scales(vertices, 0.7f), out(3 * vertices);
  std::vector<std::uint8_t> order(kBlock);
  std::iota(order.begin(), order.end(), std::uint8_t{0});
  Pose pose;
  pose.mGlobal = palettes[7].e;
  unsigned frame = 0;
  for (auto _ : ioState) {
    frame = (frame + 1) % kFrames;
    pose.mPalette = palettes[frame * kNodes].e;
    for (std::size_t v = 0; v < vertices; v += kBlock) {
      const auto count = std::uint32_t(std::min<std::size_t>(kBlock, vertices - v));
      const Run run{4, count};
      bool left[kBlock] = {};
      kernels.mPosed(pose,
                     {int(count), &mesh->GetVerticesArray()[v].x, &scales[v], &out[3 * v],
                      order.data(), &run, &links[4 * v]},
                     left);
    }
    benchmark::ClobberMemory();
  }
  ioState.SetItemsProcessed(ioState.iterations() * ioState.range(0));
}

// The rest of a frame as plainly as it goes, from the positions on: the order by materials,
// sections, box, face normals, angles, edges and groups. It recomputes what the library shares
// between frames.
void deriveLiterally(const UXS::Mesh& rest, const std::vector<Point>& positions) {
  const auto count = rest.GetTrianglesArray().size();
  std::vector<unsigned> order(count), materials(count), sections;
  std::iota(order.begin(), order.end(), 0u);
  for (unsigned t = 0; t < count; ++t) materials[t] = rest.GetTriangleMaterialID(t);
  std::stable_sort(order.begin(), order.end(),
                   [&](unsigned a, unsigned b) { return materials[a] < materials[b]; });
  std::vector<UXS::Mesh::Corners> triangles(count);
  std::vector<UXS::Mesh::CornerUVs> uv(count);
  std::vector<UXS::Mesh::CornerPositions> normals;
  std::vector<Point> angles;
  Point least = positions[0], most = least;
  for (unsigned t = 0; t < count; ++t) {
    triangles[t] = rest.GetTrianglesArray()[order[t]];
    uv[t] = rest.GetTriangleUVCoords(order[t]);
    if (t == 0 || materials[order[t]] != materials[order[t - 1]]) sections.push_back(t);
    for (const unsigned v : {triangles[t].x, triangles[t].y, triangles[t].z}) {
      const Point& p = positions[v];
      least = {std::min(least.x, p.x), std::min(least.y, p.y), std::min(least.z, p.z)};
      most = {std::max(most.x, p.x), std::max(most.y, p.y), std::max(most.z, p.z)};
    }
  }
  const tests::Walks walks(positions, triangles);
  for (unsigned t = 0; t < count; ++t) {
    const auto& [a, b, c] = triangles[t];
    normals.emplace_back(walks.mNormals[t], walks.mNormals[t], walks.mNormals[t]);
    const Point &p0 = positions[a], &p1 = positions[b], &p2 = positions[c];
    const float angle0 = walks.angle(p1 - p0, p2 - p0), angle1 = walks.angle(p0 - p1, p2 - p1);
    angles.emplace_back(angle0, angle1, 3.1415927f - angle0 - angle1);
  }
  benchmark::DoNotOptimize(walks.edges());
  benchmark::DoNotOptimize(walks.groups(sections));
  benchmark::DoNotOptimize(least);
  benchmark::DoNotOptimize(most);
  benchmark::DoNotOptimize(angles.data());
  benchmark::DoNotOptimize(normals.data());
}

template <class Collector>
void transformPoints(Scene<Collector>& ioScene, std::vector<Point>& outPoints) {
  const XIFrameCollector& collector = ioScene.mCollector;
  const unsigned frame = ioScene.nextFrame();
  for (std::size_t v = 0; v < outPoints.size(); ++v) {
    outPoints[v] = collector.TransformPoint(&ioScene.vertices()[v], 0, frame);
  }
}

// What a frame costs in the literal form: deformation by std::map, then all derived data.
void frameLiteral(benchmark::State& ioState) {
  auto& s = scene<LiteralFrameCollector>(kFour, ioState.range(0), Materials::kBands);
  for (auto _ : ioState) {
    std::vector<Point> points(s.vertices().size());
    transformPoints(s, points);
    deriveLiterally(*s.mMesh, points);
  }
}

// Every point of a frame, asked for one after the other.
template <class Collector>
void points(benchmark::State& ioState) {
  auto& s = scene<Collector>(kFour, ioState.range(0), Materials::kNoTriangles);
  std::vector<Point> out(s.vertices().size());
  for (auto _ : ioState) {
    transformPoints(s, out);
    benchmark::ClobberMemory();
  }
  ioState.SetItemsProcessed(ioState.iterations() * ioState.range(0));
}

// 72 MB: two takes for 64 nodes, four links for each of 100,000 vertices. Lives as long as this
// object.
constexpr long kFileVertices = 100000;
struct BigFile {
  const std::string mPath = std::filesystem::temp_directory_path() / "vexa_bench.amo";

  BigFile() {
    formats::AnimationFile file;
    file.mFrameCounts = {5000, 3200};
    file.mNodes.resize(kNodes);
    Dice dice;
    for (formats::AnimationFile::Node& node : file.mNodes) {
      node.mMatrices.resize(8200, formats::AnimationFile::kIdentity);
      for (auto& matrix : node.mMatrices) matrix[12] = double(dice.real());
    }
    for (unsigned v = 0; v < 4 * kFileVertices; ++v) {
      file.mNodes[dice.below(kNodes)].mLinks.push_back({v / 4, double(dice.real())});
    }
    writeAnimationFile(file, mPath);
  }
  ~BigFile() { std::filesystem::remove(mPath); }
};
const char* bigFile() {
  static const BigFile sFile;
  return sFile.mPath.c_str();
}

// The collectors' end does not count.
template <class Collector, class Read>
void reading(benchmark::State& ioState, Read read) {
  bigFile();
  const auto mesh = makeTorus(torusSize(kFileVertices), Materials::kNoTriangles);
  for (auto _ : ioState) {
    auto collector = std::make_unique<Collector>(restOf<Collector>(*mesh));
    read(*collector);
    ioState.PauseTiming();
    collector.reset();
    ioState.ResumeTiming();
  }
}
// The three ways to read the big file: as the library does, value by value, and its bytes alone,
// which is the floor. The file is in the system's cache after the first.
void readFile(benchmark::State& ioState) {
  reading<XCFrameCollector>(ioState, [](XCFrameCollector& ioCollector) {
    Norvel::XCAMOFileIOTool(bigFile()).Read(&ioCollector);
  });
}
void readFileLiterally(benchmark::State& ioState) {
  reading<LiteralFrameCollector>(ioState, [](LiteralFrameCollector& ioCollector) {
    std::FILE* file = std::fopen(bigFile(), "rb");
    tests::readAnimationFileLiterally(file, ioCollector);
    std::fclose(file);
  });
}
void readBytes(benchmark::State& ioState) {
  std::vector<char> bytes(std::filesystem::file_size(bigFile()));
  for (auto _ : ioState) {
    std::FILE* file = std::fopen(bigFile(), "rb");
    benchmark::DoNotOptimize(std::fread(bytes.data(), 1, bytes.size(), file));
    std::fclose(file);
    benchmark::ClobberMemory();
  }
}

// A number of /proc/self/status, in bytes.
double processBytes(const std::string& name) {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    if (word == name) return status >> word, 1024 * std::stod(word);
  }
  return 0;
}

// Memory of a collector that has read the file: what stays, and the most there was on the way.
void readMemory(benchmark::State& ioState) {
  bigFile();
  const auto mesh = makeTorus(torusSize(kFileVertices), Materials::kNoTriangles);
  for (auto _ : ioState) {
    malloc_trim(0);  // what other rows freed must not count as there before
    std::ofstream("/proc/self/clear_refs") << 5;  // forgets the peak so far
    const double before = processBytes("VmRSS:");
    XCFrameCollector collector(mesh.get());
    Norvel::XCAMOFileIOTool(bigFile()).Read(&collector);
    ioState.counters["peak"] = processBytes("VmHWM:") - before;
    malloc_trim(0);
    ioState.counters["bytes"] = processBytes("VmRSS:") - before;
  }
}
// The size of the file, as a row to compare memory with.
void fileSize(benchmark::State& ioState) {
  for (auto _ : ioState) {
    const auto size = double(std::filesystem::file_size(bigFile()));
    ioState.counters["peak"] = ioState.counters["bytes"] = size;
  }
}

BENCHMARK(deformEigen)->Arg(10000)->Arg(50000)->Arg(200000);
BENCHMARK_CAPTURE(deform, links4, kFour)->Arg(10000)->Arg(50000)->Arg(200000);
BENCHMARK_CAPTURE(deform, identity, kIdentity)->Arg(50000);
BENCHMARK_CAPTURE(deform, links1, kOne)->Arg(50000);
BENCHMARK_CAPTURE(deform, links2, kTwo)->Arg(50000);
BENCHMARK_CAPTURE(deform, links1to8, kOneToEight)->Arg(50000);
BENCHMARK_CAPTURE(deform, clamped, kClamped)->Arg(50000);
BENCHMARK_CAPTURE(deformBy, baseline, Norvel::Vexa::skinning::kBaselineKernels)->Arg(50000);
#if defined(VEXA_NEWER_MACHINES)
BENCHMARK_CAPTURE(deformBy, avx2, Norvel::Vexa::skinning::kAvx2Kernels)->Arg(50000);
BENCHMARK_CAPTURE(deformBy, avx512, Norvel::Vexa::skinning::kAvx512Kernels)->Arg(50000);
#endif
BENCHMARK_CAPTURE(frame, bands, Materials::kBands)->Arg(10000)->Arg(50000)->Arg(200000);
BENCHMARK_CAPTURE(frame, random, Materials::kRandom)->Arg(10000)->Arg(50000)->Arg(200000);
BENCHMARK_CAPTURE(frameInNewMemory, bands, Materials::kBands)->Arg(10000)->Arg(50000);
BENCHMARK_CAPTURE(frameInNewMemory, random, Materials::kRandom)->Arg(10000)->Arg(50000);
BENCHMARK(frameLiteral)->Arg(50000);
BENCHMARK(points<XCFrameCollector>)->Arg(100000);
BENCHMARK(points<LiteralFrameCollector>)->Arg(100000);
BENCHMARK(readFile);
BENCHMARK(readFileLiterally);
BENCHMARK(readBytes);
BENCHMARK(readMemory)->Iterations(1);
BENCHMARK(fileSize)->Iterations(1);

}  // namespace

}  // namespace vexa::benchmarks
