#include "formats/AnimationFile.h"

#include <cstring>
#include <limits>
#include <numeric>
#include <stdexcept>
#include <utility>

#include "formats/TemporaryFile.h"
#include "formats/little_endian.h"
#include "formats/read_file.h"

namespace vexa::formats {
namespace {

// The file, little-endian and without padding:
//
//   uint32          version, 101
//   uint32          takes
//   double[16]      global transformation
//   uint32[takes]   frames of each take
//   uint32          nodes
//   per node        double[16] per frame: the frames of take 0, then those of take 1, ...
//                   uint32 links, then per link uint32 vertex and double weight
//
// Every count comes before what it counts, so a reader can check it against the bytes that are
// left.
constexpr std::uint32_t kVersion = 101;
constexpr std::uint64_t kCountBytes = 4, kLinkBytes = 12;

// Values one after the other, without padding.
class Writer {
 public:
  template <class T>
  void put(const T& value) {
    // Through a buffer of bytes: the text has no alignment that T could rely on.
    char bytes[sizeof(T)];
    const T ordered = littleEndian(value);
    std::memcpy(bytes, &ordered, sizeof(T));
    mBytes.append(bytes, sizeof(T));
  }
  void putCount(std::size_t count, const char* what) {
    if (count > std::numeric_limits<std::uint32_t>::max()) {
      throw std::invalid_argument(std::string("animation file: too many ") + what);
    }
    put(static_cast<std::uint32_t>(count));
  }
  std::string take() { return std::move(mBytes); }

 private:
  std::string mBytes;
};

std::uint64_t matricesPerNode(const std::vector<std::uint32_t>& frameCounts) {
  return std::accumulate(frameCounts.begin(), frameCounts.end(), std::uint64_t{0});
}

void checkMatrices(std::size_t node, std::uint64_t has, std::uint64_t wanted) {
  if (has == wanted) return;
  throw std::invalid_argument("animation file: node " + std::to_string(node) + " has " +
                              std::to_string(has) + " matrices, not " + std::to_string(wanted));
}

void putNode(Writer& ioWriter, const AnimationFile::Node& node) {
  for (const AnimationFile::Matrix& matrix : node.mMatrices) ioWriter.put(matrix);
  ioWriter.putCount(node.mLinks.size(), "links");
  for (const AnimationFile::Link& link : node.mLinks) {
    ioWriter.put(link.mVertex);
    ioWriter.put(link.mWeight);
  }
}

// Where the bytes come from: a text in memory or a file.
class Source {
 public:
  explicit Source(const std::string& bytes) : mBytes(&bytes), mSize(bytes.size()) {}
  explicit Source(FileReader& file) : mFile(&file), mSize(file.size()) {}

  std::uint64_t size() const { return mSize; }
  // A file is read front to back, so its own position is `offset`.
  bool read(std::uint64_t offset, void* outBytes, std::size_t count) {
    if (mFile != nullptr) return mFile->read(outBytes, count) == count;
    std::memcpy(outBytes, mBytes->data() + offset, count);
    return true;
  }

 private:
  const std::string* mBytes = nullptr;
  FileReader* mFile = nullptr;
  std::uint64_t mSize;
};

// The same values back; every one has to be there.
class Reader {
 public:
  // mOffset never passes the size of the source: require() runs before every read.
  explicit Reader(Source source) : mSource(source) {}

  template <class T>
  T get(const char* what) {
    require(1, sizeof(T), what);
    T value{};
    if (!mSource.read(mOffset, &value, sizeof(T))) failForEnd(what);
    mOffset += sizeof(T);
    return littleEndian(value);
  }
  // A count of elements that need at least that many bytes each.
  std::uint32_t getCount(std::uint64_t bytesEach, const char* what) {
    const auto count = get<std::uint32_t>(what);
    // A false count must fail here, before anything grows by it.
    require(count, bytesEach, what);
    return count;
  }
  // Divides, because count * bytesEach can exceed 64 bits.
  void require(std::uint64_t count, std::uint64_t bytesEach, const char* what) const {
    if (count > (mSource.size() - mOffset) / bytesEach) failForEnd(what);
  }
  [[noreturn]] void fail(const std::string& text) const {
    throw std::runtime_error("animation file, byte " + std::to_string(mOffset) + ": " + text);
  }
  [[noreturn]] void failForEnd(const char* what) const {
    fail(std::string("the file ends inside ") + what);
  }
  bool atEnd() const { return mOffset == mSource.size(); }

 private:
  Source mSource;
  std::uint64_t mOffset = 0;
};

AnimationFile::Node getNode(Reader& ioReader, std::uint64_t matrices) {
  AnimationFile::Node node;
  ioReader.require(matrices, sizeof(AnimationFile::Matrix), "the matrices of a node");
  for (std::uint64_t i = 0; i < matrices; ++i) {
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

namespace {

// Gives the bytes to `put` piece by piece, so that only one node is in memory twice. Matrices are
// counted before the first piece.
template <class Put>
void encode(const AnimationFile& file, Put put) {
  const std::uint64_t matrices = matricesPerNode(file.mFrameCounts);
  for (std::size_t n = 0; n < file.mNodes.size(); ++n) {
    checkMatrices(n, file.mNodes[n].mMatrices.size(), matrices);
  }
  Writer header;
  header.put(kVersion);
  header.putCount(file.mFrameCounts.size(), "takes");
  header.put(file.mGlobal);
  for (const std::uint32_t frames : file.mFrameCounts) header.put(frames);
  header.putCount(file.mNodes.size(), "nodes");
  put(header.take());
  for (const AnimationFile::Node& node : file.mNodes) {
    Writer writer;
    putNode(writer, node);
    put(writer.take());
  }
}

}  // namespace

std::string encodeAnimationFile(const AnimationFile& file) {
  std::string bytes;
  encode(file, [&bytes](const std::string& piece) { bytes += piece; });
  return bytes;
}

void writeAnimationFile(const AnimationFile& file, const std::string& path) {
  TemporaryFile target(path);
  encode(file, [&target](const std::string& piece) { target.file().write(piece); });
  target.commit();
}

namespace {

AnimationFile decode(Reader reader) {
  // Without nodes a file has no matrices, so its frame counts may be any numbers; getNode checks
  // their sum otherwise.
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

}  // namespace

AnimationFile decodeAnimationFile(const std::string& bytes) {
  return decode(Reader(Source(bytes)));
}

AnimationFile readAnimationFile(const std::string& path) {
  FileReader file(path);
  try {
    return decode(Reader(Source(file)));
  } catch (const std::runtime_error& error) {
    // Errors of reading name the path already, errors of decoding do not.
    const std::string text = error.what();
    const bool hasPath = text.compare(0, path.size() + 2, path + ": ") == 0;
    throw std::runtime_error(hasPath ? text : path + ": " + text);
  }
}

}  // namespace vexa::formats
