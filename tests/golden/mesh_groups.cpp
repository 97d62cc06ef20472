// Meshes and the containers below them.
#include <cmath>

#include "tests/golden/Group.h"
#include "tests/golden/meshes.h"
#include "vexa/mesh/MeshImpl.h"
#include "vexa/mesh/MeshSmoothData.h"
#include "vexa/mesh/MeshSmoothList.h"

namespace vexa::tests {

namespace {

using UXS::Mesh;
using Position = Mesh::Position;

constexpr int kMeshes = 400;

Mesh::CornerUVs drawUV(Numbers& n) {
  Mesh::CornerUVs uv;
  for (auto* corner : {&uv.x, &uv.y, &uv.z}) {
    corner->x = n.oneIn(3) ? -0.0f : n.any<float>();
    corner->y = n.plain<float>();
  }
  return n.oneIn(4) ? Mesh::CornerUVs() : uv;
}

Mesh::CornerPositions drawNormals(Numbers& n) {
  const auto draw = [&] { return n.oneIn(4) ? n.any<float>() : n.plain<float>(); };
  const auto a = n.triple<Position>(draw), b = n.triple<Position>(draw);
  return {a, b, n.triple<Position>(draw)};
}

// Builds a mesh and commits it, with uv and normals for some of the triangles.
template <class Editor>
void build(Numbers& n, Mesh& mesh, const DrawnMesh& drawn) {
  Editor editor(mesh, false);
  add(drawn, editor);
  const bool hasUV = n.oneIn(3), hasNormals = n.oneIn(4);
  for (unsigned int t = 0; t < drawn.mTriangles.size(); ++t) {
    if (hasUV && n.oneIn(2)) editor.SetTriangleUVCoords(t, drawUV(n));
    if (hasNormals && n.oneIn(2)) editor.SetTriangleSmoothNormals(t, drawNormals(n));
  }
}

void runCommits(Recorder& r, void (*out)(Recorder&, const Mesh&)) {
  for (int i = 0; i < kMeshes; ++i) {
    r.begin();
    const DrawnMesh drawn = drawMesh(r.numbers());
    inMesh(r, drawn);
    const auto mesh = newMesh();
    build<Mesh::Editor>(r.numbers(), *mesh, drawn);
    out(r, *mesh);
  }
}

void runLight(Recorder& r) {
  Numbers& n = r.numbers();
  for (int i = 0; i < kMeshes; ++i) {
    r.begin();
    const DrawnMesh drawn = drawMesh(n);
    inMesh(r, drawn);
    const auto mesh = newMesh();
    if (n.oneIn(3)) {
      build<Mesh::LightWeightEditor>(n, *mesh, drawn);
    } else {
      build<Mesh::Editor>(n, *mesh, drawn);
      Mesh::LightWeightEditor editor(*mesh, true);
      for (unsigned int v = 0; v < drawn.mVertices.size(); ++v) {
        if (n.oneIn(3)) editor.SetVertex(v, n.triple<Position>([&] { return n.plain<float>(); }));
      }
      if (n.oneIn(3)) add(drawn, editor);
    }
    outMesh(r, *mesh);
  }
}

// One call that changes triangles that are there.
void editTriangles(Numbers& n, Mesh::EditorBase& editor, unsigned int triangles) {
  const unsigned int t = n.below(triangles), u = n.below(triangles);
  switch (n.below(9)) {
    case 0:
      return editor.SetTriangleMaterialID(t, drawMaterial(n));
    case 1:
      return editor.SetTriangleUVCoords(t, drawUV(n));
    case 2:
      return editor.SetTriangleSmoothNormals(t, drawNormals(n));
    case 3:
      return editor.RemoveTriangle(t);
    case 4:
      return editor.MergeTriangleVertices(std::vector<unsigned int>{t, u, t});
    case 5:
      return editor.ReorientTriangleSmoothNormals(std::vector<unsigned int>{t, u});
    case 6:
      return editor.ReorientTriangleSmoothNormals(drawMaterial(n));
    case 7:
      return editor.SmoothTriangleNormals(drawMaterial(n), 0);  // others pass through libm
    default:
      return editor.MergeTriangleVertices(drawMaterial(n));
  }
}

// Several edits of one mesh, with full and light commits between them.
void runEdits(Recorder& r) {
  Numbers& n = r.numbers();
  for (int i = 0; i < kMeshes; ++i) {
    r.begin();
    const DrawnMesh drawn = drawMesh(n), other = drawMesh(n);
    inMesh(r, drawn);
    const auto mesh = newMesh(), source = newMesh();
    build<Mesh::Editor>(n, *mesh, drawn);
    build<Mesh::Editor>(n, *source, other);
    const auto edit = [&](Mesh::EditorBase& editor) {
      const bool isOwn = n.oneIn(9), skipsNormals = n.oneIn(2);
      if (n.oneIn(5)) editor.Copy(isOwn ? *mesh : *source, skipsNormals);
      if (n.oneIn(12)) editor.RemoveAllTriangles();
      if (n.oneIn(5)) add(other, editor);
      for (unsigned int k = n.below(8); k > 0; --k) {
        const auto triangles = unsigned(mesh->GetTrianglesArray().size());
        if (triangles > 0) editTriangles(n, editor, triangles);
      }
    };
    for (int commits = n.between(1, 3); commits > 0; --commits) {
      if (n.oneIn(3)) {
        Mesh::LightWeightEditor editor(*mesh, true);
        edit(editor);
      } else {
        Mesh::Editor editor(*mesh, true);
        edit(editor);
        if (n.oneIn(3)) editor.Commit();
      }
      r.out(mesh->HasUVCoords());
      outMesh(r, *mesh);
    }
  }
}

// The edges and groups for lists of their own, as a host may make them.
void runSteps(Recorder& r) {
  Numbers& n = r.numbers();
  for (int i = 0; i < kMeshes; ++i) {
    r.begin();
    const DrawnMesh drawn = drawMesh(n);
    inMesh(r, drawn);
    Mesh::Impl impl;
    impl.mVertices = drawn.mVertices;
    impl.mTriangles = drawn.mTriangles;
    impl.mMaterialIDs = drawn.mMaterials;
    std::vector<unsigned int> listed;
    for (unsigned int t = 0; t < drawn.mTriangles.size(); ++t) {
      if (!n.oneIn(4)) listed.push_back(n.oneIn(3) ? n.below(t + 1) : t);  // in any order
    }
    impl.ProcessTrianglesSort();
    impl.ProcessSections();
    const UXS::MeshSmoothData data(impl);
    const UXS::MeshSmoothList all(impl), some(impl, listed);
    for (const UXS::MeshSmoothList* list : {&all, &some}) {
      impl.ProcessEdges(data, *list);
      r.out(impl.mEdges);
      impl.ProcessGroupID(*list);
      r.out(impl.mGroupIDs.get());
    }
    impl.ProcessTrianglesNormals(data, all, 0);
    impl.ProcessAABB();
    r.out(impl.mAABB, impl.mMaterialAABBs.count(), impl.mSections.get());
    for (const auto& cell : impl.mMaterialAABBs.cells()) r.out(cell.key, cell.value, cell.next);
  }
}

// Face normals and corner angles; normals smoothed under an angle.
void runSmoothing(Recorder& r, bool wantsNormals) {
  Numbers& n = r.numbers();
  // No angle that faces of a grid make: there the last bit of a cosine decides.
  constexpr float kAngles[] = {0, 1, 30.5f, 44.9f, 59, 89.5f, 134, 179, 360, -20, 1e-4f};
  for (int i = 0; i < kMeshes; ++i) {
    r.begin();
    const DrawnMesh drawn = drawMesh(n);
    const float angle = n.oneIn(9) ? n.any<float>() : n.oneOf(kAngles);
    inMesh(r, drawn);
    r.in("angle", angle);
    Mesh::Impl impl;
    impl.mVertices = drawn.mVertices;
    impl.mTriangles = drawn.mTriangles;
    impl.mMaterialIDs = drawn.mMaterials;
    std::vector<unsigned int> listed;
    for (unsigned int t = 0; t < drawn.mTriangles.size(); ++t) {
      if (n.oneIn(2)) listed.push_back(unsigned(drawn.mTriangles.size()) - 1 - t);
    }
    const UXS::MeshSmoothData all(impl), some(impl, listed);
    const UXS::MeshSmoothList list(impl), few(impl, listed);
    if (wantsNormals) {
      for (unsigned int t = 0; t < impl.mTriangles.size(); ++t) {
        const unsigned int corner = n.below(3);
        r.out(impl.ProcessTriangleSmoothNormal(t, corner, angle, all, few));
      }
      impl.ProcessTrianglesNormals(all, list, angle);
      for (const auto& normals : impl.mSmoothNormals) r.out(normals);
      continue;
    }
    for (std::size_t t = 0; t < all.size(); ++t) {
      for (const UXS::MeshSmoothData* data : {&all, &some}) {
        r.out((*data)[t].mNormal);
        for (const float each : (*data)[t].mAngles) r.out(each);
      }
    }
    for (std::size_t v = 0; v < few.size(); ++v) {
      for (const unsigned int t : few[v]) r.out(t);
    }
  }
}

// Corners at one position come to use one vertex, triangle by triangle.
void runMerges(Recorder& r) {
  Numbers& n = r.numbers();
  for (int i = 0; i < kMeshes; ++i) {
    r.begin();
    const DrawnMesh drawn = drawMesh(n);
    inMesh(r, drawn);
    Mesh::Impl impl;
    impl.mVertices = drawn.mVertices;
    impl.mTriangles = drawn.mTriangles;
    UXS::uxs_hashtable<Position, unsigned int> table(n.oneIn(2) ? 1024 : 7);
    for (std::size_t k = drawn.mTriangles.size(); k > 0; --k) {
      const auto t = n.below(std::uint32_t(drawn.mTriangles.size()));
      UXS::InternalMergeTriangleVertices(t, impl, table);
    }
    r.out(impl.mTriangles.get(), table.count());
  }
}

void runCoplanar(Recorder& r) {
  Numbers& n = r.numbers();
  for (int i = 0; i < 2000; ++i) {
    r.begin();
    const float tilt =
        n.oneIn(2) ? 0.00447214f * (1 + (n.unit<float>() - 0.5f) / 64) : n.any<float>();
    const Position a(0, 0, 1),
        b(std::sqrt(1 - (1 - tilt * tilt / 2) * (1 - tilt * tilt / 2)), 0, 1 - tilt * tilt / 2);
    const Position c = n.triple<Position>([&] { return n.plain<float>(); });
    r.in("b", b).in("c", c);
    r.out(Mesh::Coplanar(a, b), Mesh::Coplanar(b, a), Mesh::Coplanar(a, -b), Mesh::Coplanar(b, c));
  }
}

using Positions = UXS::uxs_hashtable<Position, unsigned int>;
using Boxes = UXS::uxs_hashtable<unsigned int, Oru::TBox3D<float>>;

Position drawKey(Numbers& n) {
  return n.triple<Position>([&] { return n.oneIn(3) ? n.any<float>() : float(n.between(-1, 1)); });
}

void runHashes(Recorder& r) {
  Numbers& n = r.numbers();
  for (int i = 0; i < 2000; ++i) {
    r.begin();
    const Position a = drawKey(n), b = n.oneIn(3) ? a : drawKey(n);
    const auto id = unsigned(n.bits()) >> n.below(24);
    r.in("a", a).in("b", b).in("id", id);
    const auto hasNaN = std::isnan(a.x) || std::isnan(a.y) || std::isnan(a.z);
    r.out(hasNaN ? 0u : Positions::default_hashfunc(a), Positions::default_equalfunc(a, b));
    r.out(Boxes::default_hashfunc(id), Boxes::default_equalfunc(id, id ^ n.below(2)));
  }
}

// Which entry is found, and how entries are chained.
void runTables(Recorder& r) {
  Numbers& n = r.numbers();
  for (int i = 0; i < 300; ++i) {
    r.begin();
    const unsigned int buckets = n.oneIn(3) ? n.below(4) : n.below(2000);
    r.in("buckets", buckets);
    Positions table(buckets);
    for (unsigned int k = n.oneIn(30) ? 1500 : n.below(60); k > 0; --k) {
      const Position key = n.triple<Position>([&] { return float(n.between(-1, 1)); });
      const std::uint32_t call = n.below(40);
      if (call == 0) table.clear();
      if (call < 20) table[key] += k;
      if (call >= 20) r.out(table.link_cell(key, call < 25 ? nullptr : &k)->value);
      const unsigned int* const found = table.find(drawKey(n));
      r.out(found == nullptr ? 0 : *found, table.count());
    }
    for (const auto& cell : table.cells()) r.out(cell.key, cell.value, cell.next);
    r.out(table.bucketCount(), table.cells().capacity());
  }
}

// Sizes, capacities and contents through any sequence of calls.
void runArrays(Recorder& r) {
  Numbers& n = r.numbers();
  using Array = UXS::uxs_array<unsigned int, unsigned int>;
  for (int i = 0; i < 1000; ++i) {
    r.begin();
    Array arrays[2];
    for (unsigned int calls = n.below(40); calls > 0; --calls) {
      Array& a = arrays[n.below(2)];
      Array& b = arrays[n.below(2)];
      const unsigned int call = n.below(12), x = n.below(12), y = n.below(5);
      r.in("call", call).in("x", x).in("y", y);
      if (call < 5) r.out(a.push_back(a.size() > 0 && x > 9 ? a[0] : x) != nullptr);
      if (call == 5) r.out(a.reserve(x));
      if (call == 6) r.out(a.assign(y, x));
      if (call == 7) r.out(a.copy(b));
      if (call == 8 && (x <= a.size() || a.capacity() < x)) r.out(a.copy(b, x, y));
      if (call == 9 && x == 0) a.clear();
      if (call == 10) a.swap(b);
      r.out(a.equals(b), a.size(), a.capacity());
    }
    for (const Array& a : arrays) {
      for (const unsigned int x : a) r.out(x);
    }
    r.out(Array::default_sizefunc(n.oneIn(2) ? n.below(9) : unsigned(n.bits())));
  }
}

}  // namespace

void addMeshGroups(Groups& out) {
  const auto add = [&](const char* name, Kind kind, auto run) { out.push_back({name, kind, run}); };
  constexpr Kind kExact = Kind::kArithmetic;
  add("mesh_sections", kExact, [](Recorder& r) { runCommits(r, outSections); });
  add("mesh_normals", kExact, [](Recorder& r) { runCommits(r, outNormals); });
  add("mesh_section_normals", kExact, [](Recorder& r) { runCommits(r, outSectionNormals); });
  add("mesh_edges", kExact, [](Recorder& r) {
    runCommits(r, [](Recorder& to, const Mesh& mesh) { to.out(mesh.GetEdgesArray()); });
  });
  add("mesh_groups", kExact, [](Recorder& r) { runCommits(r, outGroups); });
  add("mesh_boxes", kExact, [](Recorder& r) { runCommits(r, outBoxes); });
  add("mesh_light", kExact, runLight);
  add("mesh_edits", kExact, runEdits);
  add("mesh_steps", kExact, runSteps);
  add("mesh_merges", kExact, runMerges);
  add("mesh_coplanar", kExact, runCoplanar);
  add("mesh_smooth_data", Kind::kLibm, [](Recorder& r) { runSmoothing(r, false); });
  add("mesh_smooth_normals", Kind::kLibm, [](Recorder& r) { runSmoothing(r, true); });
  add("hashes", kExact, runHashes);
  add("hash_tables", kExact, runTables);
  add("arrays", kExact, runArrays);
}

}  // namespace vexa::tests
