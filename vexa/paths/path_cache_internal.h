#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "vexa/host/IZel3DPath.h"
#include "vexa/paths/path_position_internal.h"

namespace Norvel::Vexa {

// The Bezier paths that were built last, so that a path that has not changed is not built again.
//
// Every request reads all points of the host path, by the calls that building it anew makes, in
// their order. The Bezier path is kept while all that was read has the same bits; the address of
// the host path only says which kept path to compare with. At most 256 paths and 65,536 points are
// kept, or one path that is longer; the ones used longest ago go first.
class PathCache {
 public:
  PathCache();
  ~PathCache();

  // What XC3DPath would build now. Throws what XC3DPath throws.
  std::shared_ptr<const BezierPath> pathOf(const UxZel::IZel3DPath* host);

 private:
  // What the host returns for one point: the passage point is asked for with each control point
  // again, and may differ.
  struct PointReads {
    UxZel::CZelPoint mPassage, mBeforePassage, mAfterPassage;
    UxZel::CZelVector mBefore, mAfter;
  };
  class ReadPoints;
  struct Entry;

  static void read(const UxZel::TZelObjectMgr<UxZel::IZelBezierPoint>& points,
                   std::vector<PointReads>& outReads);
  std::shared_ptr<Entry> entryOf(const UxZel::IZel3DPath* host,
                                 const std::vector<PointReads>& reads);
  void makeRoom();

  std::vector<PointReads> mReads;  // memory for the next request
  std::unordered_map<const UxZel::IZel3DPath*, std::shared_ptr<Entry>> mEntries;
  std::size_t mPointCount = 0;  // of all entries
  std::uint64_t mRequests = 0;
};

}  // namespace Norvel::Vexa
