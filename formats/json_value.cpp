#include "formats/json_value.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace vexa::formats {

void JsonValue::fail(const std::string& fault) const {
  throw std::runtime_error((mPath.empty() ? "/" : mPath) + ": " + fault);
}

// A misspelt name would otherwise be ignored, and its default would be taken in silence.
void JsonValue::allowOnly(std::initializer_list<const char*> names) const {
  if (mValue->members() == nullptr) fail("expected an object");
  for (const auto& [name, value] : *mValue->members()) {
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
  if (mValue->members() == nullptr) fail("expected an object");
  const JsonTree* const found = mValue->find(name);
  if (found == nullptr) return std::nullopt;
  return JsonValue(*found, mPath + "/" + name);
}

std::vector<JsonValue> JsonValue::list() const {
  if (mValue->elements() == nullptr) fail("expected a list");
  std::vector<JsonValue> elements;
  for (const JsonTree& element : *mValue->elements()) {
    elements.push_back(JsonValue(element, mPath + "/" + std::to_string(elements.size())));
  }
  return elements;
}

std::string JsonValue::text() const {
  if (!isText()) fail("expected a text");
  return *mValue->text();
}

bool JsonValue::boolean() const {
  if (mValue->boolean() == nullptr) fail("expected true or false");
  return *mValue->boolean();
}

double JsonValue::number() const {
  if (!isNumber()) fail("expected a number");
  const double value = mValue->real() != nullptr ? *mValue->real() : double(*mValue->whole());
  if (!std::isfinite(value)) fail("expected a finite number");
  return value;
}

std::int64_t JsonValue::integer(std::int64_t low, std::int64_t high) const {
  const std::string expected =
      "expected a whole number from " + std::to_string(low) + " to " + std::to_string(high);
  if (mValue->whole() == nullptr) fail(expected);
  const std::int64_t value = *mValue->whole();
  if (value < low || value > high) fail(expected);
  return value;
}

std::vector<double> JsonValue::numbers(std::size_t count) const {
  const std::string expected = "expected a list of " + std::to_string(count) + " numbers";
  if (mValue->elements() == nullptr || mValue->size() != count) fail(expected);
  std::vector<double> values;
  for (const JsonValue& element : list()) values.push_back(element.number());
  return values;
}

}  // namespace vexa::formats
