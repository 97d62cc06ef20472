#include "formats/TemporaryFile.h"

#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>

#include "formats/file_error.h"

namespace vexa::formats {

void requireReplaceable(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return;
  if (S_ISDIR(status.st_mode)) failForFile(path, EISDIR);
  if (!S_ISREG(status.st_mode)) throw std::runtime_error(path + ": is no regular file");
}

TemporaryFile::TemporaryFile(std::string target) : mTarget(std::move(target)) {
  requireReplaceable(mTarget);
  const std::string folder = std::filesystem::path(mTarget).parent_path().string();
  const Uninterrupted steps;
  do {
    mDoomed.emplace(randomPathIn(folder), Doomed::Kind::kFile);
    mFile = openFile(mDoomed->path(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW);
    if (!mFile.isOpen()) mDoomed->spare();
  } while (!mFile.isOpen() && errno == EEXIST);
  if (!mFile.isOpen()) failForFile(mTarget);
}

void TemporaryFile::write(const std::string& bytes) {
  if (!writeAll(mFile.get(), bytes.data(), bytes.size())) failForFile(mTarget);
}

void TemporaryFile::writeAt(std::size_t offset, const void* bytes, std::size_t count) {
  if (!writeAllAt(mFile.get(), bytes, count, offset)) failForFile(mTarget);
}

void TemporaryFile::commit() {
  if (!mFile.close()) failForFile(mTarget);
  const Uninterrupted steps;
  if (std::rename(mDoomed->path().c_str(), mTarget.c_str()) != 0) failForFile(mTarget);
  mDoomed->spare();
}

}  // namespace vexa::formats
