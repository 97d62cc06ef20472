#pragma once

#include <string>

#include "formats/JsonTree.h"

namespace vexa::scene {

/// Facts about a file, in an order that a person would read them in. "notes" and "faults" are lists
/// of texts; a file without faults can be used as it is.
using Description = formats::JsonTree;

/// An animation file (.amo), a scene (.json) or a mesh (.obj), recognised by the name's ending;
/// anything else is read as an animation file. Throws std::runtime_error "FILE: what is wrong" for
/// a file that cannot be read.
Description describeFile(const std::string& file);

}  // namespace vexa::scene
