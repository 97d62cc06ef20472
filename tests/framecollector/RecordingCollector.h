#pragma once

#include <sstream>
#include <string>

#include "vexa/framecollector/XIFrameCollector.h"

namespace vexa::tests {

/// Writes down the calls that fill a collector, matrices by their first element. New nodes get the
/// index 5, which then counts up with every call.
class RecordingCollector final : public Norvel::Vexa::XIFrameCollector {
 public:
  using Matrix = UXS::uxs_generic_mat4<float>;
  using Point = Oru::TVector3D<float>;

  std::string calls() const { return mCalls.str(); }

  unsigned AddTransformation(const Matrix& m, unsigned inTake, int inNode) override {
    mCalls << "AddTransformation " << m.e[0] << ' ' << inTake << ' ' << inNode << '\n';
    return unsigned(inNode < 0 ? 5 : inNode + 1);
  }
  void SetGlobalTransformation(const Matrix& m) override {
    mCalls.precision(9);
    mCalls << "SetGlobalTransformation " << m.e[0] << '\n';
  }
  void AddLink(int inNode, const UxZel::CZelUUID& inDefinition, unsigned inVertex,
               double inWeight) override {
    mCalls.precision(17);
    mCalls << "AddLink " << inNode << ' ' << inVertex << ' ' << inWeight
           << (isNone(inDefinition) ? "\n" : " with a definition\n");
  }
  void CreateTake() override { mCalls << "CreateTake\n"; }

  const Matrix& GetGlobalTransformation() const override { return mIdentity; }
  const Matrix& GetTransformation(unsigned, unsigned, int) const override { return mIdentity; }
  Matrix GetVertexTransformation(const Point*, unsigned, unsigned, double&) const override {
    return mIdentity;
  }
  Point TransformPoint(const Point*, unsigned, unsigned) const override { return {}; }
  Point TransformPoint(unsigned, unsigned, unsigned) const override { return {}; }
  UXS::Mesh* GetCurrentDefinition(unsigned, unsigned, const UxZel::CZelUUID&) override {
    return nullptr;
  }
  unsigned GetSize() const override { return 0; }

 private:
  std::ostringstream mCalls;
  Matrix mIdentity;
};

}  // namespace vexa::tests
