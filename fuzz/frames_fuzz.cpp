// The text after --frames: frames that rise from 0 on, at most a million, or the one kind of error.
#include <CLI/CLI.hpp>
#include <cstddef>
#include <cstdint>
#include <string>

#include "cli/frames.h"
#include "fuzz/scratch_folder.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using vexa::fuzz::require;
  try {
    const auto frames =
        vexa::cli::parseFrames(std::string(reinterpret_cast<const char*>(data), size));
    require(!frames.empty() && frames.size() <= 1'000'000 && frames[0] >= 0);
    for (std::size_t i = 1; i < frames.size(); ++i) {
      require(frames[i] - frames[i - 1] == frames[1] - frames[0] && frames[i] > frames[i - 1]);
    }
  } catch (const CLI::ValidationError&) {
  }
  return 0;
}
