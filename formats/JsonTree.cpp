#include "formats/JsonTree.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <sys/resource.h>
#include <unistd.h>

#include "formats/number_text.h"
#include "formats/read_file.h"
#include "formats/utf8.h"

namespace vexa::formats {

JsonTree JsonTree::object() {
  JsonTree tree;
  tree.mValue = Object();
  return tree;
}

JsonTree JsonTree::with(std::string_view name, JsonTree value) && {
  (*this)[name] = std::move(value);
  return std::move(*this);
}

const JsonTree* JsonTree::find(std::string_view name) const {
  if (members() == nullptr) return nullptr;
  // From the end: of members with one name the last one counts, as in most readers.
  const auto found = std::find_if(members()->rbegin(), members()->rend(),
                                  [&](const Member& member) { return member.mName == name; });
  return found == members()->rend() ? nullptr : &found->mValue;
}

const JsonTree& JsonTree::operator[](std::string_view name) const {
  static const JsonTree kNull;
  const JsonTree* const found = find(name);
  return found == nullptr ? kNull : *found;
}

JsonTree& JsonTree::operator[](std::string_view name) {
  if (const JsonTree* const found = find(name)) return const_cast<JsonTree&>(*found);
  if (std::holds_alternative<std::nullptr_t>(mValue)) mValue = Object();
  auto& all = std::get<Object>(mValue);
  return all.emplace_back(Member{std::string(name), {}}).mValue;
}

void JsonTree::add(JsonTree element) {
  if (std::holds_alternative<std::nullptr_t>(mValue)) mValue = List();
  std::get<List>(mValue).push_back(std::move(element));
}

std::size_t JsonTree::size() const {
  if (elements() != nullptr) return elements()->size();
  return members() != nullptr ? members()->size() : 0;
}

namespace {

// Writes values one after the other into a text.
class Writer {
 public:
  Writer(JsonTree::Layout layout, JsonTree::Characters characters)
      : mIsIndented(layout == JsonTree::Layout::kIndented),
        mIsAscii(characters == JsonTree::Characters::kAscii) {}

  void write(const JsonTree& tree) {
    if (tree.elements() != nullptr) return writeAll('[', *tree.elements(), ']');
    if (tree.members() != nullptr) return writeAll('{', *tree.members(), '}');
    if (tree.text() != nullptr) return writeText(*tree.text());
    if (tree.boolean() != nullptr) {
      mText += *tree.boolean() ? "true" : "false";
    } else if (tree.whole() != nullptr) {
      mText += std::to_string(*tree.whole());
    } else if (tree.real() != nullptr && std::isfinite(*tree.real())) {
      const std::string digits = shortestText(*tree.real());
      // A real number stays one when it is read back: 1 is written as 1.0.
      mText += digits + (digits.find_first_of(".e") == std::string::npos ? ".0" : "");
    } else {
      mText += "null";
    }
  }
  std::string take() { return std::move(mText); }

 private:
  void write(const JsonTree::Member& member) {
    writeText(member.mName);
    mText += mIsIndented ? ": " : ":";
    write(member.mValue);
  }

  template <class Values>
  void writeAll(char open, const Values& values, char close) {
    mText += open;
    mDepth += 2;
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (i > 0) mText += ',';
      breakLine();
      write(values[i]);
    }
    mDepth -= 2;
    if (!values.empty()) breakLine();
    mText += close;
  }
  void breakLine() {
    if (mIsIndented) mText.append(1, '\n').append(mDepth, ' ');
  }

  void writeText(const std::string& text) {
    mText += '"';
    for (std::size_t i = 0; i < text.size();) {
      const Utf8Character character = utf8CharacterAt(text, i);
      const std::size_t bytes = std::max<std::size_t>(1, character.mBytes);
      if (!mIsAscii && character.mCode >= 0x7F) {
        mText.append(text, i, bytes);
      } else if (character.mBytes == 0) {
        mText += mIsAscii ? "\\ufffd" : "\xEF\xBF\xBD";
      } else {
        writeCharacter(character.mCode);
      }
      i += bytes;
    }
    mText += '"';
  }
  void writeCharacter(std::uint32_t code) {
    constexpr std::string_view kShort = "\"\\\b\f\n\r\t", kLetters = "\"\\bfnrt";
    const std::size_t place =
        code < 0x80 ? kShort.find(static_cast<char>(code)) : std::string_view::npos;
    if (place != std::string_view::npos) {
      mText.append(1, '\\').append(1, kLetters[place]);
    } else if (code >= 0x20 && code < 0x7F) {
      mText += static_cast<char>(code);
    } else if (code > 0xFFFF) {  // as a pair of surrogates
      // A pair counts from 0x10000: 0xD7C0 is 0xD800 - (0x10000 >> 10).
      writeEscape(0xD7C0 + (code >> 10));
      writeEscape(0xDC00 + (code & 0x3FF));
    } else {
      writeEscape(code);
    }
  }
  void writeEscape(std::uint32_t code) {
    char escape[16];
    std::snprintf(escape, sizeof(escape), "\\u%04x", code);
    mText += escape;
  }

