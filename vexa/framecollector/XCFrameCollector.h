#pragma once

#include <map>
#include <memory>
#include <vector>

#include "vexa/Export.h"
#include "vexa/framecollector/XCTMPTake.h"
#include "vexa/framecollector/XCTransformationNode.h"
#include "vexa/framecollector/XIFrameCollector.h"

namespace Norvel::Vexa {

class CollectorFill;
class NodePose;
class VertexLinks;
struct FrameSlab;

/// The frame collector: blends the matrices of linked nodes and deforms copies of a rest mesh.
///
/// A vertex is identified by its address in the rest mesh's vertex array, so that mesh must neither
/// be destroyed nor edited while the collector lives.
class VEXA_EXPORT XCFrameCollector : public XIFrameCollector {
 public:
  /// Makes an empty collector on a rest mesh, which is borrowed: no reference is taken. A null mesh
  /// counts as one without vertices.
  explicit XCFrameCollector(UXS::Mesh* mesh);
  ~XCFrameCollector() override;
  XCFrameCollector(const XCFrameCollector&) = delete;
  XCFrameCollector& operator=(const XCFrameCollector&) = delete;

  unsigned int AddTransformation(const UXS::uxs_generic_mat4<float>& matrix, unsigned int take,
                                 int node) override;
  void SetGlobalTransformation(const UXS::uxs_generic_mat4<float>& matrix) override;
  const UXS::uxs_generic_mat4<float>& GetGlobalTransformation() const override;
  const UXS::uxs_generic_mat4<float>& GetTransformation(unsigned int take, unsigned int frame,
                                                        int node) const override;
  void AddLink(int node, const UxZel::CZelUUID& definition, unsigned int vertex,
               double weight) override;
  UXS::uxs_generic_mat4<float> GetVertexTransformation(const Oru::TVector3D<float>* vertex,
                                                       unsigned int take, unsigned int frame,
                                                       double& outWeightSum) const override;
  Oru::TVector3D<float> TransformPoint(const Oru::TVector3D<float>* vertex, unsigned int take,
                                       unsigned int frame) const override;
  Oru::TVector3D<float> TransformPoint(unsigned int vertex, unsigned int take,
                                       unsigned int frame) const override;
  UXS::Mesh* GetCurrentDefinition(unsigned int take, unsigned int frame,
                                  const UxZel::CZelUUID& definition) override;
  unsigned int GetSize() const override;
  void CreateTake() override;

  unsigned int GetNbrTakes() const;
  /// Returns a take, which the collector owns.
  XCTMPTake* GetTake(unsigned int index) const;

 private:
  friend class CollectorFill;
  struct sCloneDefinitions;
  struct Blend;
  struct AskedPoints;

  const std::vector<Oru::TVector3D<float>>& restVertices() const;
  std::size_t indexOf(const Oru::TVector3D<float>* vertex) const;
  const UXS::uxs_generic_mat4<float>* follow(unsigned int node, unsigned int take,
                                             unsigned int& ioFrame) const;
  NodePose poseOf(unsigned int take, unsigned int frame) const;
  bool deformBlock(std::size_t index, const NodePose& pose, Oru::TVector3D<float>* out,
                   bool* outLeft) const;
  void prepareNeighbours(std::size_t vertex, unsigned int take, unsigned int frame) const;
  void dropAskedPoints();
  bool FillMatrix(std::size_t vertex, unsigned int take, unsigned int frame, Blend& outBlend) const;
  Oru::TVector3D<float> deformed(std::size_t vertex, const Oru::TVector3D<float>& rest,
                                 unsigned int take, unsigned int frame) const;
  void deformVertices(unsigned int take, unsigned int frame, Oru::TVector3D<float>* out);
  void deformInto(UXS::Mesh& outMesh, unsigned int take, unsigned int frame);
  unsigned int nodeCount() const { return unsigned(mNodes.size()); }

  std::unique_ptr<FrameSlab> mSlab;  // of the nodes that came from a file; null when none did
  std::vector<XCTransformationNode> mNodes;
  UXS::uxs_generic_mat4<float> mGlobalTransformation;
  std::unique_ptr<VertexLinks> mLinks;
  UXS::Mesh* mMesh;
  std::vector<std::unique_ptr<XCTMPTake>> mTakes;
  std::map<UxZel::CZelUUID, std::unique_ptr<sCloneDefinitions>> mClones;
  mutable std::unique_ptr<AskedPoints> mAsked;  // null until TransformPoint is called
  unsigned int mSize = 0;
};

}  // namespace Norvel::Vexa
