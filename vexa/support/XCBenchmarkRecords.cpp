#include "vexa/support/XCBenchmarkRecords.h"

#include <memory>

namespace Norvel {

std::map<std::string, XCBenchmarkRecords::sBenchmark*>* XCBenchmarkRecords::mSyngloton = nullptr;

XCBenchmarkRecords::sBenchmark& XCBenchmarkRecords::make(const std::string& name) {
  if (sBenchmark* const known = find(name)) return *known;
  // The map takes the raw pointer only once the node exists, so nothing leaks when memory runs out.
  auto record = std::make_unique<sBenchmark>();
  records().emplace(name, record.get());
  return *record.release();
}

XCBenchmarkRecords::sBenchmark* XCBenchmarkRecords::find(const std::string& name) {
  const auto found = records().find(name);
  return found != records().end() ? found->second : nullptr;
}

void XCBenchmarkRecords::erase(const std::string& name) {
  const auto found = records().find(name);
  if (found == records().end()) return;
  delete found->second;
  records().erase(found);
}

std::map<std::string, XCBenchmarkRecords::sBenchmark*>& XCBenchmarkRecords::records() {
  if (mSyngloton == nullptr) mSyngloton = new std::map<std::string, sBenchmark*>;
  return *mSyngloton;
}

}  // namespace Norvel
