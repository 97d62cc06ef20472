#include "formats/write_file.h"

#include "formats/TemporaryFile.h"

namespace vexa::formats {

void writeFile(const std::string& path, const std::string& bytes) {
  TemporaryFile file(path);
  file.file().write(bytes);
  file.commit();
}

}  // namespace vexa::formats
