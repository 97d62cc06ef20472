#pragma once

#include <cerrno>
#include <stdexcept>
#include <string>
#include <system_error>

namespace vexa::formats {

/// Throws std::runtime_error "PATH: the system's text", of errno unless told otherwise.
[[noreturn]] inline void failForFile(const std::string& path, int error = errno) {
  throw std::runtime_error(path + ": " + std::generic_category().message(error));
}

}  // namespace vexa::formats
