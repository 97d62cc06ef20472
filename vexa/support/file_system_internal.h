#pragma once

#include <cerrno>
#include <exception>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace Norvel {

// Owns a file descriptor, or none (-1). Closing leaves errno alone.
class FileHandle {
 public:
  explicit FileHandle(int fd = -1) : mFd(fd) {}
  FileHandle(FileHandle&& other) noexcept : mFd(std::exchange(other.mFd, -1)) {}
  FileHandle& operator=(FileHandle&& other) noexcept {
    std::swap(mFd, other.mFd);
    return *this;
  }
  ~FileHandle() {
    const int saved = errno;
    if (mFd >= 0) ::close(mFd);
    errno = saved;
  }

  bool isOpen() const { return mFd >= 0; }
  int get() const { return mFd; }
  int release() { return std::exchange(mFd, -1); }

 private:
  int mFd;
};

// The path as system calls take it. A zero byte inside would cut it to another file's name, so
// such a path becomes "", which no entry has.
inline const char* systemPath(const std::string& path) {
  return path.find('\0') == std::string::npos ? path.c_str() : "";
}

inline bool isSameFile(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

// Fills `error`, if there is one, with the text of the current errno.
void takeSystemError(std::string* error) noexcept;

// The result of the operation; `failed` with the text of ENOMEM when it runs out of memory.
template <class Result, class Operation>
Result withoutThrowing(Result failed, std::string* error, Operation operation) {
  try {
    return operation();
  } catch (const std::exception&) {
    errno = ENOMEM;
    takeSystemError(error);
    return failed;
  }
}

// The folder that a path's last component is in, for the "at" calls; the current folder for a path
// without '/'.
FileHandle openFolderOf(const std::string& path);

// Makes the directory `name` in the open folder `parent`, open to all (0777). False with errno when
// it cannot be made, also when something is there already.
bool makeDirectory(int parent, const char* name);

// Opens the regular file `name` of the open directory `folder` for reading and reads its status.
// Never waits and never opens anything else: that gives EISDIR or EINVAL. `flags` may hold
// O_NOFOLLOW.
FileHandle openRegularFile(int folder, const char* name, int flags, struct stat& status);

// Copies the regular file `name` of the open directory `from` to `targetName` in `to`: data,
// times, extended attributes; mode 0777. `flags` as of openRegularFile. False with errno on
// failure, when an older target is still there, whole.
bool copyRegularFile(int from, const char* name, int flags, int to, const char* targetName);

}  // namespace Norvel
