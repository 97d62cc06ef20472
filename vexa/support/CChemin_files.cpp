#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "vexa/support/CChemin.h"
#include "vexa/support/XCReporter.h"
#include "vexa/support/file_system_internal.h"
#include "vexa/support/format_internal.h"

namespace Norvel {
namespace {

// Hands on the result of a system call, with the error's text when it is not 0.
int checked(int result, std::string* error) {
  if (result != 0) takeSystemError(error);
  return result;
}

// Makes a directory that is open to all; 0, or -1 with errno.
int makeDirectory(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  const FileHandle folder = openFolderOf(path);
  const char* const name = path.c_str() + (path.rfind('/') + 1);
  // The root is its own name: it exists.
  return folder.isOpen() && Norvel::makeDirectory(folder.get(), *name != '\0' ? name : path.c_str())
             ? 0
             : -1;
}

// Whole seconds, as not every file system stores more. 0 for a file that is not there.
time_t modificationSecond(const std::string& path) {
  struct stat status;
  return stat(systemPath(path), &status) == 0 ? status.st_mtim.tv_sec : 0;
}

}  // namespace

bool CChemin::FichierExiste(std::string* error) const {
  return checked(access(systemPath(mPath), F_OK), error) == 0;
}

bool CChemin::RepertoireExiste(std::string* error) const {
  struct stat status;
  if (stat(systemPath(mPath), &status) == 0) {
    if (S_ISDIR(status.st_mode)) return true;
    errno = ENOTDIR;
    takeSystemError(error);
    return false;
  }
  const int code = errno;
  takeSystemError(error);
  if (code != ENOENT) {
    XCReporter::Warning("CChemin::RepertoireExiste stat(%s) returned  errno = %d\n", mPath.c_str(),
                        code);
  }
  return false;
}

bool CChemin::PlusRecent(const CChemin& other) const {
  return modificationSecond(mPath) >= modificationSecond(other.mPath);
}

std::FILE* CChemin::OpenFile(const char* mode, std::string* error) const {
  std::FILE* const file = std::fopen(systemPath(mPath), orEmpty(mode));
  if (file == nullptr) takeSystemError(error);
  return file;
}

std::FILE* CChemin::OpenRegularFile(std::string* error) const {
  // The stream takes over the descriptor; without a stream the handle closes it.
  struct stat status;
  FileHandle handle = Norvel::openRegularFile(AT_FDCWD, systemPath(mPath), 0, status);
  std::FILE* const file = handle.isOpen() ? fdopen(handle.get(), "rb") : nullptr;
  if (file == nullptr) {
    takeSystemError(error);
  } else {
    handle.release();
  }
  return file;
}

int CChemin::CreerRepertoire(std::string* error) const {
  return withoutThrowing(
      -1, error, [&] { return checked(makeDirectory(std::string(systemPath(mPath))), error); });
}

int CChemin::CreerArborescenceDeRepertoire() const {
  return withoutThrowing(0, nullptr, [this] {
    const std::string path = systemPath(mPath);
    // Every part that ends before a '/' and has a named parent, from the top down; then the whole.
    // Below a name that is too long nothing can be made.
    bool hasParent = false, goesOn = true;
    for (std::size_t i = 1; i < path.size() && goesOn; ++i) {
      if (path[i] != '/') continue;
      if (hasParent) goesOn = makeDirectory(path.substr(0, i)) == 0 || errno != ENAMETOOLONG;
      hasParent = true;
    }
    if (hasParent && goesOn) makeDirectory(path);
    return 0;
  });
}

int CChemin::DetruitFichier(std::string* error) const {
  return checked(unlink(systemPath(mPath)), error);
}

int CChemin::DetruitRepertoire(std::string* error) const {
  return checked(rmdir(systemPath(mPath)), error);
}

bool CChemin::CopierVers(CChemin target, std::string* error) const {
  return withoutThrowing(false, error, [&] {
    if (!FichierExiste()) {
      if (error != nullptr) *error = "Input file does not exist";
      return false;
    }
    const std::string to = systemPath(target.mPath);
    const FileHandle folder = openFolderOf(to);
    const char* const name = to.c_str() + (to.rfind('/') + 1);
    if (folder.isOpen() && copyRegularFile(AT_FDCWD, systemPath(mPath), 0, folder.get(), name)) {
      return true;
    }
    takeSystemError(error);
    return false;
  });
}

bool CChemin::RenameFile(const char* newName, std::string* error) const {
  return withoutThrowing(false, error, [&] {
    const std::string target = mPath.substr(0, mPath.rfind('/') + 1) + orEmpty(newName);
    return checked(std::rename(systemPath(mPath), systemPath(target)), error) == 0;
  });
}

bool CChemin::ResolveSymbolicLink(std::string* error) {
  return ResolveSymbolicLink(mPath, mPath, error);
}

bool CChemin::ResolveSymbolicLink(const std::string& path, std::string& resolved,
                                  std::string* error) {
  return withoutThrowing(false, error, [&] {
    char text[512];  // readlink cuts without an error: a full buffer may be a part of the link
    const ssize_t size = readlink(systemPath(path), text, sizeof(text));
    const bool isWhole = size >= 0 && size < ssize_t{sizeof(text)};
    if (!isWhole) {
      if (size >= 0) errno = ENAMETOOLONG;
      takeSystemError(error);
      resolved = path;
      return false;
    }
    // A relative link starts from the folder that it is in, not from the current one.
    const std::string link(text, std::size_t(size));
    const bool isAbsolute = link.compare(0, 1, "/") == 0;
    resolved = (isAbsolute ? "" : path.substr(0, path.rfind('/') + 1)) + link;
    return true;
  });
}

}  // namespace Norvel
