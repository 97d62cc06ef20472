#include <algorithm>
#include <array>
#include <cstring>
#include <fcntl.h>
#include <vector>
#if defined(__linux__)
#include <sys/xattr.h>
#endif

#include "vexa/support/XCReporter.h"
#include "vexa/support/file_system_internal.h"

namespace Norvel {
namespace {

bool fail(int code) {
  errno = code;
  return false;
}

bool isRegular(const struct stat& status) {
  if (S_ISREG(status.st_mode)) return true;
  return fail(S_ISDIR(status.st_mode) ? EISDIR : EINVAL);
}

// Whether a call succeeded, or failed because the target's file system cannot hold what the call
// sets or this user may not set it. A copy goes on without that.
bool doneOrNotPossible(int result) {
  return result == 0 || errno == ENOTSUP || errno == EPERM || errno == EACCES || errno == ENODATA;
}

// 128 random bits as text: nobody can create, or plant a link at, a name that they cannot foresee.
bool randomName(std::array<char, 48>& outName) {
  unsigned char bits[16];
  if (getentropy(bits, sizeof(bits)) != 0) return false;
  constexpr char kPrefix[] = ".vexa-", kDigits[] = "0123456789abcdef";
  char* to = std::copy_n(kPrefix, sizeof(kPrefix) - 1, outName.data());
  for (const unsigned char byte : bits) {
    *to++ = kDigits[byte >> 4];
    *to++ = kDigits[byte & 15];
  }
  *to = '\0';
  return true;
}

// A new file in an open directory, under a random name until it is complete: whoever opens the
// target sees the old file or the whole new one. The destructor removes what was not renamed.
class TemporaryFile {
 public:
  explicit TemporaryFile(int folder) : mFolder(folder) {
    if (!randomName(mName)) return;
    // Exclusive: an existing file or link of that name is an error.
    mFile = FileHandle(openat(folder, mName.data(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    mIsThere = mFile.isOpen();
  }
  ~TemporaryFile() {
    const int saved = errno;
    if (mIsThere) unlinkat(mFolder, mName.data(), 0);
    errno = saved;
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  bool isOpen() const { return mFile.isOpen(); }
  int get() const { return mFile.get(); }

  // Closes the file and renames it. Some systems report a failed write only when closing.
  bool becomes(const char* name) {
    if (::close(mFile.release()) != 0) return false;
    if (renameat(mFolder, mName.data(), mFolder, name) != 0) return false;
    mIsThere = false;
    return true;
  }

 private:
  int mFolder;
  std::array<char, 48> mName{};
  FileHandle mFile;
  bool mIsThere = false;
};

// A write may take a part of the data or be interrupted by a signal. One that takes nothing would
// repeat for ever, so it is an error.
bool writeAll(int to, const char* data, std::size_t size) {
  while (size > 0) {
    const ssize_t count = write(to, data, size);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return count < 0 ? false : fail(EIO);
    data += count;
    size -= std::size_t(count);
  }
  return true;
}

bool copyData(int from, int to) {
  std::vector<char> buffer(1 << 16);
  for (;;) {
    const ssize_t count = read(from, buffer.data(), buffer.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return count == 0;
    if (!writeAll(to, buffer.data(), std::size_t(count))) return false;
  }
}

#if defined(__linux__)

// The kernel's limit for one value, and for the list of names.
constexpr std::size_t kLargestAttribute = 1 << 16;

bool copyAttribute(int from, int to, const char* name) {
  std::vector<char> value(kLargestAttribute);
  const ssize_t size = fgetxattr(from, name, value.data(), value.size());
  return doneOrNotPossible(size < 0 ? -1 : 0) &&
         (size < 0 || doneOrNotPossible(fsetxattr(to, name, value.data(), std::size_t(size), 0)));
}

bool copyAttributes(int from, int to) {
  std::vector<char> names(kLargestAttribute);
  const ssize_t size = flistxattr(from, names.data(), names.size());
  if (size < 0) return doneOrNotPossible(-1);
  const char* const end = names.data() + size;
  for (const char* name = names.data(); name < end; name += std::strlen(name) + 1) {
    if (!copyAttribute(from, to, name)) return false;
  }
  return true;
}

#else

// Extended attributes are those of Linux; other systems' are left out of a copy.
bool copyAttributes(int /*from*/, int /*to*/) { return true; }

#endif

// Last of all, because writing the data and the attributes changes the times.
bool setTimesAndMode(int to, const struct stat& source) {
  const timespec times[2] = {source.st_atim, source.st_mtim};
  return doneOrNotPossible(futimens(to, times)) && doneOrNotPossible(fchmod(to, 0777));
}

// Whether a copy of `source` may replace the entry `name`.
bool mayReplace(int folder, const char* name, const struct stat& source) {
  struct stat target;
  // Where nothing is, a copy may go, except under the empty name.
  if (fstatat(folder, name, &target, AT_SYMLINK_NOFOLLOW) != 0) {
    return errno == ENOENT && *name != '\0';
  }
  if (!S_ISLNK(target.st_mode) && !isRegular(target)) return false;
  // The entry may be a link to the source itself.
  const bool reachable = fstatat(folder, name, &target, 0) == 0;
  return reachable && isSameFile(source, target) ? fail(EINVAL) : true;
}

}  // namespace

void takeSystemError(std::string* error) noexcept {
  if (error == nullptr) return;
  try {
    *error = XCReporter::GetLastSystemErrorEnglish(XIReporter::kMsgError, kSystemErrno, nullptr);
  } catch (const std::exception&) {
    error->clear();
  }
}

FileHandle openFolderOf(const std::string& path) {
#if defined(O_PATH)
  constexpr int kMode = O_PATH;  // needs no permission to read the folder
#else
  constexpr int kMode = O_RDONLY;
#endif
  const std::string folder = path.substr(0, path.rfind('/') + 1);
  return FileHandle(open(folder.empty() ? "." : folder.c_str(), kMode | O_DIRECTORY | O_CLOEXEC));
}

namespace {

// Opens a new directory to all, by its own descriptor: in a shared folder another user may have put
// something else at the name.
bool openToAll(int parent, const char* name) {
  const FileHandle made(openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  struct stat status;
  if (!made.isOpen() || fstat(made.get(), &status) != 0) return false;
  if (status.st_uid != geteuid()) return fail(EPERM);
  return fchmod(made.get(), 0777) == 0;
}

}  // namespace

bool makeDirectory(int parent, const char* name) {
  // Closed to others until it is known to be ours.
  if (mkdirat(parent, name, 0700) != 0) return false;
  if (openToAll(parent, name)) return true;
  const int saved = errno;
  unlinkat(parent, name, AT_REMOVEDIR);  // nothing else than an empty directory
  return fail(saved);
}

FileHandle openRegularFile(int folder, const char* name, int flags, struct stat& status) {
  // Looked at first, because already opening a pipe or a device has effects.
  const int look = (flags & O_NOFOLLOW) != 0 ? AT_SYMLINK_NOFOLLOW : 0;
  if (fstatat(folder, name, &status, look) != 0 || !isRegular(status)) return FileHandle();
  // The entry may have been replaced since: O_NONBLOCK keeps the opening of a pipe from waiting,
  // and the open file is judged once more.
  FileHandle file(openat(folder, name, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC | flags));
  if (!file.isOpen() || fstat(file.get(), &status) != 0 || !isRegular(status)) return FileHandle();
  return file;
}

bool copyRegularFile(int from, const char* name, int flags, int to, const char* targetName) {
  struct stat status;
  const FileHandle source = openRegularFile(from, name, flags, status);
  if (!source.isOpen() || !mayReplace(to, targetName, status)) return false;
  TemporaryFile copy(to);
  return copy.isOpen() && copyData(source.get(), copy.get()) &&
         copyAttributes(source.get(), copy.get()) && setTimesAndMode(copy.get(), status) &&
         copy.becomes(targetName);
}

}  // namespace Norvel
