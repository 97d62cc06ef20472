#pragma once

#include <string>

#include "importer/SourceModel.h"
#include "importer/child_process.h"

namespace vexa::importer {

/// Reads a model file in a child process with limits: glTF 2.0, FBX 7, and any format that
/// libassimp knows. `ticksPerSecond`, if not 0, replaces what a file says that counts ticks.
///
/// Throws std::runtime_error with one line that does not repeat the file's name: the file cannot be
/// opened or is no regular file, no known format, the reason that the format's reader gives, or how
/// the child ended.
SourceModel readModel(const std::string& file, const ChildLimits& limits = {},
                      double ticksPerSecond = 0);

}  // namespace vexa::importer
