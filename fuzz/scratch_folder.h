#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

namespace vexa::fuzz {

/// The scratch folder of this process, removed at its end.
inline const std::filesystem::path& scratchFolder() {
  struct Folder {
    std::filesystem::path mPath;
    Folder() {
      std::string path = (std::filesystem::temp_directory_path() / "vexa_fuzz_XXXXXX").string();
      if (mkdtemp(path.data()) == nullptr) std::abort();
      mPath = path;
    }
    ~Folder() { std::filesystem::remove_all(mPath); }
  };
  static const Folder made;
  return made.mPath;
}

inline void require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace vexa::fuzz
