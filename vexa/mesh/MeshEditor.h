#pragma once

#include <vector>

#include "vexa/Export.h"
#include "vexa/mesh/Mesh.h"
#include "vexa/mesh/uxs_hashtable.h"

namespace UXS {

/// Writes a mesh while it lives, and commits when it goes.
///
/// Use Editor, whose commit derives everything anew, or LightWeightEditor. The mesh is borrowed and
/// must outlive its editor; one editor at a time. Until the commit the sections, edges, groups,
/// boxes and normals are those of the commit before. Indices are the caller's to keep in range:
/// they are asserted in debug builds only. An exception during the commit terminates the program,
/// unless it is Commit() that commits.
///
/// Uv and normals that a commit has emptied come back as zeros for all triangles as soon as one
/// is written or a triangle is added.
class VEXA_EXPORT Mesh::EditorBase : public uxs_reference {
 public:
  /// Unless keepDate is set, the commit dates the mesh to that moment.
  EditorBase(Mesh& mesh, bool keepDate);
  EditorBase(const EditorBase&) = delete;
  EditorBase& operator=(const EditorBase&) = delete;
  /// Only dates the mesh.
  ~EditorBase() override;

  /// Ends the edit without a commit: what has been written stays, nothing is derived from it. This
  /// object has then no further use.
  void Abandon() { mMesh = nullptr; }

  /// Reserves room for n vertices.
  void SetVerticesCount(unsigned int n);
  /// Reserves room for n triangles and three vertices for each.
  void SetTrianglesCount(unsigned int n);
  /// Appends a vertex and gives its index.
  unsigned int AddVertex(const Position& position);
  /// Appends a triangle, with uv and normals of zero, and gives its index. The corners' vertices
  /// must be there when the edit is committed.
  unsigned int AddTriangle(const Corners& corners, unsigned int material);
  void SetVertex(unsigned int vertex, const Position& position);
  void SetTriangleMaterialID(unsigned int triangle, unsigned int material);
  void SetTriangleUVCoords(unsigned int triangle, const CornerUVs& uv);
  void SetTriangleSmoothNormals(unsigned int triangle, const CornerPositions& normals);
  /// Removes a triangle; those behind it move up. Vertices stay.
  void RemoveTriangle(unsigned int triangle);
  /// Removes all triangles; vertices stay.
  void RemoveAllTriangles();
  /// Takes over vertices, triangles, material ids and uv of another mesh, and its normals unless
  /// they are skipped. Without memory for it, throws std::bad_alloc and changes nothing.
  void Copy(const Mesh& source, bool skipNormals);
  /// Like Copy(source, true), but leaves the positions to the caller: gives an array with room for
  /// as many as the source has, all of which must be written before the commit. What is in it
  /// before is unspecified. Null when the source has no vertices.
  Position* CopyWithoutPositions(const Mesh& source);
  /// Lets corners of the listed triangles at exactly the same position use one vertex: the first
  /// met. Vertices no longer used stay. Without memory the corners that are left keep theirs.
  void MergeTriangleVertices(const std::vector<unsigned int>& triangles);
  /// The same for each section of a material by itself; the sections are those of the last commit.
  void MergeTriangleVertices(unsigned int material);

  /// Turns round the corner normals of the listed triangles that look away from their face.
  void ReorientTriangleSmoothNormals(const std::vector<unsigned int>& triangles);
  /// The same for all triangles that have this material now.
  void ReorientTriangleSmoothNormals(unsigned int material);
  /// Gives the corners of the listed triangles the normals that
  /// Mesh::Impl::ProcessTriangleSmoothNormal() computes for an angle in degrees among these
  /// triangles; others count for nothing. If no triangle of the mesh has normals yet, those that
  /// are not listed get their face normal. The next commit keeps all of them. Throws
  /// std::bad_alloc, with nothing changed.
  void SmoothTriangleNormals(const std::vector<unsigned int>& triangles, float angle);
  /// The same for all triangles that have this material now.
  void SmoothTriangleNormals(unsigned int material, float angle);
  /// The same for each section of the last commit by itself, with one angle per section; sections
  /// past the last angle are left alone.
  void SmoothTriangleNormals(const std::vector<float>& angles);

 protected:
  Impl& data() { return *mMesh->mImpl; }
  bool isOpen() const { return mMesh != nullptr; }
  void dateMesh();

 private:
  Mesh* mMesh;  // null when the edit is over
  bool mKeepDate;
};

/// The editor whose commit runs Mesh::Impl::Process().
class VEXA_EXPORT Mesh::Editor : public Mesh::EditorBase {
 public:
  using EditorBase::EditorBase;
  ~Editor() override;

  /// Commits now and ends the edit. Throws std::bad_alloc when memory runs out; the edit is then
  /// abandoned.
  void Commit();
};

/// The editor whose commit runs Mesh::Impl::ProcessLightWeight(): for edits that move vertices and
/// keep sections, groups and boxes.
class VEXA_EXPORT Mesh::LightWeightEditor : public Mesh::EditorBase {
 public:
  using EditorBase::EditorBase;
  ~LightWeightEditor() override;
};

/// Merges the corners of one triangle with those in the table: a corner at a position in the table
/// takes the index stored there, the others are added. Exceptions from the table are swallowed.
VEXA_EXPORT void InternalMergeTriangleVertices(
    unsigned int triangle, Mesh::Impl& mesh,
    uxs_hashtable<Oru::TVector3D<float>, unsigned int>& table);

}  // namespace UXS
