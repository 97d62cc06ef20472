// An animation file from outside, read into a frame collector from which frames are then deformed.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <numeric>
#include <random>
#include <stdexcept>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

#include "formats/AnimationFile.h"
#include "vexa/framecollector/XCAMOFileIOTool.h"
#include "vexa/framecollector/XCFrameCollector.h"
#include "vexa/mesh/MeshEditor.h"
#include "vexa/support/XStPushReporter.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t largest);

namespace {

using Norvel::Vexa::XCFrameCollector;
using vexa::formats::AnimationFile;

// Few, so that a random link often hits an existing vertex.
constexpr unsigned kVertices = 8;

struct SilentReporter : Norvel::XIReporter {
  void ReportMsg(EMsgType /*type*/, const char* /*text*/) override {}
};

void require(bool holds) {
  if (!holds) std::abort();
}

// Bytes under a path, without a disk.
class MemoryFile {
 public:
  MemoryFile(const void* bytes, std::size_t size) : mHandle(memfd_create("animation", 0)) {
    require(write(mHandle, bytes, size) == ssize_t(size));
    mPath = "/proc/self/fd/" + std::to_string(mHandle);
  }
  ~MemoryFile() { close(mHandle); }
  const char* path() const { return mPath.c_str(); }

 private:
  int mHandle;
  std::string mPath;
};

// The text of the error, or "".
std::string read(const std::uint8_t* data, std::size_t size, XCFrameCollector& collector) {
  const MemoryFile file(data, size);
  try {
    Norvel::XCAMOFileIOTool(Norvel::CChemin(file.path())).Read(&collector);
    return "";
  } catch (const std::runtime_error& e) {
    return e.what();
  }
}

// Two readers of one format, written apart: what the strict one accepts, the library must read to
// the same numbers, unless the file asks for too much.
void checkMatrices(const AnimationFile& file, const XCFrameCollector& collector) {
  require(collector.GetNbrTakes() == file.mFrameCounts.size());
  for (std::size_t n = 0; n < file.mNodes.size(); ++n) {
    auto matrix = file.mNodes[n].mMatrices.begin();
    for (unsigned t = 0; t < file.mFrameCounts.size(); ++t) {
      for (unsigned f = 0; f < file.mFrameCounts[t]; ++f, ++matrix) {
        const auto& read = collector.GetTransformation(t, f, int(n));
        for (std::size_t k = 0; k < 16; ++k) {
          const float expected = float((*matrix)[k]);
          // NaN is equal to nothing, so NaN for NaN is allowed for.
          require(read.e[k] == expected || expected != expected);
        }
      }
    }
  }
}

void checkAgainstStrictReader(const std::string& bytes, const std::string& error,
                              const XCFrameCollector& collector) {
  AnimationFile file;
  try {
    file = vexa::formats::decodeAnimationFile(bytes);
  } catch (const std::runtime_error&) {
    return;
  }
  require(error.find("version") == std::string::npos);
  if (error.empty()) checkMatrices(file, collector);
}

void deform(const UXS::Mesh& mesh, XCFrameCollector& collector) {
  // Also takes and frames that no file has.
  for (const unsigned take : {0u, 1u, ~0u}) {
    for (const unsigned frame : {0u, 1u, ~0u}) {
      for (const auto& vertex : mesh.GetVerticesArray()) {
        collector.TransformPoint(&vertex, take, frame);
      }
    }
  }
  const auto* deformed = collector.GetCurrentDefinition(0, 1, {});
  require(deformed->GetVerticesArray().size() == kVertices);
}

// Mutation of the contents, which the counts then follow. Random bytes nearly always break a count,
// and the reader then stops before anything interesting.
class Mutation {
 public:
  explicit Mutation(unsigned seed) : mRandom(seed) {}

  std::string apply(const std::string& bytes) {
    std::string result = encodeAnimationFile(changed(contents(bytes)));
    // Some counts must be wrong all the same.
    if (below(4) == 0) lie(result);
    if (below(8) == 0) result.resize(below(result.size() + 1));
    return result;
  }

