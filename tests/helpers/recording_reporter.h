#pragma once

#include <string>
#include <vector>

#include "vexa/support/XIReporter.h"

namespace vexa::tests {

/// Keeps what it is told, each message as "TYPE TEXT" with the type's number.
struct RecordingReporter : Norvel::XIReporter {
  std::vector<std::string> lines;

  void ReportMsg(EMsgType type, const char* text) override {
    lines.push_back(std::to_string(static_cast<int>(type)) + " " + text);
  }
};

}  // namespace vexa::tests
