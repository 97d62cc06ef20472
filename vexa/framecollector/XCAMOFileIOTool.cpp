#include "vexa/framecollector/XCAMOFileIOTool.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <utility>
#include <vector>

#include "vexa/framecollector/XIFrameCollector.h"
#include "vexa/math/uxs_generic_mat4.h"
#include "vexa/support/UxThrow.h"

#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ != __ORDER_LITTLE_ENDIAN__
#error "the animation file is little-endian, and so is every machine that this reader knows"
#endif

namespace Norvel {
namespace {

constexpr std::uint32_t kVersion = 101;

// Bytes of one element in the file; a matrix is 16 doubles.
constexpr std::uint64_t kCountBytes = 4, kMatrixBytes = 128, kLinkBytes = 12;

// The file, read value by value; where it ends, values keep their presets.
class SourceFile {
 public:
  explicit SourceFile(const CChemin& inPath) : mFile(inPath.OpenRegularFile()) {
    const long size =
        mFile && std::fseek(mFile.get(), 0, SEEK_END) == 0 ? std::ftell(mFile.get()) : -1;
    if (size < 0 || std::fseek(mFile.get(), 0, SEEK_SET) != 0) {
      UxThrow::Signal("XCAMOFileIOTool : This file can not be opened!");
    }
    mRemaining = static_cast<std::uint64_t>(size);
  }

  // Bytes that are still to be read.
  std::uint64_t remaining() const { return mRemaining; }

  // A value that is not wholly in the file is not touched, and nothing follows it.
  template <class T>
  void read(T& ioValue) {
    T value;
    if (mRemaining < sizeof(T) || std::fread(&value, sizeof(T), 1, mFile.get()) != 1) {
      mRemaining = 0;
      return;
    }
    mRemaining -= sizeof(T);
    ioValue = value;
  }

 private:
  struct Close {
    void operator()(std::FILE* inFile) const { std::fclose(inFile); }
  };

  std::unique_ptr<std::FILE, Close> mFile;
  std::uint64_t mRemaining = 0;
};

// What a file may promise. Sums and products of its counts pass 64 bits, so they are doubles: exact
// as far as the limits reach, and far above them where they are not.
class Limits {
 public:
  explicit Limits(std::uint64_t inFileSize)
      : mMostBytes(std::min(kMostBytes, kFreeBytes + kBytesPerByte * double(inFileSize))) {}

  // Elements past the end of the file that are about to be read as presets.
  void require(double inMissing) const { refuseIf(mMissing + inMissing > kAllowance); }
  void spend(double inMissing) {
    require(inMissing);
    mMissing += inMissing;
  }

  // Memory, by the estimate of the frame collector, that the file is about to need.
  void spendBytes(double inBytes) {
    refuseIf(mBytes + inBytes > mMostBytes);
    mBytes += inBytes;
  }

 private:
  static constexpr double kAllowance = VEXA_ANIMATION_FILE_ALLOWANCE;
  static constexpr double kMostBytes = 4294967296.0;
  // No more than 9 bytes per byte of the file come from takes that have frames.
  static constexpr double kFreeBytes = 268435456.0, kBytesPerByte = 64;

  static void refuseIf(bool inTooMuch) {
    if (inTooMuch) UxThrow::Signal("XCAMOFileIOTool : This file is truncated!");
  }

  double mMostBytes;
  double mMissing = 0;
  double mBytes = 0;
};

// How many of the elements do not lie in the given bytes.
double missing(double inCount, std::uint64_t inBytesEach, std::uint64_t inBytes) {
  return std::max(0.0, inCount - double(inBytes / inBytesEach));
}

// One pass over a file, from its start to its last node.
class Reading {
 public:
  Reading(const CChemin& inPath, Vexa::XIFrameCollector& ioCollector)
      : mFile(inPath), mLimits(mFile.remaining()), mCollector(ioCollector) {}

  void readVersion();
  void readTakes();
  void readNodes();

 private:
  struct sTake {
    std::uint32_t mIndex;
    std::uint32_t mFrames;
  };

  UXS::uxs_generic_mat4<float> readMatrix();
  double missingOfNodes(double inNodes) const;
  void readNode();
  void readLinks(int inNode);

