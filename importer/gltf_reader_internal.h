#pragma once

#include <string>

#include "importer/SourceModel.h"

namespace vexa::importer {

/// Whether the bytes of a file are glTF 2.0, as text or binary.
bool isGltf2(const std::string& bytes);

/// Reads glTF 2.0. `folder` holds the files that it names. Runs in a child (see readModel): the
/// bytes are not trusted, and neither is the library that parses them. Throws std::runtime_error
/// with the reason.
SourceModel readGltf(const std::string& bytes, const std::string& folder);

}  // namespace vexa::importer
