#pragma once

#include <string>

#include "assets/SourceModel.h"

namespace vexa::assets {

/// Reads a model with libassimp, in this process: it may abort on a malformed file, so it is only
/// called in a child (see readModel). Throws std::runtime_error with the reader's reason.
SourceModel readWithAssimp(const std::string& file);

}  // namespace vexa::assets
