#include "vexa/framecollector/XCAMOFileIOTool.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <new>
#include <vector>

#include "vexa/framecollector/CollectorFill_internal.h"
#include "vexa/framecollector/SourceFile_internal.h"
#include "vexa/framecollector/XIFrameCollector.h"
#include "vexa/math/uxs_generic_mat4.h"
#include "vexa/support/UxThrow.h"

// How many takes, nodes, matrices and links a truncated file may lack in all.
#if !defined(VEXA_ANIMATION_FILE_ALLOWANCE)
#define VEXA_ANIMATION_FILE_ALLOWANCE 1048576
#endif

namespace Norvel {
namespace {

using Matrix = UXS::uxs_generic_mat4<float>;

constexpr std::uint32_t kVersion = 101;

// Bytes of one element in the file; a matrix is 16 doubles.
constexpr std::size_t kCountBytes = 4, kMatrixBytes = 128, kLinkBytes = 12;

// Bounds on what a file may claim. Products of its counts can exceed 64 bits, so they are doubles,
// which are exact up to every bound used here.
class Limits {
 public:
  // Elements past the end of the file that are about to be read as presets.
  void require(double missing) const { refuseIf(mMissing + missing > kAllowance); }
  void spend(double missing) {
    require(missing);
    mMissing += missing;
  }
  // Links have an allowance of their own within the other: each may cost a report per frame.
  void spendLinks(double missing) {
    refuseIf(mMissingLinks + missing > kLinkAllowance);
    mMissingLinks += missing;
    spend(missing);
  }

  // Memory, by the estimate of the frame collector, that the file is about to need.
  void spendBytes(double bytes) {
    refuseIf(mBytes + bytes > kMostBytes);
    mBytes += bytes;
  }

 private:
  static constexpr double kAllowance = VEXA_ANIMATION_FILE_ALLOWANCE;
  static constexpr double kLinkAllowance = 4096;
  static constexpr double kMostBytes = 4294967296.0;  // where GetSize() would start again from 0

  static void refuseIf(bool isTooMuch) {
    if (isTooMuch) UxThrow::Signal("XCAMOFileIOTool : This file is truncated!");
  }

  double mMissing = 0;
  double mMissingLinks = 0;
  double mBytes = 0;
};

// How many of the elements do not lie in the given bytes.
double missing(double count, std::size_t bytesEach, std::uint64_t bytes) {
  const std::uint64_t there = bytes / bytesEach;
  return std::max(0.0, count - double(there));
}

Matrix matrixAt(const unsigned char* bytes) {
  Matrix result;
  for (int k = 0; k < 16; ++k) result.e[k] = float(doubleAt(bytes + 8 * k));
  return result;
}

// One pass over a file, from its start to its last node.
class Reading {
 public:
  Reading(const CChemin& path, Vexa::XIFrameCollector& ioCollector)
      : mFile(path), mCollector(ioCollector), mFill(Vexa::CollectorFill::of(ioCollector)) {}

  void readVersion();
  void readTakes();
  void readNodes();

 private:
  std::uint32_t readCount();
  void readMatrices(std::uint64_t count, Matrix* out);
  double missingOfNodes(double nodes) const;
  void readNode(std::uint32_t nodesLeft);
  int readNodeMatrices();
  int addNodeMatrices();
  void readLinks(int node, std::uint32_t nodesLeft);
  void addLink(int node, std::uint32_t vertex, double weight);

