#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace vexa::formats {

struct Utf8Character {
  std::uint32_t mCode = 0;
  std::size_t mBytes = 0;  ///< 0: not UTF-8
};

/// The character that starts at byte `i`; overlong forms, surrogates and numbers past the last are
/// not UTF-8.
inline Utf8Character utf8CharacterAt(const std::string& text, std::size_t i) {
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

inline bool isUtf8(const std::string& text) {
  std::size_t bytes = 1;
  for (std::size_t i = 0; i < text.size() && bytes > 0; i += bytes) {
    bytes = utf8CharacterAt(text, i).mBytes;
  }
  return bytes > 0;
}

}  // namespace vexa::formats
