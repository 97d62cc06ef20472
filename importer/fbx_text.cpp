#include <algorithm>
#include <charconv>
#include <stdexcept>

#include "importer/fbx_document_internal.h"

namespace vexa::importer {

namespace {

constexpr int kDeepest = 64;

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

bool isNumberPart(char c) {
  return (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.' || c == 'e' || c == 'E' ||
         c == '#';
}

bool startsNumber(char c) { return (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.'; }

// A text FBX file, whose values may go on over lines after a comma:
//
//   ; comment
//   Name: value, "text", *3 { a: 1,2,3 } {
//     Child: ...
//   }
class TextReader {
 public:
  explicit TextReader(const std::string& bytes) : mText(bytes) {}

  FbxRecord read() {
    FbxRecord root;
    skip();
    while (mPlace < mText.size()) {
      addRecord(root, 0);
      skip();
    }
    return root;
  }

 private:
  [[noreturn]] void fail(const std::string& what) const {
    throw std::runtime_error("byte " + std::to_string(mPlace) + ": " + what);
  }

  char peek() const { return mPlace < mText.size() ? mText[mPlace] : '\0'; }

  // Blanks and comments; line ends only on demand.
  void skip(bool overLines = true) {
    for (; mPlace < mText.size(); ++mPlace) {
      const char c = mText[mPlace];
      if (c == ';') {
        mPlace = std::min(mText.find('\n', mPlace), mText.size());
        if (!overLines || mPlace == mText.size()) return;
      } else if (!isBlank(c) || (c == '\n' && !overLines)) {
        return;
      }
    }
  }

  void addRecord(FbxRecord& ioParent, int depth) {
    if (depth > kDeepest) fail("records are nested too deeply");
    const std::size_t colon = mText.find_first_of(":\n{}\"", mPlace);
    if (colon == std::string::npos || mText[colon] != ':') fail("a name and a colon are expected");
    FbxRecord& record = ioParent.mChildren.emplace_back();
    record.mName = mText.substr(mPlace, colon - mPlace);
    mPlace = colon + 1;
    takeValues(record);
    if (peek() != '{') return;
    ++mPlace;
    for (skip(); peek() != '}'; skip()) {
      if (mPlace >= mText.size()) fail("the file ends within a record");
      addRecord(record, depth + 1);
    }
    ++mPlace;
  }

  void takeValues(FbxRecord& ioRecord) {
    skip(false);
    while (mPlace < mText.size() && peek() != '\n' && peek() != '{' && peek() != '}') {
      if (peek() != ',') ioRecord.mValues.push_back(takeValue());
      skip(false);
      // A comma at the end of a line means that the values go on.
      if (peek() != ',') break;
      ++mPlace;
      skip();
    }
  }

  FbxValue takeValue() {
    FbxValue value;
    if (peek() == '"') {
      value.mKind = FbxValue::Kind::Text;
      value.mText = takeQuoted();
    } else if (peek() == '*') {
      value = takeArray();
    } else if (startsNumber(peek())) {
      value = takeNumber();
    } else {
      value.mKind = FbxValue::Kind::Text;
      const std::size_t end = std::min(mText.find_first_of(" \t\r\n,{};", mPlace), mText.size());
      if (end == mPlace) fail("a value is expected");
      value.mText = mText.substr(mPlace, end - mPlace);
      mPlace = end;
    }
    return value;
  }

  std::string takeQuoted() {
    const std::size_t end = mText.find('"', mPlace + 1);
    if (end == std::string::npos) fail("a text without an end");
    std::string text = mText.substr(mPlace + 1, end - mPlace - 1);
    mPlace = end + 1;
    for (std::size_t i = text.find("&quot;"); i != std::string::npos; i = text.find("&quot;", i)) {
      // Past the quote that was put in, so that it is not looked at again.
      text.replace(i++, 6, "\"");
    }
    return text;
  }

  std::string_view takeWord() {
    std::size_t end = mPlace;
    while (end < mText.size() && isNumberPart(mText[end])) ++end;
    const std::string_view word(mText.data() + mPlace, end - mPlace);
    mPlace = end;
    return word;
  }

  // What no program could have written as a number, such as 1.#IND, is 0.
  FbxValue takeNumber() {
    std::string_view word = takeWord();
    while (mPlace < mText.size() && ((mText[mPlace] >= 'A' && mText[mPlace] <= 'Z') ||
                                     (mText[mPlace] >= 'a' && mText[mPlace] <= 'z'))) {
      ++mPlace;
    }
    if (!word.empty() && word[0] == '+') word.remove_prefix(1);
    FbxValue value;
    const char* const end = word.data() + word.size();
    // An integer where all of it is one; ids have more digits than a double holds.
    if (std::from_chars(word.data(), end, value.mInteger).ptr == end) return value;
    value.mKind = FbxValue::Kind::Real;
    if (std::from_chars(word.data(), end, value.mReal).ptr != end) value.mReal = 0;
    return value;
  }

  // "*3 { a: 1,2,3 }"
  FbxValue takeArray() {
    ++mPlace;
    takeNumber();  // the count, which the numbers say themselves
    skip();
    if (peek() != '{') fail("an array without numbers");
    ++mPlace;
    skip();
    if (mText.compare(mPlace, 2, "a:") == 0) mPlace += 2;
    FbxValue value;
    value.mKind = FbxValue::Kind::Array;
    for (skip(); peek() != '}'; skip()) {
      if (!startsNumber(peek())) fail("a number is expected");
      value.mArray.push_back(takeNumber().number());
      skip();
      if (peek() == ',') ++mPlace;
    }
    ++mPlace;
    return value;
  }

  const std::string& mText;
  std::size_t mPlace = 0;
};

}  // namespace

FbxRecord parseTextFbx(const std::string& bytes) { return TextReader(bytes).read(); }

}  // namespace vexa::importer
