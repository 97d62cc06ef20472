#include "formats/write_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <unistd.h>

namespace vexa::formats {
namespace {

[[noreturn]] void fail(const std::string& inPath, int inError) {
  throw std::runtime_error(inPath + ": " + std::strerror(inError));
}

// Removes a file at the end of the scope.
struct Removal {
  const std::string& mPath;
  ~Removal() { std::remove(mPath.c_str()); }
};

// The error of the call that failed first, or 0.
int writeAll(std::FILE* ioFile, const std::string& inBytes) {
  int error = std::fwrite(inBytes.data(), 1, inBytes.size(), ioFile) == inBytes.size() ? 0 : errno;
  if (std::fclose(ioFile) != 0 && error == 0) error = errno;
  return error;
}

}  // namespace

void writeFile(const std::string& inPath, const std::string& inBytes) {
  const std::string temporary = inPath + "." + std::to_string(getpid()) + ".tmp";
  std::FILE* file = std::fopen(temporary.c_str(), "wb");
  if (file == nullptr) fail(inPath, errno);
  const Removal removal{temporary};  // does nothing once the file has its name
  if (const int error = writeAll(file, inBytes)) fail(inPath, error);
  if (std::rename(temporary.c_str(), inPath.c_str()) != 0) fail(inPath, errno);
}

}  // namespace vexa::formats
