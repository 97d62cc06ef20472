#pragma once

#include <string>

#include "importer/SourceModel.h"

namespace vexa::importer {

/// Reads a model with libassimp, in this process: it may abort on a malformed file, so it is only
/// called in a child (see readModel). `ticksPerSecond` replaces what the file says unless it is 0.
/// Throws std::runtime_error with the reader's reason.
SourceModel readWithAssimp(const std::string& file, double ticksPerSecond);

/// Whether libassimp reads files of an ending, which comes without a dot.
bool isKnownToAssimp(const std::string& ending);

}  // namespace vexa::importer
