#include "formats/OutputFolder.h"

#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

#include "formats/TemporaryFile.h"
#include "formats/file_error.h"

namespace vexa::formats {
namespace {

// How files reach their place. A rename is the only step that shows anything to others, and it
// cannot cross file systems; therefore the temporary folder is in the target or beside it.
//
//   the target is there   target/.vexa-RANDOM/a.csv  ->  target/a.csv     one rename per file
//   the target is new     above/.vexa-RANDOM         ->  target           one rename for all

namespace fs = std::filesystem;

std::string parentOf(const std::string& path) { return fs::path(path).parent_path().string(); }

// Follows links: a link to a folder is as good as the folder.
bool isThere(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0;
}

// One file on its way: the new one into its place, the old one to where it can be fetched back.
struct Move {
  std::string mFrom, mTo, mOld;
  bool mHadOld = false;

  // Nothing is there: nothing has to be kept. A link counts as something, also a dangling one.
  bool keepOld() {
    if (faccessat(AT_FDCWD, mTo.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) != 0) return true;
    // A second name leaves no moment without the file; not every file system has them.
    mHadOld = link(mTo.c_str(), mOld.c_str()) == 0 || std::rename(mTo.c_str(), mOld.c_str()) == 0;
    return mHadOld;
  }
  bool make() { return keepOld() && std::rename(mFrom.c_str(), mTo.c_str()) == 0; }
  void takeBack() const {
    if (mHadOld) {
      std::rename(mOld.c_str(), mTo.c_str());
    } else {
      unlink(mTo.c_str());
    }
  }
};

}  // namespace

OutputFolder::OutputFolder(std::string target) : mTarget(std::move(target)) {
  while (mTarget.size() > 1 && mTarget.back() == '/') mTarget.pop_back();
  // As many as Doomed allows at a time: remembering a folder that was just made cannot fail.
  mFolders.reserve(64);
  mIsNew = !mTarget.empty() && !isThere(mTarget);
  if (mIsNew) makeMissing(parentOf(mTarget));
  makeTemporary(mIsNew ? parentOf(mTarget) : mTarget);
}

OutputFolder::~OutputFolder() {
  while (!mFolders.empty()) mFolders.pop_back();  // the innermost first
}

void OutputFolder::makeMissing(const std::string& folder) {
  if (folder.empty() || isThere(folder)) return;
  makeMissing(parentOf(folder));
  const Uninterrupted steps;
  // The entry comes before the folder. In the other order a failure in between would leave the
  // folder behind.
  Doomed made(folder, Doomed::Kind::kEmptyFolder);
  if (mkdir(folder.c_str(), 0777) == 0) {
    mFolders.push_back(std::move(made));
    return;
  }
  const int error = errno;
  made.spare();  // another process has made it meanwhile, or nobody can
  if (error != EEXIST) failForFile(folder, error);
}

void OutputFolder::makeTemporary(const std::string& beside) {
  const Uninterrupted steps;
  Doomed folder(randomPathIn(beside), Doomed::Kind::kFolder);
  if (mkdir(folder.path().c_str(), 0777) != 0) {
    const int error = errno;
    folder.spare();  // it is not ours, if it is there at all
    failForFile(mTarget.empty() ? "." : mTarget, error);
  }
  if (!folder.openFolder()) failForFile(mTarget.empty() ? "." : mTarget);
  mFolders.push_back(std::move(folder));
}

// By the open folder: the standard library's iterator ends the process when memory runs out.
std::vector<std::string> OutputFolder::names() const {
  // The copy shares its position with the open folder, which an earlier listing has moved.
  lseek(mFolders.back().folder(), 0, SEEK_SET);
  Descriptor copy(fcntl(mFolders.back().folder(), F_DUPFD_CLOEXEC, 3));
  const std::unique_ptr<DIR, int (*)(DIR*)> folder(fdopendir(copy.get()), closedir);
  if (folder == nullptr) failForFile(mTarget);
  // From here on closedir owns it.
  copy.release();
  std::vector<std::string> names;
  // readdir returns null at the end and for a failure; only errno tells the two apart.
  errno = 0;
  while (const dirent* entry = readdir(folder.get())) {
    const std::string name = entry->d_name;
    if (name != "." && name != "..") names.push_back(name);
    errno = 0;
  }
  if (errno != 0) failForFile(mTarget);
  return names;
}

std::string OutputFolder::pathFor(const std::string& name) const {
  requireReplaceable(finalPath(name));
  return mFolders.back().path() + "/" + name;
}

std::string OutputFolder::finalPath(const std::string& name) const {
  return (fs::path(mTarget) / name).string();
}

std::string OutputFolder::inFinalPaths(std::string text) const {
  const std::string temporary = mFolders.back().path() + "/";
  // Errors of writers name the temporary path, which means nothing to the user.
  const std::size_t at = text.find(temporary);
  if (at == std::string::npos) return text;
  return text.replace(at, temporary.size(), finalPath(""));
}

void OutputFolder::publish() {
  const Uninterrupted steps;
  if (mIsNew && std::rename(mFolders.back().path().c_str(), mTarget.c_str()) == 0) {
    for (Doomed& folder : mFolders) folder.spare();
    return;
  }
  // Another process has made the target meanwhile and put files into it: they stay.
  const bool isThereNow = errno == EEXIST || errno == ENOTEMPTY;
  if (mIsNew && !isThereNow) failForFile(mTarget);
  moveEachFile();
  for (std::size_t i = 0; i + 1 < mFolders.size(); ++i) mFolders[i].spare();
}

void OutputFolder::moveEachFile() {
  const std::string temporary = mFolders.back().path();
  // First all that can fail for want of memory or because of the target, then the renames: they are
  // not one step together, so predictable failures come before the first of them. The old files are
  // kept inside the temporary folder and vanish with it.
  std::vector<Move> moves;
  for (const std::string& name : names()) {
    requireReplaceable(finalPath(name));
    moves.push_back({temporary + "/" + name, finalPath(name), temporary + "/" + name + ".old"});
  }
  for (std::size_t i = 0; i < moves.size(); ++i) {
    if (moves[i].make()) continue;
    const int cause = errno;
    if (moves[i].mHadOld) moves[i].takeBack();
    for (std::size_t k = i; k-- > 0;) moves[k].takeBack();
    failForFile(moves[i].mTo, cause);
  }
}

}  // namespace vexa::formats
