#include "vexa/framecollector/SourceFile_internal.h"

#include <algorithm>
#include <cerrno>

#include "vexa/support/UxThrow.h"

namespace Norvel {

SourceFile::SourceFile(const CChemin& path) : mFile(path.OpenRegularFile()) {
  const long size =
      mFile && std::fseek(mFile.get(), 0, SEEK_END) == 0 ? std::ftell(mFile.get()) : -1;
  if (size < 0 || std::fseek(mFile.get(), 0, SEEK_SET) != 0) {
    UxThrow::Signal("XCAMOFileIOTool : This file can not be opened!");
  }
  std::setvbuf(mFile.get(), nullptr, _IONBF, 0);  // the steps are large already
  mUnread = std::uint64_t(size);
  mBuffer.reset(new unsigned char[kStep]);
}

// As many elements as lie in the buffer: an element that is cut by the end of the buffer comes
// whole after the next fill.
const unsigned char* SourceFile::take(std::size_t size, std::uint64_t most, std::size_t& outCount) {
  if (mEnd - mBegin < size) fill();
  outCount = std::size_t(std::min<std::uint64_t>(most, (mEnd - mBegin) / size));
  if (outCount == 0) return nullptr;
  const unsigned char* const first = mBuffer.get() + mBegin;
  mBegin += outCount * size;
  return first;
}

void SourceFile::drop() {
  mBegin = mEnd;
  mUnread = 0;
}

// A file that has shrunk since it was opened ends early; a failure is not an end.
void SourceFile::fill() {
  std::memmove(mBuffer.get(), mBuffer.get() + mBegin, mEnd - mBegin);
  mEnd -= mBegin;
  mBegin = 0;
  while (mUnread > 0 && mEnd < kStep) {
    const auto wanted = std::size_t(std::min<std::uint64_t>(kStep - mEnd, mUnread));
    const std::size_t read = std::fread(mBuffer.get() + mEnd, 1, wanted, mFile.get());
    mEnd += read;
    mUnread -= read;
    if (read == wanted) continue;
    if (std::feof(mFile.get())) mUnread = 0;
    if (!std::ferror(mFile.get())) continue;
    if (errno != EINTR) UxThrow::Signal("XCAMOFileIOTool : This file can not be read!");
    std::clearerr(mFile.get());
  }
}

}  // namespace Norvel
