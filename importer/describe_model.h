#pragma once

#include <string>

#include "formats/JsonTree.h"

namespace vexa::importer {

/// Whether a file is a model, by the ending of its name: glTF, FBX and what libassimp knows, but
/// not OBJ, which is also a format of rest meshes.
bool isModelFile(const std::string& file);

/// Facts about a model file, in an order that a person would read them in. "notes" says what an
/// import would leave out or repair, "faults" why it would be refused.
///
/// Throws std::runtime_error "FILE: what is wrong" for a file that cannot be read.
formats::JsonTree describeModel(const std::string& file);

}  // namespace vexa::importer
