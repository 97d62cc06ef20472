#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "formats/Descriptor.h"

namespace vexa::formats {

/// A file that was not there before, neither as a file nor as a link. Every operation is checked
/// and throws std::runtime_error "NAME: what is wrong".
class NewFile {
 public:
  /// Errors name the file `shownName`.
  explicit NewFile(const std::string& path) : NewFile(path, path) {}
  NewFile(const std::string& path, std::string shownName);

  /// Appends; small texts are gathered.
  void write(std::string_view bytes);
  /// Writes at an offset past which the other operations do not reach; also from several threads.
  void writeAt(std::size_t offset, const void* bytes, std::size_t count);
  /// Appends all bytes of another file.
  void append(const std::string& path);
  /// Writes what is gathered and closes the file.
  void close();

 private:
  void flush();

  std::string mName;
  std::string mGathered;
  Descriptor mFile;
};

}  // namespace vexa::formats
