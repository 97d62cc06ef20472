#include "importer/model_reader.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <stdexcept>
#include <sys/stat.h>

#include "formats/read_file.h"
#include "importer/assimp_reader_internal.h"
#include "importer/fbx_document_internal.h"
#include "importer/fbx_reader_internal.h"
#include "importer/file_name_internal.h"
#include "importer/gltf_reader_internal.h"
#include "importer/model_bytes_internal.h"
#include "importer/unread_animation.h"

namespace vexa::importer {

namespace {

// Devices and pipes could keep the reader waiting for ever.
void checkIsReadableFile(const std::string& file) {
  struct stat status {};
  if (stat(file.c_str(), &status) != 0) throw std::runtime_error(std::strerror(errno));
  if (S_ISDIR(status.st_mode)) throw std::runtime_error("is a directory");
  if (!S_ISREG(status.st_mode)) throw std::runtime_error("is not a regular file");
  if (!std::ifstream(file)) throw std::runtime_error(std::strerror(errno));
  if (status.st_size == 0) throw std::runtime_error("is empty");
}

// glTF 2.0 and FBX 7 are read here, everything else by libassimp.
SourceModel readAny(const std::string& file, double ticksPerSecond) {
  // By the ending first, then by the contents: an old FBX or glTF 1.0 goes to libassimp.
  const std::string ending = endingOf(file);
  if (ending == "gltf" || ending == "glb") {
    const std::string bytes = formats::readFile(file);
    if (isGltf2(bytes)) return readGltf(bytes, folderOf(file));
  }
  if (ending == "fbx") {
    const std::string bytes = formats::readFile(file);
    if (fbxVersion(bytes) >= 7000) return readFbx(bytes);
  }
  return readWithAssimp(file, ticksPerSecond);
}

}  // namespace

SourceModel readModel(const std::string& file, const ChildLimits& limits, double ticksPerSecond) {
  checkIsReadableFile(file);
  std::string bytes;
  try {
    bytes = runInChild([&] { return packModel(readAny(file, ticksPerSecond)); }, limits);
  } catch (const std::runtime_error& e) {
    throw std::runtime_error(std::string("the model cannot be read: ") + e.what());
  }
  SourceModel model = unpackModel(bytes);
  if (model.mClips.empty()) model.mUnreadAnimation = unreadAnimation(file);
  return model;
}

}  // namespace vexa::importer
