#include <cstdint>
#include <stdexcept>

#include "formats/JsonTree.h"
#include "formats/glb_json_internal.h"

namespace vexa::formats {
namespace {

// A GLB file:
//
//    0   "glTF", uint32 2, uint32 length of the file
//   12   uint32 length of the JSON, "JSON", the JSON, blanks up to a multiple of 4
//        uint32 length of the arrays, "BIN" and a zero byte, the arrays
//
// The arrays are written first, at their offsets. The JSON comes last, because it states bounds
// that are known only then, and must have the length for which room was left: so all its numbers
// have one width.

constexpr std::size_t kMostBytes = 0xFFFFFFFF;  // lengths are 32-bit
constexpr std::size_t kHeaderBytes = 12, kChunkHeaderBytes = 8;

std::size_t lengthOf(const PutJson& putJson) {
  JsonText length(nullptr);
  putJson(length);
  return length.bytes();
}

}  // namespace

std::string quoted(const std::string& text) {
  return JsonTree(text).dump(JsonTree::Layout::kOneLine, JsonTree::Characters::kUtf8);
}

GlbFrame::GlbFrame(const std::string& name, const PutJson& putJson, std::size_t binaryBytes)
    : mJsonBytes((lengthOf(putJson) + 3) & ~std::size_t{3}),
      mBinaryAt(kHeaderBytes + 2 * kChunkHeaderBytes + mJsonBytes),
      mBinaryBytes(binaryBytes) {
  const std::size_t all = mBinaryAt + mBinaryBytes;
  if (all > kMostBytes) {
    throw std::runtime_error(name + ": the file would have " + std::to_string(all) +
                             " bytes, and the format ends at 4 GiB; write fewer frames");
  }
}

void GlbFrame::write(NewFile& file, const PutJson& putJson) const {
  const auto word = [&file](std::size_t number) {
    const auto value = std::uint32_t(number);
    file.write({reinterpret_cast<const char*>(&value), sizeof(value)});
  };
  file.write("glTF");
  word(2);
  word(mBinaryBytes > 0 ? mBinaryAt + mBinaryBytes : mBinaryAt - kChunkHeaderBytes);
  word(mJsonBytes);
  file.write("JSON");
  JsonText json(&file);
  putJson(json);
  file.write(std::string(mJsonBytes - json.bytes(), ' '));
  if (mBinaryBytes == 0) return;
  word(mBinaryBytes);
  file.write({"BIN\0", 4});
}

}  // namespace vexa::formats
