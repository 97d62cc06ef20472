#include "formats/json_value.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <stdexcept>
#include <sys/resource.h>
#include <unistd.h>

#include "formats/read_file.h"

namespace vexa::formats {

void JsonValue::fail(const std::string& fault) const {
  throw std::runtime_error((mPath.empty() ? "/" : mPath) + ": " + fault);
}

void JsonValue::allowOnly(std::initializer_list<const char*> names) const {
  if (!mValue->is_object()) fail("expected an object");
  for (const auto& [name, value] : mValue->items()) {
    if (std::find(names.begin(), names.end(), name) != names.end()) continue;
    std::string known;
    for (const char* each : names) known += (known.empty() ? "" : ", ") + std::string(each);
    fail("unknown member \"" + name + "\"; known are " + known);
  }
}

JsonValue JsonValue::member(const char* name) const {
  const std::optional<JsonValue> found = find(name);
  if (!found) fail("lacks \"" + std::string(name) + "\"");
  return *found;
}

std::optional<JsonValue> JsonValue::find(const char* name) const {
  if (!mValue->is_object()) fail("expected an object");
  const auto found = mValue->find(name);
  if (found == mValue->end()) return std::nullopt;
  return JsonValue(*found, mPath + "/" + name);
}

std::vector<JsonValue> JsonValue::list() const {
  if (!mValue->is_array()) fail("expected a list");
  std::vector<JsonValue> elements;
  for (const auto& element : *mValue) {
    elements.push_back(JsonValue(element, mPath + "/" + std::to_string(elements.size())));
  }
  return elements;
}

std::string JsonValue::text() const {
  if (!mValue->is_string()) fail("expected a text");
  return mValue->get<std::string>();
}

bool JsonValue::boolean() const {
  if (!mValue->is_boolean()) fail("expected true or false");
  return mValue->get<bool>();
}

double JsonValue::number() const {
  if (!mValue->is_number()) fail("expected a number");
  const double value = mValue->get<double>();
  if (!std::isfinite(value)) fail("expected a finite number");
  return value;
}

std::int64_t JsonValue::integer(std::int64_t low, std::int64_t high) const {
  const std::string expected =
      "expected a whole number from " + std::to_string(low) + " to " + std::to_string(high);
  if (!mValue->is_number_integer()) fail(expected);
  const bool tooLarge = mValue->is_number_unsigned() &&
                        mValue->get<std::uint64_t>() > static_cast<std::uint64_t>(INT64_MAX);
  if (tooLarge) fail(expected);
  const auto value = mValue->get<std::int64_t>();
  if (value < low || value > high) fail(expected);
  return value;
}

std::vector<double> JsonValue::numbers(std::size_t count) const {
  const std::string expected = "expected a list of " + std::to_string(count) + " numbers";
  if (!mValue->is_array() || mValue->size() != count) fail(expected);
  std::vector<double> values;
  for (const JsonValue& element : list()) values.push_back(element.number());
  return values;
}

namespace {

// The parser's values need up to 100 bytes for each byte of the text, and it cannot give up once
// memory runs out: its destructor allocates.
constexpr std::uint64_t kBytesPerByte = 128;

// Bytes that this process may still use, as far as limits and the machine's memory say.
std::uint64_t memoryLeft() {
  std::uint64_t left =
      std::uint64_t(sysconf(_SC_PHYS_PAGES)) * std::uint64_t(sysconf(_SC_PAGESIZE));
  rlimit limit{};
  if (getrlimit(RLIMIT_AS, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) return left;
  std::uint64_t pages = 0;
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

nlohmann::json parseJson(const std::string& text) {
  try {
    return nlohmann::json::parse(text);
  } catch (const nlohmann::json::exception& error) {
    // "[json.exception.parse_error.101] parse error at line 3, column 5: ..."; a number beyond
    // the range of double comes as out_of_range
    const std::string what = error.what();
    const std::size_t start = what.find("] ");
    throw std::runtime_error(what.substr(start == std::string::npos ? 0 : start + 2));
  }
}

nlohmann::json readJsonFile(const std::string& file) {
  const std::string text = readWithinMemory(file);
  try {
    return parseJson(text);
  } catch (const std::runtime_error& error) {
    throw std::runtime_error(file + ": " + error.what());
  }
}

}  // namespace vexa::formats
