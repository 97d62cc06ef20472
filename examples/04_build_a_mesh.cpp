// Builds a table from boxes, lets the mesh derive edges and groups, and writes what came out:
// table.obj for any viewer, table_edges.csv with the lines that a renderer would draw.
#include <cstdio>
#include <set>
#include <string>

#include "formats/obj.h"
#include "formats/write_file.h"
#include "vexa/vexa.h"

namespace {

using Position = UXS::Mesh::Position;
enum Material { kLegs = 1, kTop = 2 };

// Six sides of two triangles, each side with corners of its own.
void addBox(UXS::Mesh::Editor& editor, Position low, Position high, Material material) {
  const auto corner = [&](int i) {
    return Position{(i & 1) != 0 ? high.x : low.x, (i & 2) != 0 ? high.y : low.y,
                    (i & 4) != 0 ? high.z : low.z};
  };
  // Counter-clockwise as seen from outside: bottom, top, front, back, left, right.
  const int sides[6][4] = {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4},
                           {3, 2, 6, 7}, {2, 0, 4, 6}, {1, 3, 7, 5}};
  for (const auto& side : sides) {
    unsigned int v[4];
    for (int i = 0; i < 4; ++i) v[i] = editor.AddVertex(corner(side[i]));
    editor.AddTriangle({v[0], v[1], v[2]}, material);
    editor.AddTriangle({v[0], v[2], v[3]}, material);
  }
}

void report(const char* when, const UXS::Mesh& mesh) {
  std::set<unsigned int> groups;
  for (unsigned int t = 0; t < mesh.GetTrianglesArray().size(); ++t) {
    groups.insert(mesh.GetTriangleGroupID(t));
  }
  std::printf("%s: %zu triangles in %u sections, %zu edges, %zu groups\n", when,
              mesh.GetTrianglesArray().size(), mesh.GetSectionsCount(), mesh.GetEdgesArray().size(),
              groups.size());
}

std::string edgesAsCsv(const UXS::Mesh& mesh) {
  std::string text = "from,to\n";
  for (const auto& edge : mesh.GetEdgesArray()) {
    text += std::to_string(edge.x) + ',' + std::to_string(edge.y) + '\n';
  }
  return text;
}

}  // namespace

int main() {
  UXS::Mesh mesh;
  {
    UXS::Mesh::Editor editor(mesh, false);
    for (const float x : {0.0f, 1.5f}) {
      for (const float y : {0.0f, 0.7f}) {
        addBox(editor, {x, y, 0}, {x + 0.1f, y + 0.1f, 0.7f}, kLegs);
      }
    }
    addBox(editor, {-0.1f, -0.1f, 0.7f}, {1.7f, 0.9f, 0.75f}, kTop);
  }                          // the commit: everything else is derived here
  report("as built", mesh);  // every side is a piece of its own, framed by four edges

  {
    UXS::Mesh::Editor editor(mesh, false);
    // Corners at one place become one vertex, so neighbouring sides now share their edges.
    editor.MergeTriangleVertices(kLegs);
    editor.MergeTriangleVertices(kTop);
  }
  report("merged", mesh);  // five boxes of twelve edges

  const Oru::TBox3D<float>& box = mesh.GetAABB();
  std::printf("the table is %.2f by %.2f and %.2f high\n", double(box.mMax.x - box.mMin.x),
              double(box.mMax.y - box.mMin.y), double(box.mMax.z - box.mMin.z));
  vexa::formats::writeObj("table.obj", vexa::formats::objOf(mesh));
  vexa::formats::writeFile("table_edges.csv", edgesAsCsv(mesh));
  return mesh.GetEdgesArray().size() == 60 ? 0 : 1;
}
