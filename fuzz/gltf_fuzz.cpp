// glTF 2.0, text or binary: the reader, then all that an import does with the model.
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>

#include "importer/gltf_reader_internal.h"
#include "importer/model_import.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  if (!vexa::importer::isGltf2(bytes)) return 0;
  vexa::importer::ImportOptions options;
  // A few bytes may state a long clip; baking it would show nothing new.
  options.mLargestAnimation = 1 << 20;
  try {
    vexa::importer::importModel(vexa::importer::readGltf(bytes, "/nonexistent/"), options);
  } catch (const std::exception&) {
  }
  return 0;
}
