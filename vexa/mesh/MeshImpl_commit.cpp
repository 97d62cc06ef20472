// What an editor's commit runs: the steps of MeshImpl.cpp at speed. All memory first, then the
// change, so that a commit without memory leaves the mesh as it was.
#include <cstddef>
#include <memory>
#include <new>
#include <optional>
#include <utility>

#include "vexa/mesh/MeshTopology_internal.h"
#include "vexa/mesh/mesh_frame_internal.h"
#include "vexa/mesh/mesh_sorting_internal.h"

namespace UXS {

Mesh::Impl::Topology::Topology(const SharedVector<Corners>& triangles,
                               const SharedVector<unsigned int>& materials, std::size_t vertices)
    : mTriangles(triangles),
      mMaterialIDs(materials),
      mSections(findSections(materials)),
      mGroupIDs(labelComponents(triangles, mSections, vertices)),
      mFrame(triangles, vertices),
      mVertexGroups(triangles, mSections, vertices) {}

// The arrays that a commit fills: those of the mesh, or, where these have no room, those of a copy
// that is gone. Making it takes the memory; filling it cannot fail.
struct Mesh::Impl::Frame {
  // Where normals stay, the face normals go to a scratch array from `spare` if it is not null.
  Frame(Impl& mesh, const TriangleArrays& arrays, const FrameTopology& topology,
        Spare<FrameMemory>* spare);
  ~Frame() {
    if (mSpare && mScratch) mSpare->keep(std::move(mScratch));
  }

  // Fills in the edges, and the normals where there are none.
  void fill();

