#pragma once

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "formats/NewFile.h"

namespace vexa::formats {

// JSON text on its way into a file, or only its length when there is none.
class JsonText {
 public:
  explicit JsonText(NewFile* file) : mFile(file) {}

  JsonText& operator<<(std::string_view text) {
    mBytes += text.size();
    if (mFile != nullptr) mFile->write(text);
    return *this;
  }
  JsonText& operator<<(std::size_t number) { return *this << std::to_string(number); }
  JsonText& operator<<(int number) { return *this << std::to_string(number); }
  // Of one width whatever the number: the text's length is needed before the numbers are known.
  JsonText& operator<<(float number) {
    char text[24];
    std::fill(std::begin(text), std::end(text), ' ');
    std::to_chars(std::begin(text), std::end(text), double(number));
    return *this << std::string_view(text, sizeof(text));
  }
  // A comma between elements.
  JsonText& next(bool& ioIsFirst) {
    if (!std::exchange(ioIsFirst, false)) *this << ",";
    return *this;
  }
  std::size_t bytes() const { return mBytes; }

 private:
  NewFile* mFile;
  std::size_t mBytes = 0;
};

// A text in quotes, with what is no UTF-8 replaced.
std::string quoted(const std::string& text);

using PutJson = std::function<void(JsonText&)>;

// The frame of a GLB file: two headers and the JSON text, padded; then binary bytes up to the end.
class GlbFrame {
 public:
  // `putJson` always gives a text of the same length. Throws std::runtime_error "NAME: what is
  // wrong" for a file of 4 GiB or more.
  GlbFrame(const std::string& name, const PutJson& putJson, std::size_t binaryBytes);

  std::size_t binaryAt() const { return mBinaryAt; }
  void write(NewFile& file, const PutJson& putJson) const;

 private:
  std::size_t mJsonBytes, mBinaryAt, mBinaryBytes;
};

}  // namespace vexa::formats
