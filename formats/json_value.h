#pragma once

#include <cstdint>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vexa::formats {

/// A JSON value that knows where it stands, so that a fault can say so: "/values/0/keys: ...".
///
/// Borrows the document. Every reading operation throws std::runtime_error with the JSON path and
/// what was expected.
class JsonValue {
 public:
  explicit JsonValue(const nlohmann::json& document) : mValue(&document) {}

  const std::string& path() const { return mPath; }
  bool isText() const { return mValue->is_string(); }
  bool isNumber() const { return mValue->is_number(); }

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
  JsonValue(const nlohmann::json& value, std::string path)
      : mValue(&value), mPath(std::move(path)) {}

  const nlohmann::json* mValue;
  std::string mPath;
};

/// Parses a whole JSON document; throws std::runtime_error with line and column of a syntax fault.
nlohmann::json parseJson(const std::string& text);
/// Reads a whole JSON document; throws std::runtime_error "FILE: what is wrong", with line
/// and column of a syntax fault.
nlohmann::json readJsonFile(const std::string& file);

}  // namespace vexa::formats
