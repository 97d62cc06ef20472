#pragma once

#include <string>

namespace vexa::formats {

/// All bytes of a regular file. Throws std::runtime_error "PATH: what is wrong".
std::string readFile(const std::string& path);

}  // namespace vexa::formats
