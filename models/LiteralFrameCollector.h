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

  explicit LiteralFrameCollector(const std::vector<Point>& inRest) : mRest(inRest) {}

  unsigned AddTransformation(const Matrix& inMatrix, unsigned inTake, int inNode) override {
    if (inNode < 0) {
      inNode = int(mNodes.size());
      mNodes.emplace_back(mTakes);
    }
    mNodes[unsigned(inNode)][inTake].push_back(inMatrix);
    return unsigned(inNode);
  }
  void SetGlobalTransformation(const Matrix& inMatrix) override { mGlobal = inMatrix; }
  const Matrix& GetGlobalTransformation() const override { return mGlobal; }
  const Matrix& GetTransformation(unsigned inTake, unsigned inFrame, int inNode) const override {
    return mNodes[unsigned(inNode)][inTake][inFrame];
  }
  void AddLink(int inNode, const UxZel::CZelUUID&, unsigned inVertex, double inWeight) override {
    mLinks[&mRest[inVertex]].push_back({unsigned(inNode), inWeight});
  }

  Matrix GetVertexTransformation(const Point* inVertex, unsigned inTake, unsigned inFrame,
                                 double& outWeightSum) const override {
    const auto found = mLinks.find(inVertex);
    if (found == mLinks.end()) return Matrix();
    Matrix a{{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}}, result;
    outWeightSum = 0;
    for (auto link = found->second.rbegin(); link != found->second.rend(); ++link) {
      const Matrix* m = matrixOf(link->first, inTake, inFrame);
      mSkipped += m == nullptr;
      if (m == nullptr) continue;
      for (int k = 0; k < 16; ++k) a.e[k] = float(link->second) * m->e[k] + a.e[k];
      outWeightSum += link->second;
    }
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

  Point TransformPoint(const Point* p, unsigned inTake, unsigned inFrame) const override {
    double sum = 0;
    const Matrix m = GetVertexTransformation(p, inTake, inFrame, sum);
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
  const Matrix* matrixOf(unsigned inNode, unsigned inTake, unsigned& ioFrame) const {
    if (inNode >= mNodes.size() || inTake >= mNodes[inNode].size()) return nullptr;
    const std::vector<Matrix>& frames = mNodes[inNode][inTake];
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
