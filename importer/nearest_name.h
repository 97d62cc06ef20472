#pragma once

#include <string>
#include <vector>

namespace vexa::importer {

/// The name that differs from another in the fewest letters, upper and lower case alike: what was
/// probably meant. Empty when none is near.
std::string nearestName(const std::string& name, const std::vector<std::string>& names);

}  // namespace vexa::importer
