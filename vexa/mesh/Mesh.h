#pragma once

#include <memory>
#include <vector>

#include "vexa/Export.h"
#include "vexa/math/TBox3D.h"
#include "vexa/math/TVector2D.h"
#include "vexa/math/TVector3D.h"
#include "vexa/mesh/uxs_reference.h"

namespace UXS {

/// A triangle mesh: shared vertex positions, and per triangle its corners, material, texture
/// coordinates, corner normals and group.
///
/// A mesh is written only through an editor (MeshEditor.h). When the editor goes, the mesh derives
/// the rest: triangles in ascending order of their material, cut into sections (runs of one
/// material); boxes; drawn edges; groups of connected triangles. What is read here is up to date
/// between edits only.
///
/// Positions are in scene units, +Z up; corners counter-clockwise as seen from the front. Indices
/// are the caller's to keep in range: they are asserted in debug builds only. Two threads may not
/// use one mesh at once; only the count of references is atomic. A copy of the object shares the
/// data of the original; Editor::Copy makes data of its own.
class VEXA_EXPORT Mesh : public uxs_reference {
 public:
  using Position = Oru::TVector3D<float>;
  /// One value per corner, in corner order.
  using Corners = Oru::TVector3D<unsigned int>;
  using CornerPositions = Oru::TVector3D<Position>;
  using CornerUVs = Oru::TVector3D<Oru::TVector2D<float>>;

  struct Impl;
  class EditorBase;
  class Editor;
  class LightWeightEditor;

  /// An empty mesh, dated now, without references.
  Mesh();
  ~Mesh() override;

  const std::vector<Position>& GetVerticesArray() const;
  const std::vector<Corners>& GetTrianglesArray() const;
  /// The edges that are drawn as lines, as pairs of vertex indices: those of one triangle only, and
  /// those between two that do not lie in one plane.
  const std::vector<Oru::TVector2D<unsigned int>>& GetEdgesArray() const;
  /// When the mesh was last changed: get_time() of the last edit that did not keep the date.
  double GetDate() const;
  /// The extent of all triangles; vertices that no triangle uses do not count.
  const Oru::TBox3D<float>& GetAABB() const;
  /// The extent of the triangles of a material. An unknown one gets an empty entry in the table;
  /// throws std::bad_alloc when there is no memory for it.
  Oru::TBox3D<float> GetMaterialAABB(unsigned int material) const;

  CornerPositions GetTriangleCoords(unsigned int triangle) const;
  /// The unit face normal; zero for a triangle without area.
  Position GetTriangleNormal(unsigned int triangle) const;
  const CornerPositions& GetTriangleSmoothNormals(unsigned int triangle) const;
  /// The corner normals N0, N1, N2 mixed: n = x N0 + y N1 + z N2, scaled to unit length; zero when
  /// n.n is no more than 1e-8.
  Position GetSmoothNormal(unsigned int triangle, const Position& weights) const;
  bool HasUVCoords() const;
  const CornerUVs& GetTriangleUVCoords(unsigned int triangle) const;
  unsigned int GetTriangleMaterialID(unsigned int triangle) const;
  /// Triangles connected through vertex indices have one group id. Ids rise from 0, with gaps.
  unsigned int GetTriangleGroupID(unsigned int triangle) const;

  unsigned int GetSectionsCount() const;
  unsigned int GetSectionMaterialID(unsigned int section) const;
  unsigned int GetSectionTrianglesCount(unsigned int section) const;
  /// The mesh's triangle that is number k of a section.
  unsigned int GetTriangleIDFromSectionTriangleID(unsigned int section, unsigned int k) const;
  CornerPositions GetSectionTriangleCoords(unsigned int section, unsigned int k) const;
  Position GetSectionTriangleNormal(unsigned int section, unsigned int k) const;
  const CornerPositions& GetSectionTriangleSmoothNormals(unsigned int section,
                                                         unsigned int k) const;
  Position GetSectionSmoothNormal(unsigned int section, unsigned int k,
                                  const Position& weights) const;
  const CornerUVs& GetSectionTriangleUVCoords(unsigned int section, unsigned int k) const;

  /// A mesh that this one belongs to, for the host's use; null at first, not owned.
  const Mesh* GetMainMesh() const;
  void SetMainMesh(const Mesh* mesh);
  /// A mark for the host's use; false at first.
  bool GetStaticMesh() const;
  void SetStaticMesh(bool isStatic);

  /// Whether two unit normals belong to parallel planes: 1 - |a.b| < 1e-5. Opposite normals do.
  static bool Coplanar(const Position& a, const Position& b);

 private:
  std::shared_ptr<Impl> mImpl;
};

}  // namespace UXS