  std::string mText;
  std::size_t mDepth = 0;
  bool mIsIndented, mIsAscii;
};

}  // namespace

std::string JsonTree::dump(Layout layout, Characters characters) const {
  Writer writer(layout, characters);
  writer.write(*this);
  return writer.take();
}

// The parser's events become a tree. The parser's own documents are not used, because their
// destructors allocate and end the process where memory has run out.
class JsonTreeBuilder {
 public:
  bool null() { return put({}); }
  bool boolean(bool value) { return put(value); }
  bool number_integer(std::int64_t value) { return put(value); }
  bool number_unsigned(std::uint64_t value) {
    // Larger whole numbers lose digits as doubles, but keep their size.
    const bool fits = value <= std::uint64_t(INT64_MAX);
    return fits ? put(std::int64_t(value)) : put(double(value));
  }
  bool number_float(double value, const std::string& /*digits*/) { return put(value); }
  bool string(std::string& text) { return put(std::move(text)); }
  bool binary(nlohmann::json::binary_t& /*bytes*/) { return false; }
  bool start_object(std::size_t /*count*/) { return open(JsonTree::object()); }
  bool start_array(std::size_t /*count*/) { return open(JsonTree::list()); }
  bool end_object() { return close(); }
  bool end_array() { return close(); }
  bool key(std::string& name) {
    std::get<JsonTree::Object>(mOpen.back()->mValue).push_back({std::move(name), {}});
    return true;
  }
  [[noreturn]] bool parse_error(std::size_t /*place*/, const std::string& /*token*/,
                                const nlohmann::json::exception& error) {
    // "[json.exception.parse_error.101] parse error at line 3, column 5: ..."; a number beyond
    // the range of double comes as out_of_range
    const std::string what = error.what();
    const std::size_t start = what.find("] ");
    throw std::runtime_error(what.substr(start == std::string::npos ? 0 : start + 2));
  }

  JsonTree take() { return std::move(mRoot); }

 private:
  JsonTree& place(JsonTree value) {
    if (mOpen.empty()) return mRoot = std::move(value);
    auto& open = mOpen.back()->mValue;
    if (auto* const list = std::get_if<JsonTree::List>(&open)) {
      return list->emplace_back(std::move(value));
    }
    return std::get<JsonTree::Object>(open).back().mValue = std::move(value);
  }
  bool put(JsonTree value) {
    place(std::move(value));
    return true;
  }
  // A list or object grows only while none inside it is open: the addresses hold.
  bool open(JsonTree container) {
    // Trees are written and freed by recursion; no file of ours is deeper than ten.
    constexpr std::size_t kDeepest = 100;
    if (mOpen.size() == kDeepest) throw std::runtime_error("the JSON is nested over 100 deep");
    mOpen.push_back(&place(std::move(container)));
    return true;
  }
  bool close() {
    mOpen.pop_back();
    return true;
  }

  JsonTree mRoot;
  std::vector<JsonTree*> mOpen;
};

JsonTree parseJson(const std::string& text) {
  JsonTreeBuilder builder;
  nlohmann::json::sax_parse(text, &builder);
  return builder.take();
}

namespace {

// A tree takes up to 100 bytes for each byte of its text.
constexpr std::uint64_t kBytesPerByte = 128;

// Bytes that this process may still use, as far as limits and the machine's memory say.
std::uint64_t memoryLeft() {
  std::uint64_t left =
      std::uint64_t(sysconf(_SC_PHYS_PAGES)) * std::uint64_t(sysconf(_SC_PAGESIZE));
  rlimit limit{};
  if (getrlimit(RLIMIT_AS, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) return left;
  std::uint64_t pages = 0;
  // The first number is the size of the address space, which is what RLIMIT_AS limits.
  std::ifstream("/proc/self/statm") >> pages;
  const std::uint64_t used = pages * std::uint64_t(sysconf(_SC_PAGESIZE));
  return std::min(left, limit.rlim_cur > used ? limit.rlim_cur - used : 0);
}

// Throws when there is not enough memory for the values of such a file.
std::string readWithinMemory(const std::string& file) {
  const std::uint64_t largest = memoryLeft() / kBytesPerByte;
  const std::uint64_t size = FileReader(file).size();
  if (size > largest) {
    throw std::runtime_error(file + ": has " + std::to_string(size) +
                             " bytes of JSON; there is memory for " + std::to_string(largest));
  }
  return readFile(file, largest);
}

}  // namespace

JsonTree readJsonFile(const std::string& file) {
  const std::string text = readWithinMemory(file);
  try {
    return parseJson(text);
  } catch (const std::runtime_error& error) {
    throw std::runtime_error(file + ": " + error.what());
  }
}

}  // namespace vexa::formats
