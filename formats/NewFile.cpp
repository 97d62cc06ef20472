#include "formats/NewFile.h"

#include <fcntl.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include "formats/file_error.h"

namespace vexa::formats {
namespace {

constexpr std::size_t kBlock = 1 << 16;

}  // namespace

// In a shared folder somebody may plant a file or a link under the name. O_EXCL and O_NOFOLLOW fail
// then, where a plain open would write through the link.
NewFile::NewFile(const std::string& path, std::string shownName)
    : mName(std::move(shownName)), mFile(openFile(path, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW)) {
  if (!mFile.isOpen()) failForFile(mName);
}

// Rows of tables are short, and a system call for each costs more than making it. A piece that
// fills a block goes out at once; what was gathered before it has then been flushed, so the order
// stays.
void NewFile::write(std::string_view bytes) {
  if (mGathered.size() + bytes.size() > kBlock) flush();
  if (bytes.size() < kBlock) {
    mGathered += bytes;
  } else if (!writeAll(mFile.get(), bytes.data(), bytes.size())) {
    failForFile(mName);
  }
}

void NewFile::flush() {
  if (!writeAll(mFile.get(), mGathered.data(), mGathered.size())) failForFile(mName);
  mGathered.clear();
}

// pwrite does not use the position of the file, which threads would have to share.
void NewFile::writeAt(std::size_t offset, const void* bytes, std::size_t count) {
  if (!writeAllAt(mFile.get(), bytes, count, offset)) failForFile(mName);
}

void NewFile::append(const std::string& path) {
  const Descriptor other = openFile(path, O_RDONLY);
  if (!other.isOpen()) failForFile(path);
  std::vector<char> block(kBlock);
  for (;;) {
    const ssize_t count = read(other.get(), block.data(), block.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) failForFile(path);
    if (count == 0) return;
    write({block.data(), std::size_t(count)});
  }
}

// Closing is where a network disk or a quota reports a failed write.
void NewFile::close() {
  flush();
  if (!mFile.close()) failForFile(mName);
}

}  // namespace vexa::formats
