#include "formats/point_cache.h"

#include <cerrno>
#include <cmath>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

#include "formats/file_error.h"

#if __BYTE_ORDER__ != __ORDER_LITTLE_ENDIAN__
#error "point caches are written on little-endian machines only"
#endif

namespace vexa::formats {
namespace {

// Offsets in the file, whose frames all have one length, so each can be read by itself:
//
//    0  "POINTCACHE2" and a zero byte
//   12  int32 version, 1
//   16  the four numbers of PointCacheHeader
//   32  per sample and point: float x, y, z
constexpr char kMark[12] = "POINTCACHE2";
constexpr std::size_t kHeaderSize = 32;
using Point3 = Oru::TVector3D<float>;
static_assert(sizeof(Point3) == 12, "three floats and nothing else");
static_assert(sizeof(PointCacheHeader) == 16, "written as it is");

std::size_t offsetOf(std::size_t sample, std::size_t points) {
  return kHeaderSize + sample * points * sizeof(Point3);
}

[[noreturn]] void fail(const std::string& path, const std::string& fault) {
  throw std::runtime_error(path + ": " + fault);
}

std::int32_t countOf(std::size_t count, const std::string& name) {
  if (count > std::size_t(std::numeric_limits<std::int32_t>::max())) {
    fail(name, "more than a point cache can count");
  }
  return std::int32_t(count);
}

void readAt(int file, std::size_t offset, void* out, std::size_t count, const std::string& path) {
  char* to = static_cast<char*>(out);
  while (count > 0) {
    const ssize_t got = pread(file, to, count, off_t(offset));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) failForFile(path);
    if (got == 0) fail(path, "ends too early");
    to += got;
    offset += std::size_t(got);
    count -= std::size_t(got);
  }
}

}  // namespace

PointCacheWriter::PointCacheWriter(const std::string& path, const std::string& shownName,
                                   std::size_t points, float firstFrame, float step,
                                   std::size_t samples)
    : mFile(path, shownName), mPoints(points) {
  const PointCacheHeader header{countOf(points, shownName), firstFrame, step,
                                countOf(samples, shownName)};
  const std::int32_t version = 1;
  char bytes[kHeaderSize];
  std::memcpy(bytes, kMark, 12);
  std::memcpy(bytes + 12, &version, 4);
  std::memcpy(bytes + 16, &header, 16);
  mFile.writeAt(0, bytes, kHeaderSize);
}

void PointCacheWriter::write(std::size_t sample, const MovingMesh::Points& points) {
  if (points.size() != mPoints) throw std::invalid_argument("a mesh changed its number of points");
  mFile.writeAt(offsetOf(sample, mPoints), points.data(), points.size() * sizeof(Point3));
}

PointCacheReader::PointCacheReader(const std::string& path)
    : mPath(path), mFile(openFile(path, O_RDONLY | O_CLOEXEC)) {
  if (!mFile.isOpen()) failForFile(path);
  char bytes[kHeaderSize];
  readAt(mFile.get(), 0, bytes, kHeaderSize, path);
  std::int32_t version = 0;
  std::memcpy(&version, bytes + 12, 4);
  std::memcpy(&mHeader, bytes + 16, 16);
  const bool isCache = std::memcmp(bytes, kMark, 12) == 0 && version == 1;
  if (!isCache || mHeader.mPoints < 0 || mHeader.mSamples < 0) fail(path, "not a point cache");
  struct stat status {};
  if (fstat(mFile.get(), &status) != 0) failForFile(path);
  const std::size_t size = offsetOf(std::size_t(mHeader.mSamples), std::size_t(mHeader.mPoints));
  if (std::size_t(status.st_size) != size) fail(path, "is not as long as its header states");
}

void PointCacheReader::read(std::size_t sample, MovingMesh::Points& outPoints) const {
  outPoints.resize(std::size_t(mHeader.mPoints));
  readAt(mFile.get(), offsetOf(sample, outPoints.size()), outPoints.data(),
         outPoints.size() * sizeof(Point3), mPath);
}

}  // namespace vexa::formats
