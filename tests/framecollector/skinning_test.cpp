// Every form of the deformation kernels gives the bits of the plain form, whatever the numbers.
#include <gtest/gtest.h>
#include <random>
#include <vector>

#include "tests/helpers/compare.h"
#include "vexa/framecollector/skinning_internal.h"

namespace Norvel::Vexa::skinning {
namespace {

struct Form {
  const char* mName;
  const Kernels& mKernels;
  bool mRunsHere;
};

std::vector<Form> forms() {
  std::vector<Form> result{{"baseline", kBaselineKernels, true}, {"chosen", kernels(), true}};
#if defined(VEXA_NEWER_MACHINES)
  result.push_back({"AVX2", kAvx2Kernels, __builtin_cpu_supports("avx2") != 0});
  result.push_back({"AVX-512", kAvx512Kernels,
                    __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl") &&
                        __builtin_cpu_supports("avx512dq")});
#endif
  return result;
}

// A block of random size, rig and numbers, of which one in eight is odd where `isHostile`.
class RandomBlock {
 public:
  RandomBlock(unsigned seed, bool isHostile) : mRandom(seed), mIsHostile(isHostile) {
    const std::uint32_t nodes = 1 + below(20);
    mMatrices = reals(16 * 3 * nodes);
    for (std::uint32_t n = 0; n < nodes; ++n) {
      const bool isLost = isHostile && below(16) == 0;
      mNodes.push_back({isLost ? nullptr : &mMatrices[48 * n], below(3)});
    }
    mVertices = 1 + below(kBlock);
    mPoints = reals(3 * mVertices + 1);  // one in front: nothing is aligned
    mScales = reals(mVertices + 1);
    mGlobal = reals(16);
    for (std::uint32_t v = 0; v < mVertices; ++v) mOrder.push_back(std::uint8_t(v));
    std::shuffle(mOrder.begin(), mOrder.end(), mRandom);
    for (std::uint32_t covered = 0; covered < mVertices; covered += mRuns.back().mVertices) {
      mRuns.push_back({below(10), 1 + below(mVertices - covered)});
      for (std::uint32_t i = mRuns.back().mLinks * mRuns.back().mVertices; i > 0; --i) {
        mLinks.push_back({below(nodes), real()});
      }
    }
  }

  // The positions and the vertices that were left.
  std::vector<float> deformed(DeformBlock deform) const {
    std::vector<float> out(3 * mVertices + 1, 7.0f);
    bool left[kBlock] = {};
    const Pose pose{mMatrices.data(), mNodes.data(), 2, mGlobal.data()};
    const Block block{int(mVertices), &mPoints[1],  &mScales[1],  out.data(),
                      mOrder.data(),  mRuns.data(), mLinks.data()};
    const bool isAnyLeft = deform(pose, block, left);
    EXPECT_EQ(isAnyLeft, std::count(left, left + kBlock, true) > 0);
    out.insert(out.end(), left, left + kBlock);
    return out;
  }

 private:
  std::uint32_t below(std::uint32_t n) { return std::uint32_t(mRandom() % n); }
  float real() {
    using Limits = std::numeric_limits<float>;
    const float odd[] = {0,
                         -0.0f,
                         Limits::infinity(),
                         -Limits::infinity(),
                         Limits::quiet_NaN(),
                         Limits::max(),
                         Limits::denorm_min(),
                         -Limits::min() / 4};
    if (mIsHostile && below(8) == 0) return odd[below(8)];
    return float(int(below(2001)) - 1000) / 300;
  }
  std::vector<float> reals(std::size_t count) {
    std::vector<float> result(count);
    for (float& value : result) value = real();
    return result;
  }

  std::mt19937 mRandom;
  bool mIsHostile;
  std::uint32_t mVertices;
  std::vector<float> mMatrices, mPoints, mScales, mGlobal;
  std::vector<HeldNode> mNodes;
  std::vector<std::uint8_t> mOrder;
  std::vector<Run> mRuns;
  std::vector<Link> mLinks;
};

TEST(Skinning, EveryFormHasTheBitsOfThePlainOne) {
  constexpr DeformBlock Kernels::*kKinds[] = {&Kernels::mPosed, &Kernels::mIdentity,
                                              &Kernels::mHeld};
  for (unsigned seed = 0; seed < 600; ++seed) {
    const RandomBlock block(seed, seed % 2 == 1);
    for (const auto kind : kKinds) {
      const std::vector<float> expected = block.deformed(kPlainKernels.*kind);
      for (const Form& form : forms()) {
        if (!form.mRunsHere) continue;
        const std::vector<float> result = block.deformed(form.mKernels.*kind);
        for (std::size_t i = 0; i < expected.size(); ++i) {
          ASSERT_TRUE(vexa::tests::sameOrNaN(result[i], expected[i]))
              << form.mName << ", block " << seed << ", number " << i;
        }
      }
    }
  }
}

}  // namespace
}  // namespace Norvel::Vexa::skinning
