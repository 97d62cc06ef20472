#include "formats/Descriptor.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace vexa::formats {
namespace {

constexpr int kLastStandardStream = 2;

// Calls write(bytes, count) until everything is written. One call may take fewer bytes: into a
// pipe, near the end of a disk, or when a signal comes.
template <class Write>
bool repeat(const void* bytes, std::size_t count, Write write) {
  const char* next = static_cast<const char*>(bytes);
  while (count > 0) {
    const ssize_t written = write(next, count);
    if (written < 0 && errno == EINTR) continue;
    if (written == 0) errno = EIO;  // no progress and no error: would repeat for ever
    if (written <= 0) return false;
    next += written;
    count -= std::size_t(written);
  }
  return true;
}

}  // namespace

bool Descriptor::close() {
  const int fd = std::exchange(mFd, -1);
  // After EINTR Linux has closed the descriptor. Closing it again could hit a file that another
  // thread has opened under the same number.
  return fd < 0 || ::close(fd) == 0 || errno == EINTR;
}

Descriptor openFile(const std::string& path, int flags) {
  int fd = -1;
  do {
    // O_CLOEXEC: programs that a host starts must not inherit our files.
    fd = open(path.c_str(), flags | O_CLOEXEC, 0666);
  } while (fd < 0 && errno == EINTR);
  return aboveStandardStreams(Descriptor(fd));
}

// A program that was started with a closed standard stream gets that number for its next file. What
// it prints afterwards would land in the file.
Descriptor aboveStandardStreams(Descriptor descriptor) {
  if (!descriptor.isOpen() || descriptor.get() > kLastStandardStream) return descriptor;
  return Descriptor(fcntl(descriptor.get(), F_DUPFD_CLOEXEC, kLastStandardStream + 1));
}

void openStandardStreams() {
  for (int fd = 0; fd <= kLastStandardStream; ++fd) {
    // The lowest free descriptor is taken, which is this one.
    if (fcntl(fd, F_GETFD) < 0) static_cast<void>(open("/dev/null", O_RDWR));
  }
}

bool writeAll(int fd, const void* bytes, std::size_t count) {
  return repeat(bytes, count,
                [fd](const char* next, std::size_t left) { return write(fd, next, left); });
}

bool writeAllAt(int fd, const void* bytes, std::size_t count, std::size_t offset) {
  const char* const first = static_cast<const char*>(bytes);
  return repeat(bytes, count, [=](const char* next, std::size_t left) {
    return pwrite(fd, next, left, off_t(offset + std::size_t(next - first)));
  });
}

}  // namespace vexa::formats
