#pragma once

#include <memory>
#include <string>

#include "vexa/animation/XIAnimationMgr.h"

namespace vexa::tests {

/// Ends a manager with its test.
struct DestroyManager {
  void operator()(Norvel::Vexa::XIAnimationMgr* manager) const {
    Norvel::Vexa::XIAnimationMgr::Destroy(manager);
  }
};
using Manager = std::unique_ptr<Norvel::Vexa::XIAnimationMgr, DestroyManager>;

inline Manager makeManager() { return Manager(Norvel::Vexa::XIAnimationMgr::Create()); }

/// The text of the exception that an entry point of the manager printed as its one line.
inline std::string caughtText(const std::string& line, const std::string& operation) {
  const std::string before = operation + " - Caught an exception \"";
  const std::size_t end = line.find("\"\n");
  if (line.rfind(before, 0) != 0 || end + 2 != line.size()) return "unexpected: " + line;
  return line.substr(before.size(), end - before.size());
}

}  // namespace vexa::tests
