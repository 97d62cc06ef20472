#pragma once

#include <cstddef>

#include "vexa/framecollector/skinning_internal.h"
#include "vexa/math/simd/Quads.h"

// The kernels, written once over the lanes Q of vexa/math/simd/Quads.h. A block takes two passes:
//
//   links    w0 M3, w1 M7, w2 M3, ...    pass 1: vertex by vertex, those with equally many links
//              \     |     /                     one after the other
//   blend     A = ((0 + w0 M3) + w1 M7) + ...    64 bytes per vertex, which stay in the cache
//               |
//   product   R = G A                    pass 2: Q::kQuads vertices in one register; row i of R is
//               |                                the sum of the rows of A times G(i, 0..3)
//   point     rows 0, 2, 1 of R, times (x, y, z, 1), times 1 / S
//
// In a single pass the additions of a blend, whose order is fixed, would wait for each other.
//
// Every function is a member of a template over Q: sources that are compiled for different machines
// must not share one, or the linker might keep the copy for the newer machine.
namespace Norvel::Vexa::skinning {

template <class Q>
class Kernel {
 public:
  static constexpr int kQuads = Q::kQuads;

  // Finds the rows of a node's matrix, at the one frame of the pose.
  struct FromPalette {
    static constexpr bool kColumns = false;
    const float* mPalette;

    explicit FromPalette(const Pose& pose) : mPalette(pose.mPalette) {}
    const float* operator()(std::uint32_t node) const { return mPalette + std::size_t{16} * node; }
  };
  // Finds the columns of a node's matrix, or null, for the links of one vertex in turn.
  // Required behaviour: a frame that was held stays in force for the links visited afterwards.
  struct FromHeldNodes {
    static constexpr bool kColumns = true;
    const HeldNode* mNodes;
    std::uint32_t mFrame;

    explicit FromHeldNodes(const Pose& pose) : mNodes(pose.mNodes), mFrame(pose.mFrame) {}
    const float* operator()(std::uint32_t node) {
      const HeldNode& held = mNodes[node];
      if (mFrame > held.mLast) mFrame = held.mLast;
      return held.mFirst == nullptr ? nullptr : held.mFirst + std::size_t{16} * mFrame;
    }
  };

  // hasProduct: whether the global matrix is applied. Without it the last row of a blend is unused.
  template <class Source, bool hasProduct>
  static bool deform(const Pose& pose, const Block& block, bool* outLeft) {
    alignas(64) float blends[16 * kBlock];
    const bool left = blendAll<Source, hasProduct>(pose, block, blends, outLeft);
    const Placement<Source::kColumns, hasProduct> place(pose.mGlobal);
    int v = 0;
    for (; v + kQuads <= block.mVertices; v += kQuads) {
      place(blends + 16 * v, block.mPoints + 3 * v, block.mScales + v, block.mOut + 3 * v);
    }
    if (v < block.mVertices) placeRest(place, block, blends, v);
    return left;
  }

 private:
  // Pass 1. A blend that is left to the caller is filled with zeros, which pass 2 may meet.
  template <class Source, bool hasProduct>
  // NOLINTNEXTLINE(readability-non-const-parameter): the cursor writes through both.
  static bool blendAll(const Pose& pose, const Block& block, float* outBlends, bool* outLeft) {
    constexpr int rows = hasProduct || Source::kColumns ? 4 : 3;
    Cursor at{block.mOrder, block.mLinks, outBlends, outLeft, false};
    for (const Run* run = block.mRuns; at.mOrder != block.mOrder + block.mVertices; ++run) {
      // A count that the compiler knows takes the place of a loop.
      switch (run->mLinks) {
        case 0:
          leaveRun(run->mVertices, at);
          break;
        case 1:
          blendRun<Source, rows, 1>(pose, *run, at);
          break;
        case 2:
          blendRun<Source, rows, 2>(pose, *run, at);
          break;
        case 3:
          blendRun<Source, rows, 3>(pose, *run, at);
          break;
        case 4:
          blendRun<Source, rows, 4>(pose, *run, at);
          break;
        default:
          blendRun<Source, rows, 0>(pose, *run, at);
      }
    }
    return at.mLeft;
  }

