#pragma once

#include <map>
#include <utility>
#include <vector>

#include "vexa/framecollector/XIFrameCollector.h"

namespace vexa::tests {

/// The frame collector written down as plainly as it goes, in one pass per vertex: what every bit
/// of the library's own is compared with. It checks nothing and makes no mesh.
class LiteralFrameCollector : public Norvel::Vexa::XIFrameCollector {
 public:
  using Matrix = UXS::uxs_generic_mat4<float>;
  using Point = Oru::TVector3D<float>;

  explicit LiteralFrameCollector(const std::vector<Point>& rest) : mRest(rest) {}

  unsigned AddTransformation(const Matrix& matrix, unsigned take, int node) override {
    if (node < 0) {
      node = int(mNodes.size());
      mNodes.emplace_back(mTakes);
    }
    mNodes[unsigned(node)][take].push_back(matrix);
    return unsigned(node);
  }
  void SetGlobalTransformation(const Matrix& matrix) override { mGlobal = matrix; }
  const Matrix& GetGlobalTransformation() const override { return mGlobal; }
  const Matrix& GetTransformation(unsigned take, unsigned frame, int node) const override {
    return mNodes[unsigned(node)][take][frame];
  }
  void AddLink(int node, const UxZel::CZelUUID&, unsigned vertex, double weight) override {
    mLinks[&mRest[vertex]].push_back({unsigned(node), weight});
  }

  Matrix GetVertexTransformation(const Point* vertex, unsigned take, unsigned frame,
                                 double& outWeightSum) const override {
    // Required behaviour: without links it is the identity, and the sum stays as the caller set it.
    const auto found = mLinks.find(vertex);
    if (found == mLinks.end()) return Matrix();
    Matrix a{{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}}, result;
    outWeightSum = 0;
    // The last link added comes first; a node that lacks the take is left out, weight and all.
    for (auto link = found->second.rbegin(); link != found->second.rend(); ++link) {
      const Matrix* m = matrixOf(link->first, take, frame);
      mSkipped += m == nullptr;
      if (m == nullptr) continue;
      for (int k = 0; k < 16; ++k) a.e[k] = float(link->second) * m->e[k] + a.e[k];
      outWeightSum += link->second;
    }
    // The product G A, each element from the first term on. order: exact floats
    const float* g = mGlobal.e;
    for (int j = 0; j < 4; ++j) {
      for (int i = 0; i < 4; ++i) {
        result.e[4 * j + i] =
            ((a.e[4 * j] * g[i] + a.e[4 * j + 1] * g[4 + i]) + a.e[4 * j + 2] * g[8 + i]) +
            a.e[4 * j + 3] * g[12 + i];
      }
    }
    return result;
  }

  Point TransformPoint(const Point* p, unsigned take, unsigned frame) const override {
    double sum = 0;
    const Matrix m = GetVertexTransformation(p, take, frame, sum);
    // Required behaviour: y from the third row and z from the second.
    const float s = 1.0f / float(sum);
    return {s * (m.e[0] * p->x + m.e[4] * p->y + m.e[8] * p->z + m.e[12]),
            s * (m.e[2] * p->x + m.e[6] * p->y + m.e[10] * p->z + m.e[14]),
            s * (m.e[1] * p->x + m.e[5] * p->y + m.e[9] * p->z + m.e[13])};
  }
  Point TransformPoint(unsigned, unsigned, unsigned) const override { return Point(); }
  UXS::Mesh* GetCurrentDefinition(unsigned, unsigned, const UxZel::CZelUUID&) override {
    return nullptr;
  }
  unsigned GetSize() const override { return 0; }
  void CreateTake() override { ++mTakes; }

  /// Links that had to be left out so far.
  int skipped() const { return mSkipped; }

 private:
  // The clamped frame stays in ioFrame.
  const Matrix* matrixOf(unsigned node, unsigned take, unsigned& ioFrame) const {
    if (node >= mNodes.size() || take >= mNodes[node].size()) return nullptr;
    const std::vector<Matrix>& frames = mNodes[node][take];
    if (ioFrame >= frames.size()) ioFrame = unsigned(frames.size()) - 1;
    return ioFrame < frames.size() ? &frames[ioFrame] : nullptr;
  }

  const std::vector<Point>& mRest;
  std::vector<std::vector<std::vector<Matrix>>> mNodes;  // node, take, frame
  std::map<const Point*, std::vector<std::pair<unsigned, double>>> mLinks;
  Matrix mGlobal;
  unsigned mTakes = 0;
  mutable int mSkipped = 0;
};

}  // namespace vexa::tests
