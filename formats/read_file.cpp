#include "formats/read_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <system_error>

namespace vexa::formats {
namespace {

[[noreturn]] void fail(const std::string& path) {
  throw std::runtime_error(path + ": " + std::strerror(errno));
}

}  // namespace

std::string readFile(const std::string& path) {
  // A device may have no end, a pipe no writer.
  std::error_code ignored;
  const std::filesystem::file_status status = std::filesystem::status(path, ignored);
  const bool isOdd = std::filesystem::exists(status) && !std::filesystem::is_regular_file(status);
  if (isOdd && !std::filesystem::is_directory(status)) {
    throw std::runtime_error(path + ": is no regular file");
  }
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                             std::fclose);
  if (!file) fail(path);
  std::string bytes;
  char block[1 << 16];
  while (const std::size_t count = std::fread(block, 1, sizeof(block), file.get())) {
    bytes.append(block, count);
  }
  if (std::ferror(file.get()) != 0) fail(path);
  return bytes;
}

}  // namespace vexa::formats
