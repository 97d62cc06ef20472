#include "formats/TemporaryFile.h"

#include <cstdio>
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

// A name of 80 random bits is not met twice: were it there, something is wrong.
TemporaryFile::TemporaryFile(std::string target) : mTarget(std::move(target)) {
  requireReplaceable(mTarget);
  const std::string folder = std::filesystem::path(mTarget).parent_path().string();
  const Uninterrupted steps;
  mDoomed.emplace(randomPathIn(folder), Doomed::Kind::kFile);
  try {
    mFile.emplace(mDoomed->path(), mTarget);
  } catch (...) {
    mDoomed->spare();  // it is not ours, if it is there at all
    throw;
  }
}

// The file is closed first: a late failure of writing must not reach the target. The rename
// replaces the target in one step, so a reader sees the old file or the whole new one. The bytes
// are not forced to the disk: this guards against the end of the program, not of the machine.
void TemporaryFile::commit() {
  mFile->close();
  const Uninterrupted steps;
  if (std::rename(mDoomed->path().c_str(), mTarget.c_str()) != 0) failForFile(mTarget);
  mDoomed->spare();
}

}  // namespace vexa::formats
