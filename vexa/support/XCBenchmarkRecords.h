#pragma once

#include <map>
#include <string>
#include <vector>

#include "vexa/Export.h"

namespace Norvel {

/// The timings that XCReporter takes, by name. Not for several threads.
class VEXA_EXPORT XCBenchmarkRecords {
 public:
  struct sBenchmark {
    std::vector<std::string> labels;
    /// Seconds: elapsed for a finished timing, time of day for a running one.
    std::vector<double> times;
  };

  /// The record of that name, empty at first; owned by the map.
  static sBenchmark& make(const std::string& name);
  /// Null for an unknown name.
  static sBenchmark* find(const std::string& name);
  static void erase(const std::string& name);

 private:
  static std::map<std::string, sBenchmark*>& records();

  // Made on first use; never freed, so that it outlives every user.
  static std::map<std::string, sBenchmark*>* mSyngloton;
};

}  // namespace Norvel
