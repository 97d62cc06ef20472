#pragma once

#include <memory>
#include <vector>

#include "vexa/Export.h"
#include "vexa/math/TBox3D.h"
#include "vexa/math/TVector2D.h"
#include "vexa/math/TVector3D.h"
#include "vexa/mesh/Mesh.h"
#include "vexa/mesh/SharedVector.h"
#include "vexa/mesh/uxs_hashtable.h"

namespace UXS {

class MeshSmoothData;
class MeshSmoothList;
struct MeshExtent;
struct TriangleArrays;

/// The data of a mesh and the steps that derive one part of it from another.
///
/// Editors write the first arrays and call Process() or ProcessLightWeight(). The steps can be run
/// one by one; each relies on those before it, and on data and list having been made from the
/// triangles as they now are. Arrays with one entry per triangle are empty or as long
/// as mTriangles whenever a step ends.
struct VEXA_EXPORT Mesh::Impl {
  /// The group id of a triangle that has not been reached.
  static constexpr unsigned int kNoGroup = 0xFFFFFFFF;

  std::vector<Position> mVertices;
  SharedVector<Corners> mTriangles;
  SharedVector<unsigned int> mMaterialIDs;      // one per triangle
  SharedVector<CornerUVs> mUVCoords;            // one per triangle, or none
  std::vector<CornerPositions> mSmoothNormals;  // one per triangle, or none
  bool mIsStatic = false;
  const Mesh* mMainMesh = nullptr;
  SharedVector<unsigned int> mSections;  // the first triangle of each
  double mDate;
  Oru::TBox3D<float> mAABB{};
  uxs_hashtable<unsigned int, Oru::TBox3D<float>> mMaterialAABBs{1024};
  std::vector<Oru::TVector2D<unsigned int>> mEdges;
  SharedVector<unsigned int> mGroupIDs;  // one per triangle

  /// Empty and dated now.
  Impl();
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;
  ~Impl();

  unsigned int GetSectionMaterialID(unsigned int section) const;
  unsigned int GetSectionTrianglesCount(unsigned int section) const;
  unsigned int GetTriangleIDFromSectionTriangleID(unsigned int section, unsigned int k) const;
  /// The unit face normal: n = (p2 - p1) x (p0 - p1) over its length; zero when n.n is not above 0.
  Position ProcessTriangleNormal(unsigned int triangle) const;

  /// Takes over what Mesh::EditorBase::Copy() says.
  void Copy(const Impl& source, bool skipNormals);
  /// Takes over what Mesh::EditorBase::CopyWithoutPositions() says; mVertices has the right length.
  void CopyWithoutPositions(const Impl& source);

  /// Derives everything from vertices, triangles and what is given per triangle. Throws
  /// std::bad_alloc, with nothing changed.
  ///
  /// Gives what the steps below give one after the other, in that order. What follows from the
  /// triangles alone is derived once and shared by copies.
  void Process();
  /// Derives the edges, and the normals if there are none; leaves the rest as it was. Triangles
  /// added since the groups were made have kNoGroup. Throws as Process().
  void ProcessLightWeight();

  /// Makes the arrays that have an entry per triangle as long as the triangles: short ones are
  /// filled with zeros, long ones cut. Empty uv and normals, which a mesh may lack, stay empty.
  void FitTriangleArrays();
  /// Empties uv and normals that are all zero, then orders the triangles by material id; those of
  /// one material keep their order.
  void ProcessTrianglesSort();
  /// Finds where a new material begins.
  void ProcessSections();
  /// Fills empty corner normals: with the face normal for an angle of 0 or less, else with
  /// ProcessTriangleSmoothNormal. Normals that are there stay.
  void ProcessTrianglesNormals(const MeshSmoothData& data, const MeshSmoothList& list, float angle);
  /// The normal at one corner (0, 1 or 2) of a triangle: the sum of the face normals around the
  /// vertex, weighted by their corner angles, of the faces that lie within `angle` degrees. A face
  /// that looks the opposite way within that angle counts with its normal reversed.
  Position ProcessTriangleSmoothNormal(unsigned int triangle, unsigned int corner, float angle,
                                       const MeshSmoothData& data,
                                       const MeshSmoothList& list) const;
  /// Measures the mesh and each section. Throws std::bad_alloc when a material's box cannot be had.
  void ProcessAABB();
  /// Finds the edges to draw: a boundary edge of one triangle, and an edge between two that do not
  /// lie in one plane. Only the triangles in `list` count as neighbours, in any order; of several
  /// later ones the last listed decides. Takes time in the square of a vertex's triangles; a commit
  /// finds the same edges in linear time.
  void ProcessEdges(const MeshSmoothData& data, const MeshSmoothList& list);
  /// Numbers the pieces that are connected through vertex indices, section by section.
  /// Required behaviour: the first triangle of a section uses up a number, also when its piece has
  /// one already.
  void ProcessGroupID(const MeshSmoothList& list);

 private:
  struct FrameMemory;
  struct Topology;
  struct Frame;

  void copyTriangles(const Impl& source, std::vector<CornerPositions> normals);
  void adopt(TriangleArrays arrays);
  void storeBoxes(const MeshExtent& extent);

  std::shared_ptr<const Topology> mTopology;  // null until there is a full commit
  std::unique_ptr<FrameMemory> mFrameMemory;  // of a copy; comes from and goes to mTopology
};

}  // namespace UXS
