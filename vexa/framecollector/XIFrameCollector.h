#pragma once

#include "vexa/Export.h"
#include "vexa/host/CZelUUID.h"
#include "vexa/math/TVector3D.h"
#include "vexa/math/uxs_generic_mat4.h"

namespace UXS {
class Mesh;
}

namespace Norvel::Vexa {

/// A store of baked node transformations from which a skinned mesh is deformed.
///
/// A node (a bone) has one 4x4 matrix per take and frame; a vertex of the rest mesh is linked to
/// nodes by weights. Takes, frames, nodes and vertices are counted from 0. A collector is filled
/// once (takes, global transformation, then node by node its matrices and links) and then read.
/// The order of the virtual operations is fixed.
///
/// One thread at a time. Failed checks throw std::runtime_error, memory that runs out
/// std::bad_alloc.
class VEXA_EXPORT XIFrameCollector {
 public:
  virtual ~XIFrameCollector() = default;

  /// Appends one matrix to a take of a node; -1 (any negative number) makes a new node first.
  /// Returns the node's index: a caller that passes it on fills that node frame by frame.
  virtual unsigned int AddTransformation(const UXS::uxs_generic_mat4<float>& matrix,
                                         unsigned int take, int node) = 0;

  /// The transformation applied after the blend of the nodes; the identity at first.
  virtual void SetGlobalTransformation(const UXS::uxs_generic_mat4<float>& matrix) = 0;
  virtual const UXS::uxs_generic_mat4<float>& GetGlobalTransformation() const = 0;

  /// One stored matrix. The reference holds until matrices or nodes are added.
  virtual const UXS::uxs_generic_mat4<float>& GetTransformation(unsigned int take,
                                                                unsigned int frame,
                                                                int node) const = 0;

  /// Links a vertex of the rest mesh to a node. Weights need not sum to 1. No operation reads the
  /// definition. The node need not exist: such a link is reported and skipped while blending.
  virtual void AddLink(int node, const UxZel::CZelUUID& definition, unsigned int vertex,
                       double weight) = 0;

  /// The weighted sum of the matrices of the vertex's nodes, under the global transformation and
  /// not divided by the sum of the weights, which goes to outWeightSum. The vertex is an element of
  /// the rest mesh's own vertex array: its address counts. A vertex without links gives the
  /// identity and leaves outWeightSum as it was.
  virtual UXS::uxs_generic_mat4<float> GetVertexTransformation(const Oru::TVector3D<float>* vertex,
                                                               unsigned int take,
                                                               unsigned int frame,
                                                               double& outWeightSum) const = 0;

  /// The deformed position of a vertex, in scene units; the vertex is given by its address in the
  /// rest mesh's own array.
  /// Required behaviour: y comes from the third row of the matrix and z from the second, which
  /// swaps the axes of the animation file into those of the scene.
  /// Required behaviour: a vertex without links is divided by 0 and gives infinities or NaN.
  virtual Oru::TVector3D<float> TransformPoint(const Oru::TVector3D<float>* vertex,
                                               unsigned int take, unsigned int frame) const = 0;

  /// Required behaviour: (0, 0, 0), whatever the arguments.
  virtual Oru::TVector3D<float> TransformPoint(unsigned int, unsigned int, unsigned int) const = 0;

  /// The rest mesh as it is deformed at a frame, for an object definition. The collector owns it:
  /// it lives until the same definition is asked for at another take or frame, or until the
  /// collector goes.
  virtual UXS::Mesh* GetCurrentDefinition(unsigned int take, unsigned int frame,
                                          const UxZel::CZelUUID& definition) = 0;

  /// Estimate of the memory in use, in bytes, modulo 2^32; it never decreases.
  virtual unsigned int GetSize() const = 0;

  /// Appends a take. Nodes that exist already do not get it: make all takes before the first node.
  virtual void CreateTake() = 0;
};

}  // namespace Norvel::Vexa
