#pragma once

#include <cstddef>
#include <string>
#include <utility>

namespace vexa::formats {

/// Owns a file descriptor and closes it at the end. A negative number means none.
class Descriptor {
 public:
  explicit Descriptor(int fd = -1) : mFd(fd) {}
  Descriptor(Descriptor&& other) noexcept : mFd(std::exchange(other.mFd, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(mFd, other.mFd);
    return *this;
  }
  ~Descriptor() { close(); }

  int get() const { return mFd; }
  /// Gives it up without closing it.
  int release() { return std::exchange(mFd, -1); }
  bool isOpen() const { return mFd >= 0; }
  /// Closes now. False, with errno, when the system reports a late failure of writing.
  bool close();

 private:
  int mFd;
};

/// Opens a file with O_CLOEXEC at a descriptor above 2; none, with errno, when that fails. A new
/// file gets the mode 0666 without the bits of the umask.
Descriptor openFile(const std::string& path, int flags);

/// The same open file at a descriptor above 2, where nothing takes it for a standard stream.
Descriptor aboveStandardStreams(Descriptor descriptor);

/// Opens /dev/null at each of the descriptors 0 to 2 that is closed, so that no file opened later
/// becomes a standard stream. For the start of a program.
void openStandardStreams();

/// Writes all bytes, in as many calls as that takes. False, with errno, when one fails.
bool writeAll(int fd, const void* bytes, std::size_t count);
/// The same at an offset, without moving the position of the file.
bool writeAllAt(int fd, const void* bytes, std::size_t count, std::size_t offset);

}  // namespace vexa::formats
