#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace vexa::formats {

/// The contents of an animation file: what a frame collector is filled with.
///
/// Matrices are 16 doubles column by column, the element of row r and column c at 4c + r, the
/// translation at 12, 13, 14. The layout of the file is in docs/animation_file.md.
struct AnimationFile {
  using Matrix = std::array<double, 16>;
  static constexpr Matrix kIdentity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

  /// A vertex of the rest mesh and its weight.
  struct Link {
    std::uint32_t mVertex = 0;
    double mWeight = 0;
  };
  struct Node {
    std::vector<Matrix> mMatrices;  ///< the frames of the first take, then of the next
    std::vector<Link> mLinks;
  };

  std::vector<std::uint32_t> mFrameCounts;  ///< one per take, the same for every node
  Matrix mGlobal = kIdentity;               ///< applied after the blend of the nodes
  std::vector<Node> mNodes;
};

/// The file as bytes. Throws std::invalid_argument where a node does not have exactly as many
/// matrices as the frame counts say.
std::string encodeAnimationFile(const AnimationFile& file);

/// Writes the file under a temporary name and renames it. Throws what encodeAnimationFile and
/// writeFile throw; a former file is then unchanged.
void writeAnimationFile(const AnimationFile& file, const std::string& path);

/// Reads back what encodeAnimationFile gives, strictly: throws std::runtime_error that names the
/// offset and what is wrong there for another version, an end inside or bytes after the last node.
AnimationFile decodeAnimationFile(const std::string& bytes);

/// The same from a file, of which only what is used comes into memory. Throws std::runtime_error
/// "PATH: what is wrong".
AnimationFile readAnimationFile(const std::string& path);

}  // namespace vexa::formats
