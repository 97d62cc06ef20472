#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "formats/AnimationFile.h"
#include "formats/glb_skin.h"
#include "scene/node_transform.h"

namespace vexa::scene {

/// An animated object as a mesh with joints: which nodes of a glTF file would show its takes, and
/// whether they can.
///
/// The nodes of a glTF file are moved, turned and scaled. Joint j at a frame has the matrix
/// Q = A M, where M is its matrix in the animation file, and A does what the runtime does after the
/// blend and turns +Z up to +Y up. The file holds Q as node times inverse bind matrix B, so that
/// the node is Q inv(B). B is Q at some frame, moved to the middle of what the joint moves and
/// turned to the axes along which the joint is scaled: then the node of a joint that is not sheared
/// has columns at right angles.
class SkinnedObject {
 public:
  SkinnedObject(const formats::AnimationFile& file, formats::MovingMesh mesh);

  /// A frame that will be shown; one past the last is the last.
  void show(unsigned int take, unsigned int frame);

  /// To be called after all frames are known: chooses the inverse bind matrices. `size` is that of
  /// the object. Returns why a skin would be off by more than 1e-6 of the size, or "".
  std::string prepare(double size);

  const formats::GlbSkinnedMesh& mesh() const { return mMesh; }
  /// The joints with what of them changes over the shown frames; without their first transforms.
  const std::vector<formats::GlbNode>& joints() const { return mJoints; }
  void appendTransforms(unsigned int take, unsigned int frame,
                        std::vector<formats::GlbTransform>& ioTransforms) const;

 private:
  using Box = std::vector<Oru::TVector3D<double>>;  // corners; empty for nothing

  std::size_t frameIndex(unsigned int take, unsigned int frame) const;
  Matrix44 poseOf(std::size_t joint, std::size_t frame) const;
  std::string addInfluences(const formats::AnimationFile& file);
  std::string prepareJoint(std::size_t joint, double size);
  std::size_t referenceFrame(std::size_t joint) const;
  Matrix44 axesOfScale(std::size_t joint, const Matrix44& toNode) const;
  formats::GlbTransform transformAt(std::size_t joint, std::size_t frame) const;

  formats::GlbSkinnedMesh mMesh;
  std::string mFault;                       // what the links alone say
  std::vector<std::uint32_t> mNodes;        // of each joint, in the animation file
  std::vector<std::vector<float>> mPoses;   // of each joint: 16 numbers per frame of the file
  std::vector<std::uint32_t> mFirstFrames;  // of each take, and the count of all
  std::vector<bool> mIsShown;               // per frame of the file
  Matrix44 mAfterBlend;
  std::vector<Oru::TVector3D<double>> mCenters;  // of what each joint moves, at rest
  std::vector<Box> mBoxes;
  std::vector<Matrix44> mFromNode;  // inverses of the inverse bind matrices
  std::vector<formats::GlbNode> mJoints;
};

}  // namespace vexa::scene