  // Where pass 1 is.
  struct Cursor {
    const std::uint8_t* mOrder;
    const Link* mLinks;
    float* mBlends;
    bool* mOutLeft;
    bool mLeft;
  };

  // links: how many each vertex has; 0 where only the run knows.
  template <class Source, int rows, std::uint32_t links>
  static void blendRun(const Pose& pose, const Run& run, Cursor& io) {
    const std::uint32_t count = links > 0 ? links : run.mLinks;
    const std::uint8_t* const end = io.mOrder + run.mVertices;
    const Source source(pose);  // each vertex starts with a copy
    for (; io.mOrder != end; ++io.mOrder, io.mLinks += count) {
      float* const out = io.mBlends + 16 * *io.mOrder;
      if (!blend<Source, rows>(io.mLinks, count, source, out)) leave(io);
    }
  }

  static void leaveRun(std::uint32_t vertices, Cursor& io) {
    for (const std::uint8_t* const end = io.mOrder + vertices; io.mOrder != end; ++io.mOrder) {
      leave(io);
    }
  }
  static void leave(Cursor& io) {
    for (int i = 0; i < 16; ++i) io.mBlends[16 * *io.mOrder + i] = 0;
    io.mOutLeft[*io.mOrder] = io.mLeft = true;
  }

  // The weighted sum of the matrices of the links; false when one of them has none.
  template <class Source, int rows>
  static bool blend(const Link* links, std::uint32_t count, Source source, float* out) {
    constexpr int registers = (rows + kQuads - 1) / kQuads;
    Q sum[registers];
    for (Q& quads : sum) quads = Q::zero();
    for (std::uint32_t i = 0; i < count; ++i) {
      const float* const matrix = source(links[i].mNode);
      if (Source::kColumns && matrix == nullptr) return false;
      for (int r = 0; r < registers; ++r) {
        // order: exact floats
        sum[r] = Q::loadTimes(matrix + 4 * kQuads * r, links[i].mWeight) + sum[r];
      }
    }
    for (int r = 0; r < registers; ++r) sum[r].store(out + 4 * kQuads * r);
    return true;
  }

  // Pass 2 for kQuads vertices.
  template <bool fromColumns, bool hasProduct>
  class Placement {
   public:
    explicit Placement(const float* global) {
      for (int i = 0; i < 3; ++i) {
        for (int k = 0; k < 4; ++k) mGlobal[i][k] = global[4 * k + i];
      }
    }

    void operator()(const float* blends, const float* points, const float* scales,
                    float* out) const {
      Q row[4];
      Q::loadRows(blends, row);
      if (fromColumns) Q::transpose(row);
      const Q point = Q::loadPoints(points);
      // Required behaviour: y comes from row 2 and z from row 1.
      Q term[4];
      Q::transposeThree(product(row, 0) * point, product(row, 2) * point, product(row, 1) * point,
                        term);
      // order: exact floats
      ((((term[0] + term[1]) + term[2]) + term[3]) * Q::spread(scales)).storePoints(out);
    }

   private:
    Q product(const Q row[4], int i) const {
      if (!hasProduct) return row[i];
      const float* g = mGlobal[i];
      return ((row[0] * g[0] + row[1] * g[1]) + row[2] * g[2]) +
             row[3] * g[3];  // order: exact floats
    }

    float mGlobal[3][4];
  };

  // The last vertices, fewer than kQuads.
  template <class Place>
  static void placeRest(const Place& place, const Block& block, const float* blends, int first) {
    float points[3 * kQuads] = {}, scales[kQuads] = {}, out[3 * kQuads];
    const int count = block.mVertices - first;
    for (int i = 0; i < 3 * count; ++i) points[i] = block.mPoints[3 * first + i];
    for (int i = 0; i < count; ++i) scales[i] = block.mScales[first + i];
    place(blends + 16 * first, points, scales, out);
    for (int i = 0; i < 3 * count; ++i) block.mOut[3 * first + i] = out[i];
  }
};

template <class Q>
constexpr Kernels kernelsOver() {
  using K = Kernel<Q>;
  return {&K::template deform<typename K::FromPalette, true>,
          &K::template deform<typename K::FromPalette, false>,
          &K::template deform<typename K::FromHeldNodes, true>};
}

}  // namespace Norvel::Vexa::skinning