  SourceFile mFile;
  Limits mLimits;
  Vexa::XIFrameCollector& mCollector;
  // A collector of our own takes whole nodes; null for any other.
  std::unique_ptr<Vexa::CollectorFill> mFill;
  std::vector<std::uint32_t> mFrameCounts;  // per take
  std::vector<std::uint32_t> mFilledTakes;  // those with frames: a node costs nothing for others
  double mFrames = 0;                       // of all takes together
  double mLinks = 0;                        // so far
};

void Reading::readVersion() {
  if (readCount() != kVersion) {
    UxThrow::Signal("XCAMOFileIOTool : This file has not the good version!");
  }
}

//   version  takes  global matrix  frame counts  nodes  { matrices  links  { vertex  weight } }
//   4 bytes  4      128            4 per take    4        128 each  4        4       8
//
// Reads the takes, the global transformation that follows their count, and their frame counts. Each
// count is judged by what is left of the file before memory is taken for it.
void Reading::readTakes() {
  const std::uint32_t takes = readCount();
  const std::uint64_t bytes = mFile.remaining();
  mLimits.spend(missing(takes, kCountBytes, bytes - std::min<std::uint64_t>(bytes, kMatrixBytes)));
  mLimits.spendBytes(72.0 * takes);
  for (std::uint32_t t = 0; t < takes; ++t) mCollector.CreateTake();
  Matrix global;
  readMatrices(1, &global);
  mCollector.SetGlobalTransformation(global);
  mFrameCounts.reserve(takes);
  for (std::uint32_t t = 0; t < takes; ++t) {
    mFrameCounts.push_back(readCount());
    if (mFrameCounts.back() > 0) mFilledTakes.push_back(t);
    mFrames += mFrameCounts.back();
  }
}

void Reading::readNodes() {
  std::uint32_t nodes = readCount();
  if (mFrames > 0) {
    mLimits.spendBytes(nodes * (32 + 48.0 * double(mFrameCounts.size()) + 64 * mFrames));
    mLimits.require(missingOfNodes(nodes));
    if (mFill) mFill->reserveNodes(mFrameCounts, nodes);
  }
  for (; nodes > 0; --nodes) {
    mLimits.require(missingOfNodes(nodes));
    readNode(nodes - 1);
  }
  if (mFill) mFill->finish();
}

// A count that the file does not hold in full is 0, and nothing follows it.
std::uint32_t Reading::readCount() {
  const unsigned char* const bytes = mFile.takeOne(kCountBytes);
  if (bytes != nullptr) return wordAt(bytes);
  mFile.drop();
  return 0;
}

// Makes `count` matrices at `out`; those that the file does not hold in full are the identity.
void Reading::readMatrices(std::uint64_t count, Matrix* out) {
  std::size_t here;
  for (; count > 0; count -= here) {
    const unsigned char* bytes = mFile.take(kMatrixBytes, count, here);
    if (bytes == nullptr) break;
    // NOLINTNEXTLINE(clang-analyzer-cplusplus.PlacementNew): `out` has room for `count`.
    for (std::size_t i = 0; i < here; ++i) new (out++) Matrix(matrixAt(bytes + i * kMatrixBytes));
  }
  if (count > 0) mFile.drop();
  for (; count > 0; --count) new (out++) Matrix();
}

// Elements of the nodes to come that lie past the end of the file if there are no links: their
// matrices, and the nodes themselves where not even the link count is there.
double Reading::missingOfNodes(double nodes) const {
  const auto bytes = double(mFile.remaining());
  const double nodeBytes = double(kMatrixBytes) * mFrames + double(kCountBytes);
  const double whole = std::floor(bytes / nodeBytes);
  if (whole >= nodes) return 0;
  const double rest = bytes - whole * nodeBytes;
  return (nodes - whole) * (mFrames + 1) -
         std::min(mFrames, std::floor(rest / double(kMatrixBytes)));
}

void Reading::readNode(std::uint32_t nodesLeft) {
  readLinks(mFill && mFrames > 0 ? readNodeMatrices() : addNodeMatrices(), nodesLeft);
}

int Reading::readNodeMatrices() {
  readMatrices(std::uint64_t(mFrames), mFill->nextNode());
  return mFill->addNode();
}

// Required behaviour: a node without matrices keeps the index -1, also for its links.
int Reading::addNodeMatrices() {
  int node = -1;
  for (const std::uint32_t take : mFilledTakes) {
    for (std::uint32_t f = 0; f < mFrameCounts[take]; ++f) {
      Matrix matrix;
      readMatrices(1, &matrix);
      node = int(mCollector.AddTransformation(matrix, take, node));
    }
  }
  return node;
}

void Reading::readLinks(int node, std::uint32_t nodesLeft) {
  std::uint64_t links = readCount();
  mLimits.spendLinks(missing(double(links), kLinkBytes, mFile.remaining()));
  mLimits.spendBytes(28.0 * double(links));
  // The nodes to come have matrices; what the file has besides these may all be links.
  if (mFill) {
    const double matrixBytes = double(nodesLeft) * mFrames * double(kMatrixBytes);
    const double most = (double(mFile.remaining()) - matrixBytes) / double(kLinkBytes);
    mFill->reserveLinks(std::uint32_t(links), std::uint64_t(std::max(0.0, mLinks + most)));
  }
  mLinks += double(links);
  std::size_t here;
  for (; links > 0; links -= here) {
    const unsigned char* const bytes = mFile.take(kLinkBytes, links, here);
    if (bytes == nullptr) break;
    for (std::size_t i = 0; i < here; ++i) {
      const unsigned char* const link = bytes + i * kLinkBytes;
      addLink(node, wordAt(link), doubleAt(link + kCountBytes));
    }
  }
  // The file ends: of the link that is cut the vertex may be there.
  for (; links > 0; --links) {
    addLink(node, readCount(), 0);
    mFile.drop();
  }
}

void Reading::addLink(int node, std::uint32_t vertex, double weight) {
  if (mFill) {
    mFill->addLink(node, vertex, weight);
  } else {
    mCollector.AddLink(node, UxZel::CZelUUID{}, vertex, weight);
  }
}

}  // namespace

// NOLINTNEXTLINE(performance-unnecessary-value-param): hosts link to this signature.
XCAMOFileIOTool::XCAMOFileIOTool(CChemin path) : mPath(path) {}

XCAMOFileIOTool::~XCAMOFileIOTool() = default;

void XCAMOFileIOTool::Read(Vexa::XIFrameCollector* ioCollector) {
  UxThrow::IfNULL(ioCollector, "XCAMOFileIOTool : no frame collector");
  Reading reading(mPath, *ioCollector);
  reading.readVersion();
  reading.readTakes();
  reading.readNodes();
}

}  // namespace Norvel
