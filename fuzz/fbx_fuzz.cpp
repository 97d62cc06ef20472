// FBX 7, binary or text: the reader with its curves, then all that an import does with the model.
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>

#include "importer/fbx_reader_internal.h"
#include "importer/model_import.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  vexa::importer::ImportOptions options;
  // A few bytes may state a long clip; baking it would show nothing new.
  options.mLargestAnimation = 1 << 20;
  try {
    vexa::importer::importModel(vexa::importer::readFbx(bytes), options);
  } catch (const std::exception&) {
  }
  return 0;
}
