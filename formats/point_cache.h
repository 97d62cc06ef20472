#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "formats/Descriptor.h"
#include "formats/MovingMesh.h"
#include "formats/NewFile.h"

namespace vexa::formats {

/// A point cache: the points of one mesh at many frames, in the PC2 form that modelling programs
/// read. Little-endian: "POINTCACHE2" and a zero byte, int32 1, int32 points, float first frame,
/// float step, int32 samples, then three floats per point and sample.
struct PointCacheHeader {
  std::int32_t mPoints = 0;
  float mFirstFrame = 0;
  float mStep = 1;
  std::int32_t mSamples = 0;
};

/// Writes a point cache while its frames come, in any order and from several threads at a time.
class PointCacheWriter {
 public:
  /// Throws std::runtime_error "PATH: what is wrong", also for more points or samples than the
  /// format can count.
  PointCacheWriter(const std::string& path, const std::string& shownName, std::size_t points,
                   float firstFrame, float step, std::size_t samples);

  /// Each sample once. Throws std::runtime_error.
  void write(std::size_t sample, const MovingMesh::Points& points);
  /// To be called once, after all samples.
  void close() { mFile.close(); }

 private:
  NewFile mFile;
  std::size_t mPoints;
};

/// Reads the samples of a point cache one by one.
class PointCacheReader {
 public:
  /// Throws std::runtime_error "PATH: what is wrong": no point cache, or not of the length that its
  /// header states.
  explicit PointCacheReader(const std::string& path);

  const PointCacheHeader& header() const { return mHeader; }
  void read(std::size_t sample, MovingMesh::Points& outPoints) const;

 private:
  std::string mPath;
  Descriptor mFile;
  PointCacheHeader mHeader;
};

}  // namespace vexa::formats
