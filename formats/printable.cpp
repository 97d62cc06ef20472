#include "formats/printable.h"

#include <cstdint>
#include <cstdio>

namespace vexa::formats {
namespace {

struct Character {
  std::uint32_t mCode = 0;
  std::size_t mBytes = 0;  // 0: not UTF-8
};

// The character that starts at `i`; overlong forms, surrogates and numbers past the last are none.
Character characterAt(const std::string& text, std::size_t i) {
  const auto byte = [&text](std::size_t k) {
    return std::uint32_t(static_cast<unsigned char>(text[k]));
  };
  const std::uint32_t first = byte(i);
  if (first < 0x80) return {first, 1};
  const std::size_t bytes = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
  if (first < 0xC2 || first > 0xF4 || text.size() - i < bytes) return {};
  std::uint32_t code = first & (0x7Fu >> bytes);
  for (std::size_t k = i + 1; k < i + bytes; ++k) {
    if ((byte(k) & 0xC0) != 0x80) return {};
    code = code << 6 | (byte(k) & 0x3F);
  }
  constexpr std::uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
  const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
  if (code < kLeast[bytes] || isSurrogate || code > 0x10FFFF) return {};
  return {code, bytes};
}

bool isHarmless(std::uint32_t code) {
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
    const Character character = characterAt(text, i);
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
