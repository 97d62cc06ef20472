#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace vexa::formats {

/// A JSON document or a part of one: null, true or false, a number, a text, a list, or an object
/// whose members keep their order.
///
/// A plain value. Its end takes no memory: where memory runs out, std::bad_alloc is thrown and
/// nothing else happens.
class JsonTree {
 public:
  struct Member;
  using List = std::vector<JsonTree>;
  // A type of its own: libstdc++ 12 ends a variant of nothing but its own types and numbers as if
  // it held a value, also where the copy that would have made the value has failed.
  struct Object : std::vector<Member> {
    using std::vector<Member>::vector;
  };

  JsonTree() = default;  ///< null
  // NOLINTBEGIN(google-explicit-constructor): each of these serves as a value
  template <class T, std::enable_if_t<std::is_arithmetic_v<T>, int> = 0>
  JsonTree(T value) {
    if constexpr (std::is_same_v<T, bool>)
      mValue = value;
    else if constexpr (std::is_floating_point_v<T>)
      mValue = double(value);
    else
      mValue = std::int64_t(value);
  }
  JsonTree(const char* text) : mValue(std::string(text)) {}
  JsonTree(std::string text) : mValue(std::move(text)) {}
  template <class T>
  JsonTree(const std::vector<T>& list) : mValue(List(list.begin(), list.end())) {}
  // NOLINTEND(google-explicit-constructor)
  template <class... Elements>
  static JsonTree list(Elements&&... elements) {
    JsonTree tree;
    tree.mValue = List();
    (tree.add(std::forward<Elements>(elements)), ...);
    return tree;
  }
  static JsonTree object();
  /// The object with one more member, for making it in one expression.
  JsonTree with(std::string_view name, JsonTree value) &&;

  /// Null unless the value is of that kind. Whole numbers beyond 64 bits are a double.
  const bool* boolean() const { return std::get_if<bool>(&mValue); }
  const std::int64_t* whole() const { return std::get_if<std::int64_t>(&mValue); }
  const double* real() const { return std::get_if<double>(&mValue); }
  const std::string* text() const { return std::get_if<std::string>(&mValue); }
  const List* elements() const { return std::get_if<List>(&mValue); }
  const Object* members() const { return std::get_if<Object>(&mValue); }
  bool isNumber() const { return whole() != nullptr || real() != nullptr; }

  /// A member of an object; of several with one name the last. Null where there is none.
  const JsonTree* find(std::string_view name) const;
  /// The same; null for a value that has no such member.
  const JsonTree& operator[](std::string_view name) const;
  /// The same, added at the end where it is missing. Null becomes an object; other kinds throw.
  JsonTree& operator[](std::string_view name);
  /// Adds to a list. Null becomes a list; other kinds throw.
  void add(JsonTree element);
  /// How many elements or members; 0 for other kinds.
  std::size_t size() const;

  enum class Layout { kOneLine, kIndented };
  enum class Characters { kAscii, kUtf8 };
  /// As JSON. In ASCII other characters become \u escapes. Bytes that are not UTF-8 become U+FFFD,
  /// numbers that are not finite null.
  std::string dump(Layout layout = Layout::kOneLine,
                   Characters characters = Characters::kAscii) const;

 private:
  friend class JsonTreeBuilder;
  std::variant<std::nullptr_t, bool, std::int64_t, double, std::string, List, Object> mValue;
};

struct JsonTree::Member {
  std::string mName;
  JsonTree mValue;
};

/// Parses a whole JSON document; throws std::runtime_error with line and column of a syntax fault,
/// and for one that is nested more than 100 deep.
JsonTree parseJson(const std::string& text);
/// Reads a whole JSON document; throws std::runtime_error "FILE: what is wrong" as parseJson, and
/// for a file that needs more memory than there is.
JsonTree readJsonFile(const std::string& file);

}  // namespace vexa::formats
