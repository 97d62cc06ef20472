#include <cstdint>
#include <cstring>
#include <nlohmann/json.hpp>

#include "importer/gltf_compressed_internal.h"

namespace vexa::importer {

namespace {

using Json = nlohmann::json;

constexpr const char* kDraco = "KHR_draco_mesh_compression";
// A binary file: magic, version and length; length and kind of the first part; its text.
constexpr std::size_t kHeader = 12, kTextStart = 20;

std::uint32_t numberAt(const std::string& bytes, std::size_t place) {
  std::uint32_t value = 0;
  std::memcpy(&value, bytes.data() + place, sizeof(value));
  return value;
}

void put(std::uint32_t value, std::size_t place, std::string& ioBytes) {
  std::memcpy(ioBytes.data() + place, &value, sizeof(value));
}

bool isCompressed(const Json& primitive) {
  if (!primitive.is_object() || !primitive.contains("extensions")) return false;
  return primitive["extensions"].is_object() && primitive["extensions"].contains(kDraco);
}

std::string edited(const std::string& text) {
  Json file = Json::parse(text, nullptr, false);
  if (!file.is_object() || !file.contains("meshes") || !file["meshes"].is_array()) return text;
  for (Json& mesh : file["meshes"]) {
    if (!mesh.is_object() || !mesh.contains("primitives")) continue;
    for (Json& primitive : mesh["primitives"]) {
      if (isCompressed(primitive)) primitive.erase("indices");
    }
  }
  return file.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace

std::string withoutCompressedIndices(const std::string& bytes) {
  if (bytes.find(kDraco) == std::string::npos) return bytes;
  if (bytes.compare(0, 4, "glTF") != 0) return edited(bytes);
  if (bytes.size() < kTextStart) return bytes;
  const std::size_t length = numberAt(bytes, kHeader);
  if (length > bytes.size() - kTextStart) return bytes;
  std::string text = edited(bytes.substr(kTextStart, length));
  // Parts of a binary file are multiples of four bytes; the text is padded with blanks.
  text.resize((text.size() + 3) / 4 * 4, ' ');
  std::string result = bytes.substr(0, kTextStart) + text + bytes.substr(kTextStart + length);
  // The text has another length now: the file states its own length at 8 and that of the text
  // at 12.
  put(std::uint32_t(result.size()), 8, result);
  put(std::uint32_t(text.size()), kHeader, result);
  return result;
}

}  // namespace vexa::importer
