#include "formats/printable.h"

#include <cstdint>
#include <cstdio>

#include "formats/utf8.h"

namespace vexa::formats {
namespace {

bool isHarmless(std::uint32_t code) {
  // Codes 0x80 to 0x9F are control characters, too: some terminals take 0x9B for ESC [.
  if (code < 0x20 || (code >= 0x7F && code < 0xA0)) return false;
  // Line and paragraph separators, marks of direction, and invisible joiners.
  return !((code >= 0x200B && code <= 0x200F) || (code >= 0x2028 && code <= 0x202E) ||
           (code >= 0x2060 && code <= 0x206F) || code == 0x61C || code == 0xFEFF);
}

std::string escaped(std::uint32_t code) {
  if (code == '\n') return "\\n";
  if (code == '\r') return "\\r";
  if (code == '\t') return "\\t";
  char text[16];
  std::snprintf(text, sizeof(text), code < 0x100 ? "\\x%02x" : "\\u%04x", code);
  return text;
}

}  // namespace

std::string printable(const std::string& text) {
  std::string result;
  for (std::size_t i = 0; i < text.size();) {
    const Utf8Character character = utf8CharacterAt(text, i);
    if (character.mBytes == 0) {
      result += escaped(static_cast<unsigned char>(text[i++]));
      continue;
    }
    result +=
        isHarmless(character.mCode) ? text.substr(i, character.mBytes) : escaped(character.mCode);
    i += character.mBytes;
  }
  return result;
}

}  // namespace vexa::formats
