#pragma once

#include <string>
#include <vector>

#include "formats/obj.h"
#include "importer/model_reference.h"

namespace vexa::importer {

/// A model at rest as one mesh, and what moves its vertices.
struct RestMesh {
  /// In host space.
  formats::ObjModel mMesh;
  std::vector<Joint> mJoints;
  /// Per joint: from host space, where the mesh lies at rest, to the joint's node.
  std::vector<Matrix> mBinds;
  /// One per point of the mesh.
  std::vector<ModelReference::Bound> mBound;
};

/// Turns what hangs on the nodes of a checked model into one mesh, welded where position and links
/// are the same. Repairs are noted; throws std::runtime_error when there are no triangles.
RestMesh buildRestMesh(const SourceModel& model, const Matrix& worldToHost,
                       std::vector<std::string>& ioNotes);

}  // namespace vexa::importer
