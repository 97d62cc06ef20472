#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "formats/JsonTree.h"

namespace vexa::formats {

/// A JSON value with its place in the document, which every error states: "/values/0/keys: ...".
///
/// Borrows the document. Every reading operation throws std::runtime_error with the JSON path and
/// what was expected.
class JsonValue {
 public:
  explicit JsonValue(const JsonTree& document) : mValue(&document) {}

  const std::string& path() const { return mPath; }
  bool isText() const { return mValue->text() != nullptr; }
  bool isNumber() const { return mValue->isNumber(); }

  /// The members of an object that may occur; any other name is a fault.
  void allowOnly(std::initializer_list<const char*> names) const;
  /// A member that has to be there, or one that may be missing.
  JsonValue member(const char* name) const;
  std::optional<JsonValue> find(const char* name) const;

  std::vector<JsonValue> list() const;
  std::string text() const;
  bool boolean() const;
  /// A finite number.
  double number() const;
  /// A whole number from `low` to `high`.
  std::int64_t integer(std::int64_t low, std::int64_t high) const;
  /// A list of exactly `count` finite numbers.
  std::vector<double> numbers(std::size_t count) const;

  /// Throws with this value's place in front.
  [[noreturn]] void fail(const std::string& fault) const;

 private:
  JsonValue(const JsonTree& value, std::string path) : mValue(&value), mPath(std::move(path)) {}

  const JsonTree* mValue;
  std::string mPath;
};

}  // namespace vexa::formats
