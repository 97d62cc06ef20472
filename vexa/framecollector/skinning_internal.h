#pragma once

#include <cstdint>

// Deforms vertices by the weighted matrices of nodes, a block of vertices at a time. One algorithm
// is compiled for several machines; all forms give the same bits.
//
// Sources that are compiled for newer machines include this header, so it holds plain data and
// declarations only.
namespace Norvel::Vexa::skinning {

// Vertices of a block. Their blended matrices take 8 kB, which stay in the first-level cache
// between the two passes, beside the matrices of the nodes.
constexpr int kBlock = 128;

struct Link {
  std::uint32_t mNode;
  float mWeight;
};

// Neighbours in a block's order that have equally many links. Vertices that a kernel leaves to its
// caller form a run with 0 links.
struct Run {
  std::uint32_t mLinks;
  std::uint32_t mVertices;
};

// A node at one take, where the frame differs from link to link.
struct HeldNode {
  const float* mFirst;  // the matrix of frame 0; null when the node can not be followed
  std::uint32_t mLast;  // the last frame
};

// The nodes at one frame.
struct Pose {
  const float* mPalette = nullptr;   // the rows of one matrix per node
  const HeldNode* mNodes = nullptr;  // for mHeld only
  std::uint32_t mFrame = 0;          // for mHeld only
  const float* mGlobal = nullptr;    // applied after the blend; column by column
};

struct Block {
  int mVertices;               // at most kBlock
  const float* mPoints;        // rest positions, three floats each
  const float* mScales;        // 1 / sum of the weights
  float* mOut;                 // deformed positions
  const std::uint8_t* mOrder;  // the vertices by number of links; those left out come last
  const Run* mRuns;            // cover mOrder
  const Link* mLinks;          // of each vertex of mOrder in turn, in visiting order
};

// Deforms the vertices of a block. Marks those that it can not deform in `outLeft`, which holds
// kBlock flags, all false before; returns whether there are any.
using DeformBlock = bool (*)(const Pose& pose, const Block& block, bool* outLeft);

struct Kernels {
  DeformBlock mPosed;     // by the palette
  DeformBlock mIdentity;  // likewise, without the product with a global matrix that changes nothing
  DeformBlock mHeld;      // by mNodes; a frame that one link holds stays for those behind it
};

// One form for each kind of machine. The last two are there where VEXA_NEWER_MACHINES is defined.
extern const Kernels kPlainKernels;
extern const Kernels kBaselineKernels;
extern const Kernels kAvx2Kernels;
extern const Kernels kAvx512Kernels;

// The quickest form for this machine.
const Kernels& kernels();

}  // namespace Norvel::Vexa::skinning
