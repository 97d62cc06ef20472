#pragma once

#include <optional>
#include <string>

#include "formats/NewFile.h"
#include "formats/interruption.h"

namespace vexa::formats {

/// A file that is written under a name nobody can foresee, beside the file that it is to become.
///
/// It vanishes unless it is committed: with this object, and when a signal ends the process. All
/// operations throw std::runtime_error "TARGET: what is wrong".
class TemporaryFile {
 public:
  /// Refuses a target that is there and is no regular file. A symbolic link to one is replaced.
  explicit TemporaryFile(std::string target);

  NewFile& file() { return *mFile; }
  /// Closes the file and renames it to the target.
  void commit();

 private:
  std::string mTarget;
  std::optional<Doomed> mDoomed;
  std::optional<NewFile> mFile;
};

/// Throws unless `path` is free or a regular file, which can be replaced.
void requireReplaceable(const std::string& path);

}  // namespace vexa::formats
