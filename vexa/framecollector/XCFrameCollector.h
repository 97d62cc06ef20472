#pragma once

#include <map>
#include <memory>
#include <vector>

#include "vexa/Export.h"
#include "vexa/framecollector/XCTMPTake.h"
#include "vexa/framecollector/XCTransformationNode.h"
#include "vexa/framecollector/XIFrameCollector.h"

namespace Norvel::Vexa {

/// The frame collector: blends the matrices of linked nodes and deforms copies of a rest mesh.
///
/// Vertices are known by their address in the rest mesh's vertex array, so that mesh must neither
/// go nor be edited while the collector lives.
class VEXA_EXPORT XCFrameCollector : public XIFrameCollector {
 public:
  /// An empty collector on a rest mesh, which is borrowed: no reference is taken. A null mesh
  /// counts as one without vertices.
  explicit XCFrameCollector(UXS::Mesh* inMesh);
  ~XCFrameCollector() override;
  XCFrameCollector(const XCFrameCollector&) = delete;
  XCFrameCollector& operator=(const XCFrameCollector&) = delete;

  unsigned int AddTransformation(const UXS::uxs_generic_mat4<float>& inMatrix, unsigned int inTake,
                                 int inNode) override;
  void SetGlobalTransformation(const UXS::uxs_generic_mat4<float>& inMatrix) override;
  const UXS::uxs_generic_mat4<float>& GetGlobalTransformation() const override;
  const UXS::uxs_generic_mat4<float>& GetTransformation(unsigned int inTake, unsigned int inFrame,
                                                        int inNode) const override;
  void AddLink(int inNode, const UxZel::CZelUUID& inDefinition, unsigned int inVertex,
               double inWeight) override;
  UXS::uxs_generic_mat4<float> GetVertexTransformation(const Oru::TVector3D<float>* inVertex,
                                                       unsigned int inTake, unsigned int inFrame,
                                                       double& outWeightSum) const override;
  Oru::TVector3D<float> TransformPoint(const Oru::TVector3D<float>* inVertex, unsigned int inTake,
                                       unsigned int inFrame) const override;
  Oru::TVector3D<float> TransformPoint(unsigned int, unsigned int, unsigned int) const override;
  UXS::Mesh* GetCurrentDefinition(unsigned int inTake, unsigned int inFrame,
                                  const UxZel::CZelUUID& inDefinition) override;
  unsigned int GetSize() const override;
  void CreateTake() override;

  unsigned int GetNbrTakes() const;
  /// A take, owned by the collector.
  XCTMPTake* GetTake(unsigned int inIndex) const;

 private:
  /// One link of a vertex; those of one vertex form a chain from the last added to the first, which
  /// is the order in which they are visited.
  struct sLink {
    unsigned int mNode;
    unsigned int mPrevious;  // index of the link added before, or kNoLink
    double mWeight;
    UxZel::CZelUUID mDefinition;
  };
  static constexpr unsigned int kNoLink = 0xFFFFFFFF;
  struct sCloneDefinitions;

  const std::vector<Oru::TVector3D<float>>& restVertices() const;
  unsigned int lastLinkOf(const Oru::TVector3D<float>* inVertex) const;
  const XCTransformationNode& nodeAt(unsigned int inNode) const;
  void FillMatrix(const Oru::TVector3D<float>* inVertex, unsigned int inTake, unsigned int inFrame,
                  double& outWeightSum, UXS::uxs_generic_mat4<float>& outMatrix) const;
  void deformInto(UXS::Mesh& outMesh, unsigned int inTake, unsigned int inFrame) const;

  std::vector<XCTransformationNode> mNodes;
  UXS::uxs_generic_mat4<float> mGlobalTransformation;
  std::vector<sLink> mLinks;
  std::vector<unsigned int> mLastLinks;  // per vertex: index of its last link, or kNoLink
  UXS::Mesh* mMesh;
  std::vector<std::unique_ptr<XCTMPTake>> mTakes;
  std::map<UxZel::CZelUUID, std::unique_ptr<sCloneDefinitions>> mClones;
  unsigned int mSize = 0;
};

}  // namespace Norvel::Vexa
