#pragma once

#include <csignal>
#include <string>

#include "formats/Descriptor.h"

namespace vexa::formats {

/// From now on SIGINT, SIGTERM and SIGHUP first remove every temporary file and folder of this
/// process, then end it as they would have without. For the start of a program; a signal that is
/// ignored stays so.
void removeTemporariesOnSignals();

/// Removes them now, for the end of a program that no destructor will see.
void removeTemporaries();

/// For steps that a signal must not interrupt: while one of these exists, the three signals wait,
/// also when another thread gets them.
class Uninterrupted {
 public:
  Uninterrupted();
  Uninterrupted(const Uninterrupted&) = delete;
  Uninterrupted& operator=(const Uninterrupted&) = delete;
  ~Uninterrupted();

 private:
  sigset_t mBefore;
};

/// A file or folder that is removed when the process ends. Construct it before the file itself is
/// made, both while an Uninterrupted exists. Throws std::runtime_error when there are too many
/// (64), or for a path that is too long for the system.
class Doomed {
 public:
  enum class Kind { kFile, kFolder, kEmptyFolder };

  Doomed(std::string path, Kind kind);
  Doomed(Doomed&& other) noexcept;
  Doomed(const Doomed&) = delete;
  Doomed& operator=(const Doomed&) = delete;
  /// Removes it unless it is spared: a file, a folder with the files and empty folders in it, or
  /// a folder that is empty. Needs no memory, and after openFolder() no new descriptor.
  ~Doomed();

  const std::string& path() const { return mPath; }
  void spare();
  /// To be called once the folder is there. False, with errno, when it cannot be opened.
  bool openFolder();
  /// The folder that openFolder() has opened.
  int folder() const { return mFolder.get(); }

 private:
  std::string mPath;
  Kind mKind;
  Descriptor mFolder;
  int mSlot = -1;
};

/// A path in the folder ("" means the working directory) that nobody can foresee.
std::string randomPathIn(const std::string& folder);

}  // namespace vexa::formats