  SourceFile mFile;
  Limits mLimits;
  Vexa::XIFrameCollector& mCollector;
  std::uint32_t mTakeCount = 0;
  std::vector<sTake> mFilledTakes;  // those with frames: a node costs nothing for the others
  double mFrames = 0;               // of all takes together
};

void Reading::readVersion() {
  std::uint32_t version = 0;
  mFile.read(version);
  if (version != kVersion) {
    UxThrow::Signal("XCAMOFileIOTool : This file has not the good version!");
  }
}

// The takes, the global transformation that stands behind their count, and their frame counts.
void Reading::readTakes() {
  mFile.read(mTakeCount);
  const std::uint64_t bytes = mFile.remaining();
  mLimits.spend(missing(mTakeCount, kCountBytes, bytes - std::min(bytes, kMatrixBytes)));
  mLimits.spendBytes(72.0 * mTakeCount);
  for (std::uint32_t t = 0; t < mTakeCount; ++t) mCollector.CreateTake();
  mCollector.SetGlobalTransformation(readMatrix());
  for (std::uint32_t t = 0; t < mTakeCount; ++t) {
    std::uint32_t frames = 0;
    mFile.read(frames);
    if (frames > 0) mFilledTakes.push_back({t, frames});
    mFrames += frames;
  }
}

void Reading::readNodes() {
  std::uint32_t nodes = 0;
  mFile.read(nodes);
  if (mFrames > 0) mLimits.spendBytes(nodes * (32 + 48.0 * mTakeCount + 64 * mFrames));
  for (; nodes > 0; --nodes) {
    mLimits.require(missingOfNodes(nodes));
    readNode();
  }
}

UXS::uxs_generic_mat4<float> Reading::readMatrix() {
  UXS::uxs_generic_mat4<double> matrix;
  static_assert(sizeof(matrix) == kMatrixBytes);
  mFile.read(matrix);
  UXS::uxs_generic_mat4<float> result;
  for (int k = 0; k < 16; ++k) result.e[k] = float(matrix.e[k]);
  return result;
}

// Elements of the nodes to come that lie past the end of the file if there are no links: their
// matrices, and themselves where not even the link count is there. Behind the end there are none.
double Reading::missingOfNodes(double inNodes) const {
  const double bytes = double(mFile.remaining());
  const double whole = std::floor(bytes / (kMatrixBytes * mFrames + kCountBytes));
  if (whole >= inNodes) return 0;
  const double rest = bytes - whole * (kMatrixBytes * mFrames + kCountBytes);
  return (inNodes - whole) * (mFrames + 1) - std::min(mFrames, std::floor(rest / kMatrixBytes));
}

void Reading::readNode() {
  int node = -1;
  for (const sTake& take : mFilledTakes) {
    for (std::uint32_t f = 0; f < take.mFrames; ++f) {
      node = static_cast<int>(mCollector.AddTransformation(readMatrix(), take.mIndex, node));
    }
  }
  readLinks(node);
}

// Required behaviour: a node without matrices keeps the index -1, also for its links.
void Reading::readLinks(int inNode) {
  std::uint32_t links = 0;
  mFile.read(links);
  mLimits.spend(missing(links, kLinkBytes, mFile.remaining()));
  mLimits.spendBytes(28.0 * links);
  for (std::uint32_t i = 0; i < links; ++i) {
    std::uint32_t vertex = 0;
    double weight = 0;
    mFile.read(vertex);
    mFile.read(weight);
    mCollector.AddLink(inNode, UxZel::CZelUUID{}, vertex, weight);
  }
}

}  // namespace

XCAMOFileIOTool::XCAMOFileIOTool(CChemin inPath) : mPath(std::move(inPath)) {}

XCAMOFileIOTool::~XCAMOFileIOTool() = default;

void XCAMOFileIOTool::Read(Vexa::XIFrameCollector* ioCollector) {
  UxThrow::IfNULL(ioCollector, "XCAMOFileIOTool : no frame collector");
  Reading reading(mPath, *ioCollector);
  reading.readVersion();
  reading.readTakes();
  reading.readNodes();
}

}  // namespace Norvel
