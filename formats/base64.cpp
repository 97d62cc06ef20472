#include "formats/base64.h"

#include <cstdint>

namespace vexa::formats {

std::string base64Of(const std::string& bytes) {
  constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  // Three bytes are 24 bits, which make four digits:
  //
  //   bytes    aaaaaaaa bbbbbbbb cccccccc
  //   digits   aaaaaa aabbbb bbbbcc cccccc
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    std::uint32_t three = 0;
    for (std::size_t k = i; k < i + 3; ++k) {
      three = three << 8 | (k < bytes.size() ? std::uint8_t(bytes[k]) : 0u);
    }
    for (int shift = 18; shift >= 0; shift -= 6) text += kDigits[three >> shift & 63];
  }
  // One byte at the end fills two digits, two bytes fill three; the rest becomes padding.
  if (bytes.size() % 3 != 0)
    text.replace(text.size() - 3 + bytes.size() % 3, 3, 3 - bytes.size() % 3, '=');
  return text;
}

}  // namespace vexa::formats
