// Two FBX files, one after the other with a line "----" between them: clips of the second move the
// first.
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>

#include "importer/fbx_reader_internal.h"
#include "importer/model_check.h"
#include "importer/model_import.h"
#include "importer/model_motion.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  const std::size_t line = bytes.find("\n----\n");
  if (line == std::string::npos) return 0;
  vexa::importer::ImportOptions options;
  options.mLargestAnimation = 1 << 20;
  try {
    auto model = vexa::importer::readFbx(bytes.substr(0, line));
    auto motion = vexa::importer::readFbx(bytes.substr(line + 6));
    vexa::importer::checkModel(model);
    vexa::importer::checkModel(motion);
    vexa::importer::addMotion(motion, "clips.fbx", model);
    vexa::importer::importModel(std::move(model), options);
  } catch (const std::exception&) {
  }
  return 0;
}
