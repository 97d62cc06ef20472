#pragma once

#include <string>

namespace vexa::formats {

/// Writes a whole file, or leaves a former one unchanged: the bytes go to a temporary name beside
/// the target, which is then renamed.
///
/// Throws std::runtime_error "PATH: what is wrong"; no temporary file stays behind.
void writeFile(const std::string& path, const std::string& bytes);

}  // namespace vexa::formats
