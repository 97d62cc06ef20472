#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "formats/MovingMesh.h"
#include "formats/NewFile.h"

namespace vexa::formats {

/// A scale, then a rotation (x, y, z, w), then a translation: what a node of a glTF file can be
/// animated by.
struct GlbTransform {
  std::array<float, 3> mTranslation{};
  std::array<float, 4> mRotation{0, 0, 0, 1};
  std::array<float, 3> mScale{1, 1, 1};
};

/// A node as it is in the first frame, and which parts of it later frames change.
struct GlbNode {
  GlbTransform mFirst;
  bool mMoves = false, mTurns = false, mScales = false;
};

/// A mesh whose vertices follow up to four joints each.
struct GlbSkinnedMesh {
  static constexpr std::size_t kMostJoints = 65536;

  struct Influences {
    std::array<std::uint16_t, 4> mJoints{};
    std::array<float, 4> mWeights{};  ///< from 0, with the sum 1
  };
  using Matrix = std::array<float, 16>;  ///< column by column

  MovingMesh mMesh;                     ///< its one frame is the rest, +Z up
  std::vector<Influences> mInfluences;  ///< one per point
  std::vector<Matrix> mInverseBinds;    ///< one per joint, from the rest as the file has it, +Y up
};

/// A mesh in the scene. Its nodes are the one that places it and, inside that, its joints.
struct GlbSkinInstance {
  std::string mName;
  std::size_t mMesh = 0;
  std::vector<GlbNode> mNodes;
};

/// Writes skinned meshes with an animation of their nodes as one binary glTF 2.0 file while the
/// frames come, +Y up as that format has it. Memory does not grow with the frames.
class GlbSkinWriter {
 public:
  /// Every mesh has a triangle. Throws std::runtime_error "NAME: what is wrong" for more than 4
  /// GiB.
  GlbSkinWriter(NewFile& file, const std::string& name, const std::vector<GlbSkinnedMesh>& meshes,
                std::vector<GlbSkinInstance> instances, std::size_t frameCount,
                double framesPerSecond);
  ~GlbSkinWriter();

  /// The next frame, the first one included: the nodes of all instances in their order.
  void writeFrame(const std::vector<GlbTransform>& nodes);
  /// To be called once, after all frames.
  void finish();

 private:
  class Layout;

  void flush();

  std::unique_ptr<const Layout> mLayout;
  NewFile& mFile;
  std::vector<GlbTransform> mGathered;  ///< frame after frame
  std::size_t mWritten = 0;             ///< frames
};

}  // namespace vexa::formats
