#include "formats/AnimationFile.h"

#include <cstring>
#include <limits>
#include <numeric>
#include <stdexcept>
#include <utility>

#include "formats/little_endian.h"
#include "formats/write_file.h"

namespace vexa::formats {
namespace {

constexpr std::uint32_t kVersion = 101;
constexpr std::uint64_t kCountBytes = 4, kLinkBytes = 12;

// Values one after the other, without padding.
class Writer {
 public:
  template <class T>
  void put(const T& inValue) {
    char bytes[sizeof(T)];
    const T ordered = littleEndian(inValue);
    std::memcpy(bytes, &ordered, sizeof(T));
    mBytes.append(bytes, sizeof(T));
  }
  void putCount(std::size_t inCount, const char* inWhat) {
    if (inCount > std::numeric_limits<std::uint32_t>::max()) {
      throw std::invalid_argument(std::string("animation file: too many ") + inWhat);
    }
    put(static_cast<std::uint32_t>(inCount));
  }
  std::string take() { return std::move(mBytes); }

 private:
  std::string mBytes;
};

std::uint64_t matricesPerNode(const std::vector<std::uint32_t>& inFrameCounts) {
  return std::accumulate(inFrameCounts.begin(), inFrameCounts.end(), std::uint64_t{0});
}

void checkMatrices(std::size_t inNode, std::uint64_t inHas, std::uint64_t inWanted) {
  if (inHas == inWanted) return;
  throw std::invalid_argument("animation file: node " + std::to_string(inNode) + " has " +
                              std::to_string(inHas) + " matrices, not " + std::to_string(inWanted));
}

void putNode(Writer& ioWriter, const AnimationFile::Node& inNode) {
  for (const AnimationFile::Matrix& matrix : inNode.mMatrices) ioWriter.put(matrix);
  ioWriter.putCount(inNode.mLinks.size(), "links");
  for (const AnimationFile::Link& link : inNode.mLinks) {
    ioWriter.put(link.mVertex);
    ioWriter.put(link.mWeight);
  }
}

// The same values back; every one has to be there.
class Reader {
 public:
  explicit Reader(const std::string& inBytes) : mBytes(inBytes) {}

  template <class T>
  T get(const char* inWhat) {
    require(1, sizeof(T), inWhat);
    T value{};
    std::memcpy(&value, mBytes.data() + mOffset, sizeof(T));
    mOffset += sizeof(T);
    return littleEndian(value);
  }
  // A count of elements that need at least so many bytes each.
  std::uint32_t getCount(std::uint64_t inBytesEach, const char* inWhat) {
    const auto count = get<std::uint32_t>(inWhat);
    require(count, inBytesEach, inWhat);
    return count;
  }
  void require(std::uint64_t inCount, std::uint64_t inBytesEach, const char* inWhat) const {
    if (inCount > (mBytes.size() - mOffset) / inBytesEach) {
      fail(std::string("the file ends inside ") + inWhat);
    }
  }
  [[noreturn]] void fail(const std::string& inText) const {
    throw std::runtime_error("animation file, byte " + std::to_string(mOffset) + ": " + inText);
  }
  bool atEnd() const { return mOffset == mBytes.size(); }

 private:
  const std::string& mBytes;
  std::size_t mOffset = 0;
};

AnimationFile::Node getNode(Reader& ioReader, std::uint64_t inMatrices) {
  AnimationFile::Node node;
  ioReader.require(inMatrices, sizeof(AnimationFile::Matrix), "the matrices of a node");
  for (std::uint64_t i = 0; i < inMatrices; ++i) {
    node.mMatrices.push_back(ioReader.get<AnimationFile::Matrix>("a matrix"));
  }
  const std::uint32_t links = ioReader.getCount(kLinkBytes, "the links of a node");
  for (std::uint32_t i = 0; i < links; ++i) {
    const auto vertex = ioReader.get<std::uint32_t>("a link");
    node.mLinks.push_back({vertex, ioReader.get<double>("a link")});
  }
  return node;
}

}  // namespace

std::string encodeAnimationFile(const AnimationFile& inFile) {
  const std::uint64_t matrices = matricesPerNode(inFile.mFrameCounts);
  Writer writer;
  writer.put(kVersion);
  writer.putCount(inFile.mFrameCounts.size(), "takes");
  writer.put(inFile.mGlobal);
  for (const std::uint32_t frames : inFile.mFrameCounts) writer.put(frames);
  writer.putCount(inFile.mNodes.size(), "nodes");
  for (std::size_t n = 0; n < inFile.mNodes.size(); ++n) {
    checkMatrices(n, inFile.mNodes[n].mMatrices.size(), matrices);
    putNode(writer, inFile.mNodes[n]);
  }
  return writer.take();
}

void writeAnimationFile(const AnimationFile& inFile, const std::string& inPath) {
  writeFile(inPath, encodeAnimationFile(inFile));
}

AnimationFile decodeAnimationFile(const std::string& inBytes) {
  Reader reader(inBytes);
  AnimationFile file;
  if (reader.get<std::uint32_t>("the version") != kVersion) {
    reader.fail("the version is not 101");
  }
  const std::uint32_t takes = reader.getCount(kCountBytes, "the frame counts");
  file.mGlobal = reader.get<AnimationFile::Matrix>("the global transformation");
  for (std::uint32_t t = 0; t < takes; ++t) {
    file.mFrameCounts.push_back(reader.get<std::uint32_t>("the frame counts"));
  }
  const std::uint64_t matrices = matricesPerNode(file.mFrameCounts);
  const std::uint32_t nodes = reader.getCount(kCountBytes, "the nodes");
  for (std::uint32_t n = 0; n < nodes; ++n) file.mNodes.push_back(getNode(reader, matrices));
  if (!reader.atEnd()) reader.fail("bytes after the last node");
  return file;
}

}  // namespace vexa::formats
