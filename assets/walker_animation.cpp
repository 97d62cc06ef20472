#include "assets/walker_animation.h"

#include "refhost/scenes/walker.h"

namespace vexa::assets {

namespace {

AnimationFile::Matrix translation(double x, double z) {
  AnimationFile::Matrix matrix = AnimationFile::kIdentity;
  matrix[12] = x;
  matrix[14] = z;
  return matrix;
}

}  // namespace

AnimationFile walkerAnimation() {
  using namespace refhost::scenes;
  AnimationFile file;
  file.mFrameCounts = {kWalkerFrames};
  file.mGlobal = {1, 0, 0, 0, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 1};  // (x, y, z) to (x, z, y)
  file.mNodes.resize(3);
  for (int frame = 0; frame < kWalkerFrames; ++frame) {
    const WalkerFrame pose = walkerFrame(frame);
    file.mNodes[0].mMatrices.push_back(translation(pose.mBody, 0));
    file.mNodes[1].mMatrices.push_back(translation(pose.mLeftFoot, pose.mLeftLift));
    file.mNodes[2].mMatrices.push_back(translation(pose.mRightFoot, pose.mRightLift));
  }
  std::uint32_t vertex = 0;
  for (AnimationFile::Node& node : file.mNodes) {
    for (int corner = 0; corner < 8; ++corner) node.mLinks.push_back({vertex++, 1.0});
  }
  return file;
}

}  // namespace vexa::assets
