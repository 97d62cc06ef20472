#pragma once

#include <string>

namespace vexa::importer {

/// Why a file without clips does have an animation, or "": libassimp reads the first frame alone of
/// formats that store every vertex anew for each frame, and no animation of IQM files.
std::string unreadAnimation(const std::string& file);

}  // namespace vexa::importer
