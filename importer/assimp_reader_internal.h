#pragma once

#include <string>

#include "importer/SourceModel.h"

namespace vexa::importer {

/// Reads a model with libassimp, in this process: it may abort on a malformed file, so it is only
/// called in a child (see readModel). Throws std::runtime_error with the reader's reason.
SourceModel readWithAssimp(const std::string& file);

}  // namespace vexa::importer