  Impl& mMesh;
  const FrameTopology& mTopology;
  const mesh_frame::Forms mForms = mesh_frame::formsFor(16);
  bool mIsWithoutNormals;
  Spare<FrameMemory>* mSpare;
  std::unique_ptr<FrameMemory> mScratch;  // null where the mesh is without normals
  std::vector<CornerPositions>* mNormals;
  std::vector<Edge>* mEdges;
};

Mesh::Impl::Frame::Frame(Impl& mesh, const TriangleArrays& arrays, const FrameTopology& topology,
                         Spare<FrameMemory>* spare)
    : mMesh(mesh),
      mTopology(topology),
      mIsWithoutNormals(
          (arrays.mHasNewNormals ? arrays.mSmoothNormals : mesh.mSmoothNormals).empty()),
      mSpare(spare),
      mNormals(&mesh.mSmoothNormals),
      mEdges(&mesh.mEdges) {
  const std::size_t triangles = topology.mOffsets.size(), edges = topology.mEdges.mEdges.size();
  FrameMemory* const memory = mesh.mFrameMemory.get();
  if (memory && mNormals->capacity() < triangles) mNormals = &memory->mSmoothNormals;
  if (memory && mEdges->capacity() < edges) mEdges = &memory->mEdges;
  if (!mIsWithoutNormals) {
    if (mSpare) mScratch = mSpare->take();
    if (!mScratch) mScratch = std::make_unique<FrameMemory>();
    mNormals = &mScratch->mSmoothNormals;
  }
  mNormals->reserve(triangles);
  mEdges->reserve(edges);
}

void Mesh::Impl::Frame::fill() {
  mNormals->resize(mTopology.mOffsets.size());
  mesh_frame::fillFaceNormals(mMesh.mVertices, mTopology, *mNormals, mForms);
  mesh_frame::fillEdges(*mNormals, mTopology.mEdges, *mEdges, mForms);
  if (mEdges != &mMesh.mEdges) mEdges->swap(mMesh.mEdges);
  if (mIsWithoutNormals && mNormals != &mMesh.mSmoothNormals) mNormals->swap(mMesh.mSmoothNormals);
}

// Arrays that have the right length already are shared with the source, not copied. All memory is
// taken into locals first; the assignments cannot fail.
void Mesh::Impl::copyTriangles(const Impl& source, std::vector<CornerPositions> normals) {
  const std::size_t count = source.mTriangles.size();
  SharedVector<unsigned int> materials = source.mMaterialIDs;
  SharedVector<CornerUVs> uv = source.mUVCoords;
  materials.resize(count);
  if (!uv.empty()) uv.resize(count);
  if (!normals.empty()) normals.resize(count);

  mTriangles = source.mTriangles;
  mMaterialIDs = std::move(materials);
  mUVCoords = std::move(uv);
  mSmoothNormals = std::move(normals);
  mTopology = source.mTopology;
}

void Mesh::Impl::Copy(const Impl& source, bool skipNormals) {
  mVertices.reserve(source.mVertices.size());
  copyTriangles(source, skipNormals ? mSmoothNormals : source.mSmoothNormals);
  mVertices = source.mVertices;
}

void Mesh::Impl::CopyWithoutPositions(const Impl& source) {
  mTopology = source.mTopology;  // to which the memory returns
  if (!mFrameMemory && mTopology) mFrameMemory = mTopology->mFrameMemory.take();
  if (!mFrameMemory) mFrameMemory = std::make_unique<FrameMemory>();
  const std::size_t count = source.mVertices.size();
  if (mVertices.capacity() < count) {
    mFrameMemory->mVertices.resize(count);
    copyTriangles(source, mSmoothNormals);
    mVertices.swap(mFrameMemory->mVertices);
  } else {
    copyTriangles(source, mSmoothNormals);
    mVertices.resize(count);
  }
}

// Keeps the memory of normals that go, as new ones will follow.
void Mesh::Impl::adopt(TriangleArrays arrays) {
  mTriangles = std::move(arrays.mTriangles);
  mMaterialIDs = std::move(arrays.mMaterialIDs);
  mUVCoords = std::move(arrays.mUVCoords);
  if (!arrays.mHasNewNormals) return;
  if (arrays.mSmoothNormals.empty()) {
    mSmoothNormals.clear();
  } else {
    mSmoothNormals = std::move(arrays.mSmoothNormals);
  }
}

//   take memory                                     |  change the mesh
//   ------------------------------------------------+---------------------------------------
//   arrays in order of material, or shared          |  adopt
//   topology: sections, groups, edges that may be   |  sections, groups
//     drawn; made when triangles or materials are   |  boxes around all vertices
//     not those that it was made from               |  normals, where there are none
//   room for normals, edges, boxes                  |  edges
//
// A deformed copy shares its triangles with the mesh that it comes from, so its commit takes the
// same topology and computes only what depends on positions.
void Mesh::Impl::Process() {
  const bool isKnown = mTopology && mTriangles.shares(mTopology->mTriangles) &&
                       mMaterialIDs.shares(mTopology->mMaterialIDs);
  TriangleArrays arrays = isKnown ? trimmedTriangles(*this) : sortedTriangles(*this);
  std::shared_ptr<const Topology> topology = mTopology;
  if (!isKnown) {
    topology = std::make_shared<Topology>(arrays.mTriangles, arrays.mMaterialIDs, mVertices.size());
  }
  Frame frame(*this, arrays, topology->mFrame, &topology->mFrameMemory);
  std::vector<Oru::TBox3D<float>> groupBoxes(topology->mVertexGroups.size());
  MeshExtent extent{{}, std::vector<Oru::TBox3D<float>>(topology->mSections.size())};
  if (!mMaterialAABBs.reserve(unsigned(extent.mSections.size()))) throw std::bad_alloc();

  // From here on nothing fails.
  adopt(std::move(arrays));
  mSections = topology->mSections;
  mGroupIDs = topology->mGroupIDs;
  mTopology = topology;
  // Where the order of the corners decides about a bit, the plain walk decides.
  if (!topology->mVertexGroups.measure(mVertices, groupBoxes, extent)) {
    measureCorners(mVertices, mTriangles, mSections, extent);
  }
  storeBoxes(extent);
  frame.fill();
}

void Mesh::Impl::ProcessLightWeight() {
  TriangleArrays arrays = fittedTriangles(*this);
  SharedVector<unsigned int> groups = mGroupIDs;
  if (groups.size() != mTriangles.size()) groups.edit().resize(mTriangles.size(), kNoGroup);
  const bool isKnown = mTopology && mTriangles.shares(mTopology->mTriangles);
  std::optional<FrameTopology> derived;
  if (!isKnown) derived.emplace(mTriangles, mVertices.size());
  Frame frame(*this, arrays, isKnown ? mTopology->mFrame : *derived,
              isKnown ? &mTopology->mFrameMemory : nullptr);

  // From here on nothing fails.
  adopt(std::move(arrays));
  mGroupIDs = std::move(groups);
  frame.fill();
}

}  // namespace UXS
