#pragma once

#include <string>

namespace vexa::importer {

/// A glTF file without the "indices" of primitives that Draco has compressed: they have no bytes of
/// their own, which tinygltf takes for a fault. Other files come back as they are.
std::string withoutCompressedIndices(const std::string& bytes);

}  // namespace vexa::importer
