#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "vexa/math/TQuaternion.h"
#include "vexa/math/TVector2D.h"
#include "vexa/math/TVector3D.h"
#include "vexa/math/ux_matrix44.h"

namespace vexa::importer {

using Matrix = Norvel::Vexa::ux_matrix44<double>;

/// A model as its file has it: plain data, nothing converted yet.
///
/// Matrices act on column vectors; lengths are in the file's units, times in seconds. Indices that
/// reach the users of this header have been checked (see checkModel).
struct SourceModel {
  static constexpr std::int32_t kNone = -1;

  struct Node {
    std::string name;
    /// Comes before its children; kNone for the root.
    std::int32_t parent = kNone;
    /// From this node to its parent, as stored: the pose without animation.
    Matrix local;
  };

  struct Influence {
    std::uint32_t vertex = 0;
    double weight = 0;
  };

  struct Bone {
    std::string name;
    /// kNone when the file has no node of that name.
    std::int32_t node = kNone;
    /// From the mesh to the bone, in the pose in which they were bound.
    Matrix offset;
    std::vector<Influence> influences;
  };

  struct Mesh {
    std::string name;
    std::uint32_t material = 0;
    std::vector<Oru::TVector3D<float>> points;
    /// One per point, or none. The origin is the lower left corner of the picture.
    std::vector<Oru::TVector2D<float>> uvs;
    std::vector<Oru::TVector3D<std::uint32_t>> triangles;
    std::vector<Bone> bones;
  };

  /// A mesh hung on a node. The same mesh may hang on several.
  struct Instance {
    std::int32_t node = 0;
    std::int32_t mesh = 0;
  };

  struct VectorKey {
    double time = 0;
    Oru::TVector3D<double> value{};
  };

  struct RotationKey {
    double time = 0;
    Oru::TQuaternion<double> value{};
  };

  /// The motion of one node: its local matrix is translation * rotation * scale. A list without
  /// keys leaves that part as the node has it. Times rise.
  struct Channel {
    std::int32_t node = 0;
    std::vector<VectorKey> translations;
    std::vector<RotationKey> rotations;
    std::vector<VectorKey> scales;
  };

  struct Clip {
    /// Unique within the model.
    std::string name;
    std::vector<Channel> channels;
  };

  std::vector<Node> nodes;
  std::vector<Mesh> meshes;
  std::vector<Instance> instances;
  /// Their names; a material is its index here.
  std::vector<std::string> materials;
  std::vector<Clip> clips;
  /// From the file's axes to right-handed ones with +Y up, over and above what the nodes do.
  Matrix axes;
  /// What was left out or repaired, one line each.
  std::vector<std::string> notes;
};

}  // namespace vexa::importer
