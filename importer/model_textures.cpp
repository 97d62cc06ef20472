#include "importer/model_textures.h"

#include <algorithm>
#include <filesystem>

#include "importer/file_name_internal.h"

namespace vexa::importer {

namespace {

namespace fs = std::filesystem;

bool isFile(const std::string& path) {
  std::error_code ignored;
  return fs::is_regular_file(path, ignored);
}

// "a%20b" as models state paths on the web.
std::string withoutPercents(const std::string& text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::string digits = text[i] == '%' ? text.substr(i + 1, 2) : "";
    const bool isCode = digits.size() == 2 && std::all_of(digits.begin(), digits.end(), [](char c) {
                          return std::isxdigit(static_cast<unsigned char>(c)) != 0;
                        });
    if (isCode) i += 2;
    result += isCode ? char(std::stoi(digits, nullptr, 16)) : text[i];
  }
  return result;
}

// As stated, or beside the model: the stated path is often that of another machine.
std::string findFile(const std::string& folder, std::string name) {
  // A zero byte would cut the path, a line break would end the line in the MTL file.
  if (name.find_first_of(std::string("\0\n\r", 3)) != std::string::npos) return "";
  std::replace(name.begin(), name.end(), '\\', '/');
  const std::string last = name.substr(name.find_last_of('/') + 1);
  for (const std::string& each : {name, withoutPercents(name), last}) {
    const std::string path = (fs::path(folder) / each).string();
    if (!each.empty() && isFile(path)) return fs::absolute(path).lexically_normal().string();
  }
  return "";
}

}  // namespace

void findTextures(const std::string& modelFile, SourceModel& ioModel) {
  for (SourceModel::Material& material : ioModel.mMaterials) {
    if (material.mTexture.empty() || !material.mTextureBytes.empty()) continue;
    const std::string found = findFile(folderOf(modelFile), material.mTexture);
    if (found.empty()) {
      ioModel.mNotes.push_back("the picture '" + material.mTexture + "' of material '" +
                               material.mName + "' is not there");
    }
    // From here on an absolute path, or empty.
    material.mTexture = found;
  }
}

}  // namespace vexa::importer
