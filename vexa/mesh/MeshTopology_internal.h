#pragma once

#include <atomic>
#include <memory>
#include <vector>

#include "vexa/mesh/MeshImpl.h"
#include "vexa/mesh/SharedVector.h"
#include "vexa/mesh/mesh_extent_internal.h"
#include "vexa/mesh/mesh_topology_internal.h"

namespace UXS {

// At most one object that is set aside for the next user, on any thread.
template <class T>
class Spare {
 public:
  Spare() = default;
  Spare(const Spare&) = delete;
  Spare& operator=(const Spare&) = delete;
  ~Spare() { delete mObject.load(); }

  // Null when there is none.
  std::unique_ptr<T> take() { return std::unique_ptr<T>(mObject.exchange(nullptr)); }
  void keep(std::unique_ptr<T> object) { delete mObject.exchange(object.release()); }

 private:
  std::atomic<T*> mObject{nullptr};
};

// The arrays of one deformed copy of a mesh. New pages cost more than all that is computed into
// them, so that the next copy uses the arrays of one that is gone.
struct Mesh::Impl::FrameMemory {
  std::vector<Position> mVertices;
  std::vector<CornerPositions> mSmoothNormals;
  std::vector<Edge> mEdges;
};

// What a commit derives from the triangles and their materials, wherever the vertices are: made
// once, read-only, and shared by all copies of a mesh.
//
// It belongs to a mesh as long as that has the very same mTriangles and mMaterialIDs. These are
// held here too, so that an edit of the mesh copies them before it changes them.
struct Mesh::Impl::Topology {
  Topology(const SharedVector<Corners>& triangles, const SharedVector<unsigned int>& materials,
           std::size_t vertices);

  SharedVector<Corners> mTriangles;  // in order of their materials
  SharedVector<unsigned int> mMaterialIDs;
  SharedVector<unsigned int> mSections;
  SharedVector<unsigned int> mGroupIDs;
  FrameTopology mFrame;
  VertexGroups mVertexGroups;

  mutable Spare<FrameMemory> mFrameMemory;
};

}  // namespace UXS
