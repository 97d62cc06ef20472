#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "formats/MovingMesh.h"
#include "formats/NewFile.h"

namespace vexa::formats {

/// Writes moving meshes as one binary glTF 2.0 file while their frames come, +Y up as that format
/// has it.
///
/// Each mesh rests in its first frame; every later frame is a morph target, and an animation turns
/// one target after the other on, so that a player between two frames blends them linearly. Without
/// meshes the file is an empty scene. Memory does not grow with the frames, apart from 24 bytes per
/// mesh and frame.
class GlbWriter {
 public:
  /// `meshes` have one frame each, the first of `frameCount`, of which there are `framesPerSecond`.
  /// Throws std::runtime_error "NAME: what is wrong", with nothing written: a coordinate that is
  /// not a finite number, more than the format can hold (4 GiB, 65,536 frames).
  GlbWriter(NewFile& file, std::string name, const std::vector<MovingMesh>& meshes,
            std::size_t frameCount, double framesPerSecond);

  ~GlbWriter();

  /// The points of all meshes in a frame from 1 on, each frame once, in any order and from several
  /// threads at a time. Throws as above, and when the file cannot be written.
  void writeFrame(std::size_t frame, const std::vector<MovingMesh::Points>& points);
  /// To be called once, after all frames.
  void finish();

 private:
  class Layout;
  std::unique_ptr<const Layout> mLayout;
  NewFile& mFile;
  const std::string mName;
  std::vector<std::array<float, 6>> mBounds;  ///< of the targets, frame after frame
};

/// Writes meshes with all their frames, as many for each. Throws as GlbWriter, and for a mesh
/// without a frame; a former file is then unchanged.
void writeGlb(const std::string& path, const std::vector<MovingMesh>& meshes,
              double framesPerSecond);

}  // namespace vexa::formats
