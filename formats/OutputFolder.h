#pragma once

#include <string>
#include <vector>

#include "formats/interruption.h"

namespace vexa::formats {

/// A folder whose new files appear all together or not at all.
///
/// They are written into a temporary folder on the same disk, and publish() moves them. Until then
/// no file of the target is touched. The temporary folder is removed with this object, and when a
/// signal ends the process. All operations throw std::runtime_error "PATH: what is wrong" with the
/// path under the target.
class OutputFolder {
 public:
  /// The target, and folders above it, are made when they are not there; "" is the working
  /// directory.
  explicit OutputFolder(std::string target);
  OutputFolder(const OutputFolder&) = delete;
  OutputFolder& operator=(const OutputFolder&) = delete;
  ~OutputFolder();

  /// Where a file is to be written that is to become `name` in the target. Throws when there is
  /// something other than a regular file.
  std::string pathFor(const std::string& name) const;
  /// Where it will be.
  std::string finalPath(const std::string& name) const;
  /// `text` with the final path in the place of the temporary one.
  std::string inFinalPaths(std::string text) const;

  /// Moves all files to their place. A failure restores the former files.
  void publish();

 private:
  void makeMissing(const std::string& folder);
  void makeTemporary(const std::string& beside);
  std::vector<std::string> names() const;
  void moveEachFile();

  std::string mTarget;
  bool mIsNew = false;
  std::vector<Doomed> mFolders;  ///< those made above the target, then the temporary one
};

}  // namespace vexa::formats
