#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "formats/Descriptor.h"

namespace vexa::formats {

/// No file of any kind is read past this size.
constexpr std::uint64_t kLargestFile = std::uint64_t{4} << 30;

/// A regular file that is read from its start on. Every operation throws std::runtime_error
/// "PATH: what is wrong".
class FileReader {
 public:
  /// Refuses anything but a regular file, and a file of more than `largest` bytes.
  explicit FileReader(std::string path, std::uint64_t largest = kLargestFile);

  std::uint64_t size() const { return mSize; }
  /// The next bytes, as many as there are up to `count`; reads in large blocks.
  std::size_t read(void* outBytes, std::size_t count);

 private:
  std::string mPath;
  Descriptor mFile;
  std::uint64_t mSize = 0;
  std::vector<char> mBlock;
  std::size_t mNext = 0, mEnd = 0;  ///< what is left of the block
};

/// All bytes of a regular file. Throws as FileReader.
std::string readFile(const std::string& path, std::uint64_t largest = kLargestFile);

}  // namespace vexa::formats
