#include "vexa/paths/path_cache_internal.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <utility>

#include "vexa/support/UxThrow.h"

namespace Norvel::Vexa {

namespace {

// Scenes have a few dozen paths. The limits only bound what a host can make the cache keep.
constexpr std::size_t kMostPaths = 256;
constexpr std::size_t kMostPoints = 65536;  // about 16 MB of points and tables

using V3 = UXS::uxs_generic_vec3<float>;
using PointList = UxZel::TZelObjectMgr<UxZel::IZelBezierPoint>;

const UxZel::IZelBezierPoint& pointAt(const PointList& points, unsigned int index,
                                      const char* missingPoint) {
  const UxZel::IZelBezierPoint* point = points.GetAt(int(index));
  if (point == nullptr) UxThrow::SignalNULL(missingPoint);
  return *point;
}

}  // namespace

// The points that were read, as a Bezier path wants them.
class PathCache::ReadPoints final : public XTPathInfo<V3, V3, float> {
 public:
  explicit ReadPoints(std::vector<PointReads> reads) : mReads(std::move(reads)) {}

  bool PointsMgrExist() const override { return true; }
  unsigned int getNbBezierPoints() const override { return unsigned(mReads.size()); }
  V3 getPassagePointPositionAt(unsigned int i) const override {
    const UxZel::CZelPoint& p = mReads[i].mPassage;
    return {float(p.x), float(p.y), float(p.z)};
  }
  V3 getBeforeControlPointAt(unsigned int i) const override {
    return control(mReads[i].mBeforePassage, mReads[i].mBefore);
  }
  V3 getAfterControlPointAt(unsigned int i) const override {
    return control(mReads[i].mAfterPassage, mReads[i].mAfter);
  }
  // Building a path asks for nothing below.
  V3 getToBeforeCtrlPtAt(unsigned int /*index*/) const override { return {}; }
  V3 getToAfterCtrlPtAt(unsigned int /*index*/) const override { return {}; }
  float getAfterControlPointWeightAt(unsigned int /*index*/) const override { return 0; }
  float getBeforeControlPointWeightAt(unsigned int /*index*/) const override { return 0; }
  bool getTangentLockedAt(unsigned int /*index*/) const override { return false; }
  bool getPathClosed() const override { return false; }

  const std::vector<PointReads> mReads;

 private:
  // As XCBezierPointTool, then narrowed.
  static V3 control(const UxZel::CZelPoint& p, const UxZel::CZelVector& offset) {
    return {float(p.x + offset.x), float(p.y + offset.y), float(p.z + offset.z)};
  }
};

// A path with the points that it was built from. mPath borrows mPoints, so an entry never moves.
struct PathCache::Entry {
  explicit Entry(const std::vector<PointReads>& reads) : mPoints(reads), mPath(&mPoints) {
    mPath.createBezierCurve();
  }

  // By bytes: 0.0 and -0.0 differ and a NaN equals itself, so an equal entry gives equal results.
  bool isOf(const std::vector<PointReads>& reads) const {
    if (mPoints.mReads.size() != reads.size()) return false;
    return reads.empty() ||
           std::memcmp(mPoints.mReads.data(), reads.data(), reads.size() * sizeof(PointReads)) == 0;
  }
  std::size_t pointCount() const { return mPoints.mReads.size(); }

  const ReadPoints mPoints;
  BezierPath mPath;
  std::uint64_t mLastRequest = 0;
};

PathCache::PathCache() = default;

PathCache::~PathCache() = default;

std::shared_ptr<const BezierPath> PathCache::pathOf(const UxZel::IZel3DPath* host) {
  const PointList* points = host != nullptr ? host->GetBezierPoints() : nullptr;
  if (points == nullptr) throw std::runtime_error("XC3DPath::XC3DPath - probleme path ! ");
  // Taken out of the cache: an operation of the host may itself ask the manager for something.
  std::vector<PointReads> reads = std::move(mReads);
  read(*points, reads);
  std::shared_ptr<Entry> entry = entryOf(host, reads);
  mReads = std::move(reads);
  // The result shares the entry: it stays when the cache drops it during the call.
  BezierPath* const path = &entry->mPath;
  return {entry, path};
}

std::shared_ptr<PathCache::Entry> PathCache::entryOf(const UxZel::IZel3DPath* host,
                                                     const std::vector<PointReads>& reads) {
  ++mRequests;
  const auto known = mEntries.find(host);
  if (known != mEntries.end() && known->second->isOf(reads)) {
    known->second->mLastRequest = mRequests;
    return known->second;
  }
  // Built before the old entry goes: a fault leaves the cache as it was.
  auto built = std::make_shared<Entry>(reads);
  built->mLastRequest = mRequests;
  if (known != mEntries.end()) {
    mPointCount -= known->second->pointCount();
    known->second = built;
  } else {
    mEntries.emplace(host, built);
  }
  mPointCount += built->pointCount();
  makeRoom();
  return built;
}

// The calls of XTBezierPath::createBezierCurve on the host. A path of fewer than two points has no
// segment, and none of its points is read.
void PathCache::read(const PointList& points, std::vector<PointReads>& outReads) {
  const int count = points.GetCount();
  const std::size_t used = count > 1 ? std::size_t(count) : 0;
  for (unsigned int i = 0; i < used; ++i) {
    // Memory comes with the points that are there: a host may count more than it has.
    if (i == outReads.size()) outReads.emplace_back();
    PointReads& reads = outReads[i];
    reads.mPassage =
        *pointAt(points, i, "XCZELPathAgent::getPassagePointPositionAt : can not get BezierPoint")
             .GetPassagePoint();
    if (i == 0) {
      reads.mBefore = {};
      reads.mBeforePassage = {};
    } else {
      const UxZel::IZelBezierPoint& point =
          pointAt(points, i, "XCZELPathAgent::getBeforeControlPointAt : can not get BezierPoint");
      reads.mBefore = *point.GetBeforeControlOffset();
      reads.mBeforePassage = *point.GetPassagePoint();
    }
    const UxZel::IZelBezierPoint& point =
        pointAt(points, i, "XCZELPathAgent::getAfterControlPointAt : can not get BezierPoint");
    reads.mAfter = *point.GetAfterControlOffset();
    reads.mAfterPassage = *point.GetPassagePoint();
  }
  outReads.resize(used);
}

// The entry of the request that runs is never the oldest.
void PathCache::makeRoom() {
  while (mEntries.size() > 1 && (mEntries.size() > kMostPaths || mPointCount > kMostPoints)) {
    const auto oldest =
        std::min_element(mEntries.begin(), mEntries.end(), [](const auto& a, const auto& b) {
          return a.second->mLastRequest < b.second->mLastRequest;
        });
    mPointCount -= oldest->second->pointCount();
    mEntries.erase(oldest);
  }
}

}  // namespace Norvel::Vexa
