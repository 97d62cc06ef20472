#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "tests/golden/Recorder.h"

namespace vexa::tests {

/// The bytes of an animation file, value by value; see docs/animation_file.md.
class AnimationBytes {
 public:
  void count(std::uint32_t value) { append(value, 4); }
  void real(double value) {
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof(bits));
    append(bits, 8);
  }
  template <class M>
  void matrix(const M& m) {
    for (const auto e : m.e) real(double(e));
  }
  std::string mBytes;

 private:
  void append(std::uint64_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) mBytes += static_cast<char>(value >> 8 * i & 0xFF);
  }
};

using Matrix = UXS::uxs_generic_mat4<float>;

/// The matrix of a node at a frame: a translation, any affine one, or hostile.
inline Matrix drawNodeMatrix(Numbers& n, bool isHostile) {
  Matrix m;
  if (n.oneIn(8)) return m;
  for (int i = 0; i < 16; ++i) {
    const bool isAffine = i % 4 == 3 && !isHostile;
    if (!isAffine) m.e[i] = isHostile ? n.any<float>() : n.plain<float>();
  }
  return m;
}

struct DrawnLink {
  int mNode = 0;
  unsigned int mVertex = 0;
  double mWeight = 0;
};

/// Weights that sum to 1, to about 1, to 0, to less than 0, or to nothing that makes sense.
inline std::vector<DrawnLink> drawLinks(Numbers& n, unsigned int vertex, int nodes,
                                        bool isHostile) {
  std::vector<DrawnLink> links(n.oneIn(40) ? 0 : n.below(8) + 1);
  const std::uint32_t kind = n.below(isHostile ? 6 : 3);
  double rest = 1;
  for (std::size_t i = 0; i < links.size(); ++i) {
    const double share = kind == 0 ? 1.0 / double(links.size()) : rest * n.unit<double>();
    double weight = kind < 2 && i + 1 == links.size() && kind != 0 ? rest : share;
    if (kind == 3) weight = i % 2 == 0 ? 0.5 : -0.5;
    if (kind == 4) weight = -share;
    if (kind == 5) weight = n.any<double>();
    rest -= weight;
    links[i] = {n.between(0, nodes - 1), vertex, weight};
  }
  return links;
}

/// Nodes with the frames of their takes, and links, as they stand in a file.
struct DrawnAnimation {
  Matrix mGlobal;
  std::vector<std::uint32_t> mFrames;                    // per take
  std::vector<std::vector<std::vector<Matrix>>> mNodes;  // per node, take and frame
  std::vector<DrawnLink> mLinks;

  AnimationBytes bytes() const {
    AnimationBytes file;
    file.count(101);
    file.count(std::uint32_t(mFrames.size()));
    file.matrix(mGlobal);
    for (const std::uint32_t frames : mFrames) file.count(frames);
    file.count(std::uint32_t(mNodes.size()));
    for (std::size_t node = 0; node < mNodes.size(); ++node) {
      for (const auto& take : mNodes[node]) {
        for (const Matrix& m : take) file.matrix(m);
      }
      std::uint32_t count = 0;
      for (const DrawnLink& link : mLinks) count += std::size_t(link.mNode) == node ? 1 : 0;
      file.count(count);
      for (const DrawnLink& link : mLinks) {
        if (std::size_t(link.mNode) != node) continue;
        file.count(link.mVertex);
        file.real(link.mWeight);
      }
    }
    return file;
  }
};

inline DrawnAnimation drawAnimation(Numbers& n, unsigned int vertices, bool isHostile) {
  DrawnAnimation drawn;
  if (!n.oneIn(3)) drawn.mGlobal = drawNodeMatrix(n, isHostile && n.oneIn(3));
  drawn.mFrames.resize(n.below(3) + 1);
  for (std::uint32_t& frames : drawn.mFrames) frames = n.oneIn(12) ? 0 : n.below(4) + 1;
  drawn.mNodes.resize(n.below(n.oneIn(4) ? 40 : 6) + 1);
  for (auto& node : drawn.mNodes) {
    for (const std::uint32_t frames : drawn.mFrames) {
      node.emplace_back();
      for (std::uint32_t f = 0; f < frames; ++f) {
        node.back().push_back(drawNodeMatrix(n, isHostile && n.oneIn(9)));
      }
    }
  }
  for (unsigned int v = 0; v < vertices; ++v) {
    const auto links = drawLinks(n, v, int(drawn.mNodes.size()), isHostile && n.oneIn(3));
    drawn.mLinks.insert(drawn.mLinks.end(), links.begin(), links.end());
  }
  return drawn;
}

}  // namespace vexa::tests
