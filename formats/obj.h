#pragma once

#include <array>
#include <string>
#include <vector>

#include "vexa/math/TVector3D.h"
#include "vexa/mesh/MeshEditor.h"

namespace vexa::formats {

struct ObjCorner {
  unsigned int point = 0;
  float u = 0, v = 0;
};

struct ObjTriangle {
  std::array<ObjCorner, 3> corners;
  unsigned int material = 0;
};

/// What we keep of an OBJ file: points in scene units, triangles with texture coordinates and
/// materials.
struct ObjModel {
  std::vector<Oru::TVector3D<float>> points;
  std::vector<ObjTriangle> triangles;
  /// The names of materials 0, 1, ...; a material without one is called by its number.
  std::vector<std::string> materials;
};

/// Reads the text of an OBJ file. Errors start with `name`.
///
/// Polygons become fans around their first corner. Where all materials are called by numbers, these
/// are their ids and no names are kept; else ids count up from 0 in order of appearance. Triangles
/// before any "usemtl" have a material without a name, 0 among numbers. Normals, groups, lines and
/// material files are not read.
/// Throws std::runtime_error "NAME:LINE: what is wrong" for a word that is not a number, a point or
/// uv that does not exist, and a face of fewer than three corners.
ObjModel parseObj(const std::string& text, const std::string& name);
/// Reads a file. Throws as parseObj, and "PATH: what is wrong" when it cannot be read.
ObjModel readObj(const std::string& path);

/// The text of an OBJ file, whatever the locale: parseObj gives the same floats back. Uv that are
/// all zero are left out. `materialFile`, if any, is named as the one that holds the materials.
/// Throws std::invalid_argument for a corner past the last point.
std::string formatObj(const ObjModel& model, const std::string& materialFile = "");
/// The text in two parts, for meshes whose points alone change: first the points, then what the
/// rest of the model says, its texture coordinates and faces.
void appendObjPoints(const std::vector<Oru::TVector3D<float>>& points, std::string& ioText);
std::string formatObjFaces(const ObjModel& model);
/// Writes a file whole or not at all. Throws as formatObj, and std::runtime_error "PATH: what is
/// wrong" when it cannot be written.
void writeObj(const std::string& path, const ObjModel& model, const std::string& materialFile = "");

/// How a material is called in the text: its name on one line, or its number.
std::string nameInObj(const ObjModel& model, unsigned int material);

/// Throws std::invalid_argument for a corner past the last point.
void checkCorners(const ObjModel& model);

/// A committed mesh as a model; its materials have no names.
ObjModel objOf(const UXS::Mesh& mesh);
/// Appends a model to the mesh of an editor. Throws std::invalid_argument, with nothing appended,
/// for a corner past the model's last point.
void addTo(UXS::Mesh::EditorBase& editor, const ObjModel& model);

}  // namespace vexa::formats
