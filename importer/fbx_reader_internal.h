#pragma once

#include <string>

#include "importer/SourceModel.h"

namespace vexa::importer {

/// Reads FBX 7, binary or text. Runs in a child (see readModel); the bytes are not trusted. Throws
/// std::runtime_error with the reason.
SourceModel readFbx(const std::string& bytes);

}  // namespace vexa::importer
