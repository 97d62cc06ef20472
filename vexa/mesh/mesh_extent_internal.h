#pragma once

#include <cstddef>
#include <vector>

#include "vexa/math/TBox3D.h"
#include "vexa/mesh/Mesh.h"

// The boxes around a mesh and its sections.
namespace UXS {

// The box around all triangles, and one around each section's.
struct MeshExtent {
  Oru::TBox3D<float> mAll;
  std::vector<Oru::TBox3D<float>> mSections;
};

// The vertices of a mesh, grouped by the sections whose triangles use them, so that each vertex is
// read once however many triangles and sections use it.
//
// The groups are a tree: below the root, which holds the unused vertices, a group's vertices are
// those of its parent's sections and of one later section.
class VertexGroups {
 public:
  VertexGroups(const std::vector<Mesh::Corners>& triangles,
               const std::vector<unsigned int>& sections, std::size_t vertices);

  std::size_t size() const { return mGroups.size(); }

  // Measures a mesh whose vertices lie at these positions. False, with the boxes unspecified, where
  // the order of the corners decides about a bit: a NaN, or a bound of zero beside a -0.
  // ioScratch holds size() boxes, ioExtent a box for each section.
  bool measure(const std::vector<Mesh::Position>& positions,
               std::vector<Oru::TBox3D<float>>& ioScratch, MeshExtent& ioExtent) const;

 private:
  static constexpr unsigned int kRoot = 0;
  struct Group {
    unsigned int mSection;      // the last of the sections that use its vertices
    unsigned int mParent;       // the group of the sections before; always a lower index
    unsigned int mNewestChild;  // or kRoot, while there is none
    unsigned int mBegin, mEnd;  // in mVertices, ascending
  };

  unsigned int childOf(unsigned int group, unsigned int section);
  void distribute(const std::vector<unsigned int>& groupOfVertex);

  std::vector<Group> mGroups;
  std::vector<unsigned int> mVertices;
};

// The boxes by a walk over all corners in their order, exact for any positions.
void measureCorners(const std::vector<Mesh::Position>& positions,
                    const std::vector<Mesh::Corners>& triangles,
                    const std::vector<unsigned int>& sections, MeshExtent& ioExtent);

}  // namespace UXS
