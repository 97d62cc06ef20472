#pragma once

#include <string>

#include "importer/SourceModel.h"
#include "importer/child_process.h"

namespace vexa::importer {

/// Reads a model file of any format that libassimp knows, in a child process with limits.
///
/// Throws std::runtime_error with one line that does not repeat the file's name: the file cannot be
/// opened or is no regular file, no known format, the reason that the format's reader gives, or how
/// the child ended.
SourceModel readModel(const std::string& file, const ChildLimits& limits = {});

}  // namespace vexa::importer
