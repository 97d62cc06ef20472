#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdint>
#include <numeric>
#include <vector>

#include "benchmarks/mesh_references.h"
#include "benchmarks/torus.h"
#include "vexa/mesh/MeshEditor.h"
#include "vexa/mesh/MeshImpl.h"

namespace vexa::benchmarks {

namespace {

// The arguments of a benchmark: how many vertices, and how materials are spread over them. Bands
// are in order already, and random materials have to be sorted.
constexpr std::int64_t kBands = 0, kRandom = 1;

// The torus as its editor's arrays hold it before the first commit.
void fillUncommitted(UXS::Mesh::Impl& outMesh, const benchmark::State& state) {
  const auto torus = makeTorus(torusSize(state.range(0)), Materials::kBands);
  outMesh.mVertices = torus->GetVerticesArray();
  outMesh.mTriangles = torus->GetTrianglesArray();
  Dice dice;
  for (unsigned t = 0; t < outMesh.mTriangles.size(); ++t) {
    const unsigned band = torus->GetTriangleMaterialID(t);
    outMesh.mMaterialIDs.push_back(state.range(1) == kBands ? band : dice.below(4));
    outMesh.mUVCoords.push_back(torus->GetTriangleUVCoords(t));
  }
  outMesh.mSmoothNormals.resize(outMesh.mTriangles.size());
}

// The arrays that an editor fills. Copies share the triangles until a commit sorts them.
void copyInputs(UXS::Mesh::Impl& outMesh, const UXS::Mesh::Impl& from) {
  outMesh.mVertices = from.mVertices;
  outMesh.mTriangles = from.mTriangles;
  outMesh.mMaterialIDs = from.mMaterialIDs;
  outMesh.mUVCoords = from.mUVCoords;
  outMesh.mSmoothNormals = from.mSmoothNormals;
}

// Everything derived for the first time: sorting, topology, boxes, normals, edges and groups.
// Making and destroying the mesh does not count.
void firstCommit(benchmark::State& state) {
  UXS::Mesh::Impl inputs;
  fillUncommitted(inputs, state);
  for (auto _ : state) {
    state.PauseTiming();
    {
      UXS::Mesh::Impl mesh;
      copyInputs(mesh, inputs);
      state.ResumeTiming();
      mesh.Process();
      benchmark::DoNotOptimize(mesh.mGroupIDs.data());
      state.PauseTiming();
    }
    state.ResumeTiming();
  }
}

// One vertex moved in a mesh that is committed already.
void laterCommit(benchmark::State& state) {
  UXS::Mesh mesh;
  const auto materials = state.range(1) == kBands ? Materials::kBands : Materials::kRandom;
  UXS::Mesh::Editor(mesh, false).Copy(*makeTorus(torusSize(state.range(0)), materials), false);
  float z = 0;
  for (auto _ : state) {
    UXS::Mesh::Editor editor(mesh, false);
    editor.SetVertex(0, {4, 0, z += 0.001f});
  }
}

// A deformed copy as the frame collector makes it, without the deformation.
void copyCommit(benchmark::State& state) {
  const auto materials = state.range(1) == kBands ? Materials::kBands : Materials::kRandom;
  const auto rest = makeTorus(torusSize(state.range(0)), materials);
  const auto& positions = rest->GetVerticesArray();
  float z = 0;
  for (auto _ : state) {
    UXS::Mesh copy;
    UXS::Mesh::Editor editor(copy, false);
    UXS::Mesh::Position* const to = editor.CopyWithoutPositions(*rest);
    std::copy(positions.begin(), positions.end(), to);
    to[0].z = z += 0.001f;
    editor.Commit();
    benchmark::DoNotOptimize(copy.GetEdgesArray().data());
  }
}

// The closest thing that meshoptimizer does to a first commit: the neighbours of each triangle.
void adjacency(benchmark::State& state) {
  UXS::Mesh::Impl inputs;
  fillUncommitted(inputs, state);
  inputs.ProcessTrianglesSort();  // the same triangles in the order that the commit gives them
  const std::size_t corners = 3 * inputs.mTriangles.size();
  std::vector<unsigned int> out(2 * corners);
  for (auto _ : state) {
    meshoptAdjacency(&inputs.mTriangles[0].x, corners, &inputs.mVertices[0].x,
                     inputs.mVertices.size(), out.data());
    benchmark::DoNotOptimize(out.data());
  }
}

// A vertex for each corner: 300,000 of 50,000 positions.
void fillApart(UXS::Mesh& outMesh) {
  const auto torus = makeTorus(torusSize(50000), Materials::kBands);
  UXS::Mesh::Editor editor(outMesh, false);
  for (unsigned t = 0; t < torus->GetTrianglesArray().size(); ++t) {
    const UXS::Mesh::CornerPositions p = torus->GetTriangleCoords(t);
    const unsigned a = editor.AddVertex(p.x), b = editor.AddVertex(p.y), c = editor.AddVertex(p.z);
    editor.AddTriangle({a, b, c}, 0);
  }
}

// Finds the vertices at one position: 300,000 corners, six at each.
void merging(benchmark::State& state) {
  UXS::Mesh apart, mesh;
  fillApart(apart);
  UXS::Mesh::EditorBase editor(mesh, false);  // whose end commits nothing
  std::vector<unsigned int> all(apart.GetTrianglesArray().size());
  std::iota(all.begin(), all.end(), 0U);
  for (auto _ : state) {
    state.PauseTiming();
    editor.Copy(apart, false);
    editor.MergeTriangleVertices({0});  // from now on the triangles are its own, not shared
    state.ResumeTiming();
    editor.MergeTriangleVertices(all);
  }
}

// The same by meshoptimizer, which compares bytes.
void remap(benchmark::State& state) {
  UXS::Mesh apart;
  fillApart(apart);
  const auto& vertices = apart.GetVerticesArray();
  std::vector<unsigned int> out(vertices.size());
  for (auto _ : state) {
    meshoptRemap(&vertices[0].x, vertices.size(), out.data());
    benchmark::DoNotOptimize(out.data());
  }
}

const std::vector<std::vector<std::int64_t>> kMeshes{{50000, 200000}, {kBands, kRandom}};
BENCHMARK(firstCommit)->ArgsProduct(kMeshes);
BENCHMARK(laterCommit)->ArgsProduct(kMeshes);
BENCHMARK(copyCommit)->ArgsProduct({{1000, 10000, 50000, 200000}, {kBands, kRandom}});
BENCHMARK(adjacency)->ArgsProduct(kMeshes);
BENCHMARK(merging);
BENCHMARK(remap);

}  // namespace

}  // namespace vexa::benchmarks