 private:
  static AnimationFile contents(const std::string& bytes) try {
    return vexa::formats::decodeAnimationFile(bytes);
  } catch (const std::runtime_error&) {
    return {};
  }

  std::size_t below(std::size_t n) { return mRandom() % n; }
  double real() {
    const double kOdd[] = {0, -0.0, 1, -1, 0.5, 1e-310, 1e39, 1e308, 1.0 / 0.0, 0.0 / 0.0};
    return kOdd[below(std::size(kOdd))];
  }

  AnimationFile changed(AnimationFile file) {
    const std::size_t what = below(6);
    if (what == 0) addTake(file);
    if (what == 1 && !file.mFrameCounts.empty()) dropTake(file);
    if (what == 2) addNode(file);
    if (file.mNodes.empty()) return file;
    AnimationFile::Node& node = file.mNodes[below(file.mNodes.size())];
    if (what == 3) node.mLinks.push_back({std::uint32_t(below(kVertices + 1)), real()});
    if (what == 4 && !node.mMatrices.empty()) {
      node.mMatrices[below(node.mMatrices.size())][below(16)] = real();
    }
    if (what == 5)
      file.mNodes.erase(file.mNodes.begin() + std::ptrdiff_t(below(file.mNodes.size())));
    return file;
  }
  void addTake(AnimationFile& file) {
    const std::size_t frames = below(4);
    file.mFrameCounts.push_back(std::uint32_t(frames));
    for (AnimationFile::Node& node : file.mNodes) {
      node.mMatrices.resize(node.mMatrices.size() + frames, AnimationFile::kIdentity);
    }
  }
  static void dropTake(AnimationFile& file) {
    for (AnimationFile::Node& node : file.mNodes) {
      node.mMatrices.resize(node.mMatrices.size() - file.mFrameCounts.back());
    }
    file.mFrameCounts.pop_back();
  }
  void addNode(AnimationFile& file) {
    const auto& counts = file.mFrameCounts;
    const auto frames = std::accumulate(counts.begin(), counts.end(), std::size_t{0});
    if (frames > 1000) return;  // a file without nodes may state any count
    AnimationFile::Node node;
    node.mMatrices.resize(frames, AnimationFile::kIdentity);
    node.mLinks.push_back({std::uint32_t(below(kVertices)), real()});
    file.mNodes.push_back(node);
  }
  // Another number in some word: where it is a count, it no longer fits what follows.
  void lie(std::string& bytes) {
    const std::uint32_t kOdd[] = {0, 1, 100, 4097, 0x10000, 0x7FFFFFFF, 0xFFFFFFFF};
    const std::uint32_t word = kOdd[below(std::size(kOdd))];
    const std::size_t takes = (bytes.size() < 144 ? 140 : 144) / 4;
    const std::size_t offset = below(2) == 0 ? 4 : 4 * (34 + below(takes - 34));
    std::memcpy(&bytes[below(3) == 0 ? 4 * below(bytes.size() / 4) : offset], &word, 4);
  }

  std::minstd_rand mRandom;
};

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t largest, unsigned int seed) {
  // Now and then plain mutations: they find what this class does not think of.
  if (seed % 8 == 0) return LLVMFuzzerMutate(data, size, largest);
  const std::string mutated =
      Mutation(seed).apply(std::string(reinterpret_cast<const char*>(data), size));
  const std::size_t count = std::min(mutated.size(), largest);
  std::memcpy(data, mutated.data(), count);
  return count;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  SilentReporter silent;
  const Norvel::XStPushReporter scope(&silent, false);
  UXS::Mesh mesh;
  {
    UXS::Mesh::Editor editor(mesh, false);
    for (unsigned v = 0; v < kVertices; ++v) editor.AddVertex({float(v), 1, -float(v)});
    for (unsigned v = 0; v + 2 < kVertices; ++v) editor.AddTriangle({v, v + 1, v + 2}, v / 2);
  }
  XCFrameCollector collector(&mesh);
  const std::string error = read(data, size, collector);
  checkAgainstStrictReader(std::string(reinterpret_cast<const char*>(data), size), error,
                           collector);
  deform(mesh, collector);
  return 0;
}
