// What the reading child of an import sends: the message, the model in it, and all that an import
// does with that model.
#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

#include "formats/Descriptor.h"
#include "fuzz/scratch_folder.h"
#include "importer/child_result_internal.h"
#include "importer/model_bytes_internal.h"
#include "importer/model_import.h"

namespace {

constexpr std::size_t kLongest = 1 << 20;

// A file in the place of the pipe, whose other end is closed.
std::optional<std::string> received(const std::uint8_t* data, std::size_t size) {
  const vexa::formats::Descriptor pipe(memfd_create("message", MFD_CLOEXEC));
  vexa::fuzz::require(vexa::formats::writeAll(pipe.get(), data, size));
  lseek(pipe.get(), 0, SEEK_SET);
  vexa::importer::ChildLimits limits;
  limits.mResultBytes = kLongest;
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  return vexa::importer::receiveResult(pipe.get(), deadline, limits);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  vexa::importer::ImportOptions options;
  options.mLargestAnimation = kLongest;
  try {
    const auto bytes = received(data, size);
    if (!bytes) return 0;
    const auto model = vexa::importer::unpackModel(*bytes);
    vexa::fuzz::require(vexa::importer::packModel(model).size() == bytes->size());
    vexa::importer::importModel(model, options);
  } catch (const std::runtime_error&) {
  }
  return 0;
}
