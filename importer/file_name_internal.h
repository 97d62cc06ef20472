#pragma once

#include <cctype>
#include <string>

namespace vexa::importer {

/// What comes behind the last dot of a path, in lower case.
inline std::string endingOf(const std::string& file) {
  std::string ending = file.substr(file.find_last_of("./") + 1);
  for (char& c : ending) c = char(std::tolower(static_cast<unsigned char>(c)));
  return ending;
}

/// The folder of a path, with a slash behind it.
inline std::string folderOf(const std::string& file) {
  const std::size_t slash = file.find_last_of('/');
  return slash == std::string::npos ? "./" : file.substr(0, slash + 1);
}

}  // namespace vexa::importer
