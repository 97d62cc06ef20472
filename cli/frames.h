#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace vexa::cli {

/// The frames that "A:B" or "A:B:STEP" names, both ends included; "A" is one frame.
///
/// Throws CLI::ValidationError for another text, a range that runs backwards or starts below 0, a
/// step below 1, or more than a million frames.
std::vector<int> parseFrames(const std::string& text);

/// Adds the option --frames, whose text goes to parseFrames().
void addFramesOption(CLI::App& command, std::string& outText);

}  // namespace vexa::cli
