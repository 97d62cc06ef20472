#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "importer/child_process.h"

namespace vexa::importer {

/// What a child sends through its pipe, which need not be trusted: the result, or none when the
/// pipe ends before it does. Throws std::runtime_error with the child's error as one line, and when
/// the result is too long or does not come in time.
std::optional<std::string> receiveResult(int fd, std::chrono::steady_clock::time_point deadline,
                                         const ChildLimits& limits);

}  // namespace vexa::importer
