#include <algorithm>
#include <dirent.h>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "vexa/support/CChemin.h"
#include "vexa/support/file_system_internal.h"

namespace Norvel {
namespace {

constexpr unsigned int kFailed = unsigned(-1);
constexpr std::size_t kLongestPath = 1023;
// The calls below name entries relative to an open directory, so that nobody can replace a
// directory on the way by a link between two calls.
constexpr int kOpenDirectory = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

// Failures of single entries: the walk goes on, and the text of the first one is reported.
class Faults {
 public:
  explicit Faults(std::string* error) : mError(error) {}

  void add() {
    mNameTooLong = mNameTooLong || errno == ENAMETOOLONG;
    if (!mAny) takeSystemError(mError);
    mAny = true;
  }
  unsigned int result() const { return mNameTooLong ? kFailed : 0; }

 private:
  std::string* mError;
  bool mAny = false;
  bool mNameTooLong = false;
};

std::string joined(const std::string& folder, const std::string& name) {
  return folder.empty() ? name : folder + "/" + name;
}

// Opens a directory below an open one ("" is that one itself), never through a link.
FileHandle openBelow(int root, const std::string& relative) {
  FileHandle folder(openat(root, ".", kOpenDirectory));
  std::size_t start = 0;
  while (folder.isOpen() && start < relative.size()) {
    const std::size_t end = std::min(relative.find('/', start), relative.size());
    const std::string name = relative.substr(start, end - start);
    folder = FileHandle(openat(folder.get(), name.c_str(), kOpenDirectory | O_NOFOLLOW));
    start = end + 1;
  }
  return folder;
}

// The names in an open directory but "." and ".."; false with errno on failure.
bool listNames(int folder, std::vector<std::string>& names) {
  FileHandle own(openat(folder, ".", kOpenDirectory));
  DIR* const listing = own.isOpen() ? fdopendir(own.get()) : nullptr;
  if (listing == nullptr) return false;
  own.release();
  const struct Closing {
    DIR* listing;
    ~Closing() { closedir(listing); }
  } closing{listing};
  // readdir returns null at the end and on failure; errno alone tells them apart.
  errno = 0;
  while (const dirent* const entry = readdir(listing)) {
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") names.emplace_back(name);
    errno = 0;
  }
  return errno == 0;
}

// Walks the directories below `root`, each before those it holds, and gives their relative paths
// in that order. It keeps a list instead of calling itself, and two directories open, however
// deep the tree is. `path` is the root's, for the length of names.
//
// enter(relative) returns whether to list a directory; visit(folder, name, status, relative)
// whether an entry is a directory to walk.
template <class Enter, class Visit>
std::vector<std::string> walk(int root, const std::string& path, Faults& faults, Enter enter,
                              Visit visit) {
  // The list grows while it is walked: element i may add elements after it.
  std::vector<std::string> folders = {""};
  for (std::size_t i = 0; i < folders.size(); ++i) {
    const std::string relative = folders[i];
    const FileHandle folder = openBelow(root, relative);
    std::vector<std::string> names;
    if (!folder.isOpen() || !enter(relative) || !listNames(folder.get(), names)) faults.add();
    for (const std::string& name : names) {
      std::string below = joined(relative, name);
      struct stat status;
      if (path.size() + 1 + below.size() > kLongestPath) {
        errno = ENAMETOOLONG;
        faults.add();
      } else if (fstatat(folder.get(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
        faults.add();
      } else if (visit(folder.get(), name.c_str(), status)) {
        folders.push_back(std::move(below));
      }
    }
  }
  return folders;
}

// Removes the directory `relative` below `root`, by its parent's handle.
bool removeBelow(int root, const std::string& relative) {
  const std::size_t slash = relative.rfind('/');
  const bool atTop = slash == std::string::npos;
  const FileHandle parent = openBelow(root, atTop ? std::string() : relative.substr(0, slash));
  return parent.isOpen() &&
         unlinkat(parent.get(), relative.c_str() + (slash + 1), AT_REMOVEDIR) == 0;
}

// A target inside the source is met on the way: it is skipped, or the copy would copy itself
// without end. Links, pipes and devices are left out.
unsigned int copyTree(int from, const std::string& path, int to, Faults& faults) {
  struct stat target;
  struct stat source;
  if (fstat(to, &target) != 0 || fstat(from, &source) != 0) return faults.add(), kFailed;
  if (isSameFile(source, target)) {
    errno = EINVAL;
    return faults.add(), kFailed;
  }
  FileHandle into;
  const auto enter = [&](const std::string& relative) {
    into = openBelow(to, relative);
    return into.isOpen();
  };
  const auto visit = [&](int folder, const char* name, const struct stat& entry) {
    bool done = true;
    const bool isFolder = S_ISDIR(entry.st_mode) && !isSameFile(entry, target);
    if (isFolder) done = makeDirectory(into.get(), name) || errno == EEXIST;
    if (S_ISREG(entry.st_mode)) done = copyRegularFile(folder, name, O_NOFOLLOW, into.get(), name);
    if (!done) faults.add();
    return isFolder && done;
  };
  walk(from, path, faults, enter, visit);
  return faults.result();
}

// Removes the files on the way down and the directories from the last of the list upwards: each is
// listed before those it holds, so backwards they are empty when their turn comes.
unsigned int emptyTree(int root, const std::string& path, Faults& faults) {
  const auto enter = [](const std::string& /*relative*/) { return true; };
  const auto visit = [&](int folder, const char* name, const struct stat& entry) {
    if (S_ISREG(entry.st_mode) && unlinkat(folder, name, 0) != 0) faults.add();
    return S_ISDIR(entry.st_mode);
  };
  const std::vector<std::string> folders = walk(root, path, faults, enter, visit);
  for (std::size_t i = folders.size() - 1; i > 0; --i) {
    if (!removeBelow(root, folders[i])) faults.add();
  }
  return faults.result();
}

}  // namespace

unsigned int CChemin::CopierContenuRepertoire(const CChemin& target, std::string* error) const {
  return withoutThrowing(kFailed, error, [&] {
    Faults faults(error);
    const FileHandle from(open(systemPath(mPath), kOpenDirectory));
    const FileHandle to(from.isOpen() ? open(systemPath(target.mPath), kOpenDirectory) : -1);
    if (!to.isOpen()) return faults.add(), kFailed;
    return copyTree(from.get(), mPath, to.get(), faults);
  });
}

unsigned int CChemin::DetruitContenuRepertoire(std::string* error) const {
  return withoutThrowing(kFailed, error, [&] {
    Faults faults(error);
    const FileHandle root(open(systemPath(mPath), kOpenDirectory | O_NOFOLLOW));
    if (!root.isOpen()) return faults.add(), kFailed;
    return emptyTree(root.get(), mPath, faults);
  });
}

}  // namespace Norvel
