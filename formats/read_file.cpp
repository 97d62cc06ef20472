#include "formats/read_file.h"

#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "formats/file_error.h"

namespace vexa::formats {
namespace {

constexpr std::size_t kBlock = 1 << 16;

}  // namespace

// O_NONBLOCK: opening a pipe without a writer would wait for ever. O_NOCTTY: a terminal must not
// become the one of this process. The checks ask the open file, not the path, which may name
// another file by then.
FileReader::FileReader(std::string path, std::uint64_t largest)
    : mPath(std::move(path)), mFile(openFile(mPath, O_RDONLY | O_NONBLOCK | O_NOCTTY)) {
  if (!mFile.isOpen()) failForFile(mPath);
  struct stat status {};
  if (fstat(mFile.get(), &status) != 0) failForFile(mPath);
  if (S_ISDIR(status.st_mode)) failForFile(mPath, EISDIR);
  // A device may have no end.
  if (!S_ISREG(status.st_mode)) throw std::runtime_error(mPath + ": is no regular file");
  mSize = std::uint64_t(status.st_size);
  if (mSize > largest) {
    throw std::runtime_error(mPath + ": has " + std::to_string(mSize) + " bytes, more than the " +
                             std::to_string(largest) + " that are read");
  }
}

std::size_t FileReader::read(void* outBytes, std::size_t count) {
  std::size_t done = 0;
  while (done < count) {
    if (mNext == mEnd) {
      mBlock.resize(kBlock);
      const ssize_t got = ::read(mFile.get(), mBlock.data(), mBlock.size());
      if (got < 0 && errno == EINTR) continue;
      if (got < 0) failForFile(mPath);
      if (got == 0) break;
      mNext = 0;
      mEnd = std::size_t(got);
    }
    const std::size_t piece = std::min(count - done, mEnd - mNext);
    std::memcpy(static_cast<char*>(outBytes) + done, mBlock.data() + mNext, piece);
    mNext += piece;
    done += piece;
  }
  return done;
}

std::string readFile(const std::string& path, std::uint64_t largest) {
  // Grows as bytes come: the stated size may be wrong by the time of reading.
  FileReader reader(path, largest);
  std::string bytes;
  char block[kBlock];
  while (const std::size_t count = reader.read(block, sizeof(block))) bytes.append(block, count);
  return bytes;
}

}  // namespace vexa::formats
