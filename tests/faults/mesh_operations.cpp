// The life of a mesh and of the containers below it.
#include <algorithm>

#include "tests/faults/operations.h"
#include "vexa/mesh/Mesh.h"
#include "vexa/mesh/MeshEditor.h"
#include "vexa/mesh/uxs_array.h"
#include "vexa/mesh/uxs_autoptr.h"
#include "vexa/mesh/uxs_hashtable.h"

namespace vexa::faults {
namespace {

using UXS::Mesh;
using Array = UXS::uxs_array<std::string, unsigned int>;
using Table = UXS::uxs_hashtable<Oru::TVector3D<float>, unsigned int>;
using Handle = UXS::uxs_autoptr<Mesh>;

void addStrip(Mesh::EditorBase& editor, unsigned count) {
  for (unsigned v = 0; v < count; ++v) editor.AddVertex({float(v / 2), float(v % 2), float(v)});
  for (unsigned v = 0; v + 2 < count; ++v) {
    const unsigned triangle = editor.AddTriangle({v, v + 1, v + 2}, v % 3);
    editor.SetTriangleUVCoords(triangle, {{0, 0}, {1, 0}, {float(v), 1}});
  }
}

Handle makeStrip(unsigned count) {
  Handle mesh(new Mesh);
  mesh->increment();
  Mesh::Editor editor(*mesh, false);
  addStrip(editor, count);
  editor.Commit();
  return mesh;
}

// What a reader of a mesh can see, as numbers.
std::vector<double> contents(const Mesh& mesh) {
  std::vector<double> seen;
  for (const auto& v : mesh.GetVerticesArray()) {
    seen.insert(seen.end(), {double(v.x), double(v.y), double(v.z)});
  }
  const auto& triangles = mesh.GetTrianglesArray();
  for (unsigned t = 0; t < triangles.size(); ++t) {
    const auto& c = triangles[t];
    seen.insert(seen.end(), {double(c.x), double(c.y), double(c.z)});
    seen.push_back(mesh.GetTriangleMaterialID(t));
    if (mesh.HasUVCoords()) seen.push_back(double(mesh.GetTriangleUVCoords(t).z.x));
  }
  seen.push_back(mesh.GetSectionsCount());
  return seen;
}

void buildsAMesh(const Attempt& attempt) {
  Handle mesh(new Mesh);
  mesh->increment();
  const bool isDone = attempt([&] {
    Mesh::Editor editor(*mesh, false);
    try {
      addStrip(editor, 30);
      editor.Commit();
    } catch (...) {
      editor.Abandon();
      throw;
    }
  });
  if (isDone) require(contents(*mesh) == contents(*makeStrip(30)), "another mesh");
}

// Commits a change; after a failure the mesh reads as the commit before, apart from the change.
template <class Change>
void commits(const Attempt& attempt, Change change) {
  const Handle mesh = makeStrip(30), copy = makeStrip(30);
  const unsigned sections = mesh->GetSectionsCount();
  {
    Mesh::Editor editor(*copy, true);
    change(editor);
    editor.Commit();
  }
  Mesh::Editor editor(*mesh, true);
  change(editor);
  const bool isDone = attempt([&] { editor.Commit(); });
  if (!isDone) {
    require(mesh->GetSectionsCount() == sections, "half a commit");
    Mesh::Editor again(*mesh, true);
    again.Commit();
  }
  require(contents(*mesh) == contents(*copy), "another commit");
}

// Changes a mesh; the next commit works whatever happened.
template <class Change>
void changes(const Attempt& attempt, Change change) {
  const Handle mesh = makeStrip(30), copy = makeStrip(30);
  Mesh::Editor editor(*mesh, true), other(*copy, true);
  const bool isDone = attempt([&] { change(editor); });
  change(other);
  other.Commit();
  editor.Commit();
  if (isDone) require(contents(*mesh) == contents(*copy), "another change");
  require(mesh->GetVerticesArray().size() >= 30, "vertices are lost");
}

bool copyTexts(std::string* to, const std::string* from, unsigned count) {
  std::copy(from, from + count, to);
  return true;
}
bool equalTexts(const std::string* a, const std::string* b, unsigned count) {
  return std::equal(a, a + count, b);
}

// Fails or does all: `size` is that of the array before and after.
template <class Call>
void changesAnArray(const Attempt& attempt, Call call) {
  Array array(Array::default_sizefunc, copyTexts, equalTexts);
  Array other(Array::default_sizefunc, copyTexts, equalTexts);
  for (int i = 0; i < 9; ++i) array.push_back("a text beyond the short ones");
  for (int i = 0; i < 20; ++i) other.push_back("another text beyond the short ones");
  bool isDone = false;
  require(attempt([&] { isDone = call(array, other); }), "an array throws");
  for (const std::string& text : array) require(text.size() < 50, "a damaged element");
  for (const std::string& text : other) require(text.size() > 30, "a damaged source");
  require(isDone || array.size() <= 9, "larger after a failure");
  require(array.push_back("still usable, with memory") != nullptr, "no longer usable");
}

template <class Call>
void changesATable(const Attempt& attempt, Call call) {
  Table table(7);
  for (unsigned i = 0; i < 1024; ++i) table[{float(i), 0, 0}] = i;
  const bool isDone = attempt([&] { call(table); });
  // Required: a link that failed counts, and entries of its bucket are lost.
  require(table.count() >= 1024 && table.cells().size() <= table.count(), "a wrong count");
  for (unsigned i = 0; i < 1024; ++i) {
    const unsigned* found = table.find({float(i), 0, 0});
    require(found != nullptr ? *found == i : !isDone, "an entry is lost");
  }
}

}  // namespace

std::vector<Operation> meshOperations() {
  using Editor = Mesh::EditorBase;
  return {
      {"build a mesh", buildsAMesh},
      {"commit new triangles",
       [](const Attempt& a) { commits(a, [](Editor& e) { addStrip(e, 8); }); }},
      {"commit moved vertices",
       [](const Attempt& a) { commits(a, [](Editor& e) {
                                e.SetVertex(3, {9, 9, 9});
                              }); }},
      {"commit other materials",
       [](const Attempt& a) { commits(a, [](Editor& e) { e.SetTriangleMaterialID(4, 77); }); }},
      {"add vertices and triangles",
       [](const Attempt& a) { changes(a, [](Editor& e) { addStrip(e, 50); }); }},
      {"add texture coordinates",
       [](const Attempt& a) {
         changes(a, [](Editor& e) { e.SetTriangleUVCoords(1, {{5, 5}, {6, 6}, {7, 7}}); });
       }},
      {"add normals",
       [](const Attempt& a) {
         changes(a, [](Editor& e) {
           e.SetTriangleSmoothNormals(2, {{0, 0, 1}, {0, 0, 1}, {0, 1, 0}});
         });
       }},
      {"remove triangles",
       [](const Attempt& a) { changes(a, [](Editor& e) { e.RemoveTriangle(3); }); }},
      {"merge vertices",
       [](const Attempt& a) { changes(a, [](Editor& e) { e.MergeTriangleVertices(1u); }); }},
      {"smooth normals",
       [](const Attempt& a) { changes(a, [](Editor& e) { e.SmoothTriangleNormals(1u, 0.5f); }); }},
      {"turn normals",
       [](const Attempt& a) {
         changes(a, [](Editor& e) { e.ReorientTriangleSmoothNormals(1u); });
       }},
      {"copy a mesh",
       [](const Attempt& a) {
         const Handle source = makeStrip(60), target = makeStrip(30);
         Mesh::LightWeightEditor editor(*target, true);
         if (a([&] { editor.Copy(*source, false); })) return;
         editor.Abandon();
         require(target->GetVerticesArray().size() >= 30, "vertices are lost");
       }},
      {"copy a mesh without positions",
       [](const Attempt& a) {
         const Handle source = makeStrip(60), target = makeStrip(30);
         const auto before = contents(*target);
         Mesh::LightWeightEditor editor(*target, true);
         if (!a([&] { editor.CopyWithoutPositions(*source); })) {
           editor.Abandon();
           require(contents(*target) == before, "changed by a failure");
         }
       }},
      {"append to an array",
       [](const Attempt& a) {
         changesAnArray(a, [](Array& to, Array& from) { return to.push_back(from[0]) != nullptr; });
       }},
      {"reserve an array",
       [](const Attempt& a) {
         changesAnArray(a, [](Array& to, Array&) { return to.reserve(100); });
       }},
      {"copy an array",
       [](const Attempt& a) {
         changesAnArray(a, [](Array& to, Array& from) { return to.copy(from); });
       }},
      {"copy a part of an array",
       [](const Attempt& a) {
         changesAnArray(a, [](Array& to, Array& from) { return to.copy(from, 5, 12) == 12; });
       }},
      {"assign to an array",
       [](const Attempt& a) {
         changesAnArray(a, [](Array& to, Array& from) { return to.assign(33, from[1]); });
       }},
      {"make a table",
       [](const Attempt& a) {
         a([] {
           Table table(100);
           table.link_cell({1, 2, 3}, nullptr);
         });
       }},
      {"link a cell of a table",
       [](const Attempt& a) {
         changesATable(a, [](Table& t) {
           if (t.link_cell({-1, 0, 0}, nullptr) == nullptr) throw std::bad_alloc();
         });
       }},
      {"add to a table",
       [](const Attempt& a) { changesATable(a, [](Table& t) {
                                t[{-1, 0, 0}] = 1;
                              }); }},
      {"reserve a table",
       [](const Attempt& a) { changesATable(a, [](Table& t) { t.reserve(5000); }); }},
  };
}

}  // namespace vexa::faults
