#include "importer/model_reader.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <stdexcept>
#include <sys/stat.h>

#include "importer/assimp_reader_internal.h"
#include "importer/model_bytes_internal.h"

namespace vexa::importer {

namespace {

// Devices and pipes could keep the reader waiting for ever.
void checkIsReadableFile(const std::string& file) {
  struct stat status {};
  if (stat(file.c_str(), &status) != 0) throw std::runtime_error(std::strerror(errno));
  if (S_ISDIR(status.st_mode)) throw std::runtime_error("is a directory");
  if (!S_ISREG(status.st_mode)) throw std::runtime_error("is not a regular file");
  if (!std::ifstream(file)) throw std::runtime_error(std::strerror(errno));
  if (status.st_size == 0) throw std::runtime_error("is empty");
}

}  // namespace

SourceModel readModel(const std::string& file, const ChildLimits& limits) {
  checkIsReadableFile(file);
  std::string bytes;
  try {
    bytes = runInChild([&] { return packModel(readWithAssimp(file)); }, limits);
  } catch (const std::runtime_error& e) {
    throw std::runtime_error(std::string("the model cannot be read: ") + e.what());
  }
  return unpackModel(bytes);
}

}  // namespace vexa::importer
