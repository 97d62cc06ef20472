#include "cli/frames.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <limits>

namespace vexa::cli {
namespace {

// More is most likely a slip, and the list itself is kept in memory. 64-bit numbers below: the sum
// behind the last step may exceed an int.
constexpr long long kMostFrames = 1'000'000;

// A whole number from 0 up to the end of the text.
long long number(const std::string& text, const std::string& whole) {
  long long value = -1;
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, value);
  const bool fits = value >= 0 && value <= std::numeric_limits<int>::max();
  if (result.ec != std::errc() || result.ptr != end || !fits) {
    throw CLI::ValidationError("--frames", "\"" + whole + "\": expected A, A:B or A:B:STEP");
  }
  return value;
}

}  // namespace

std::vector<int> parseFrames(const std::string& text) {
  std::vector<std::string> pieces(1);
  for (const char c : text) {
    if (c == ':')
      pieces.emplace_back();
    else
      pieces.back() += c;
  }
  if (pieces.size() > 3) {
    throw CLI::ValidationError("--frames", "\"" + text + "\": expected A, A:B or A:B:STEP");
  }
  const long long first = number(pieces[0], text);
  const long long last = pieces.size() > 1 ? number(pieces[1], text) : first;
  const long long step = pieces.size() > 2 ? number(pieces[2], text) : 1;
  // A slip, most likely; an empty list would mean all frames.
  if (last < first) throw CLI::ValidationError("--frames", "\"" + text + "\" runs backwards");
  if (step < 1) throw CLI::ValidationError("--frames", "\"" + text + "\": the step is 0");
  if ((last - first) / step >= kMostFrames) {
    throw CLI::ValidationError("--frames", "\"" + text + "\": more than a million frames");
  }
  std::vector<int> frames;
  for (long long frame = first; frame <= last; frame += step) {
    frames.push_back(static_cast<int>(frame));
  }
  return frames;
}

void addFramesOption(CLI::App& command, std::string& outText) {
  command.add_option("--frames", outText,
                     "A, A:B or A:B:STEP, both ends included; all up to the last key when missing");
}

}  // namespace vexa::cli
